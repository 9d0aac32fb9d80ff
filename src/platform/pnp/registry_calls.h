// The registry calls under the platform's names, over the hive in memory. Handles are positive numbers, the predefined
// roots the platform's own; both are 32 bits. Results are the platform's codes. Texts are UTF-16 with their terminators
// counted in bytes, sizes go in and out as the platform's do.
#pragma once

#include <QString>

namespace pnp {

using KeyHandle = qint32;

inline constexpr qint32 Success = 0;
inline constexpr qint32 NotFound = 2;
inline constexpr qint32 AccessDenied = 5;
inline constexpr qint32 InvalidHandle = 6;
inline constexpr qint32 InvalidParameter = 87;
inline constexpr qint32 MoreData = 234;
inline constexpr qint32 NoMoreItems = 259;

// 100 nanoseconds since 1601, UTC.
struct FileTime {
    quint64 value = 0;
};

// From the begin of 1601 to that of 1970, in milliseconds.
inline constexpr qint64 FileTimeBefore1970 = 11'644'473'600'000;

// Opens the key below `key`; an empty subkey opens the same key again. `result` is 0 unless the call succeeds.
qint32 RegOpenKeyExW(KeyHandle key, const QString& subkey, quint32 options, quint32 access, KeyHandle& result);
// The same, making what is missing. `disposition` (may be null) becomes 1 for a new key, 2 for one that was there.
qint32 RegCreateKeyExW(KeyHandle key, const QString& subkey, quint32 access, KeyHandle& result, quint32* disposition);
qint32 RegCloseKey(KeyHandle key);

// `type` and `data` may be null. `size` is the room in bytes and becomes the size of the value; if the room is too
// small (MoreData) or `data` is null, nothing is copied.
qint32 RegQueryValueExW(KeyHandle key, const QString& name, quint32* type, void* data, quint32* size);
// Needs a handle opened for writing.
qint32 RegSetValueExW(KeyHandle key, const QString& name, quint32 type, const void* data, quint32 size);
qint32 RegDeleteValueW(KeyHandle key, const QString& name);

// Only keys without keys below go; AccessDenied for others.
qint32 RegDeleteKeyW(KeyHandle key, const QString& subkey);
// `view` 256 is the 64-bit view, the only one there is.
qint32 RegDeleteKeyExW(KeyHandle key, const QString& subkey, quint32 view);

// The subkey or value of that number, in order of names. `size` is the room of `name` in characters with the
// terminator, and becomes the name's length without it. `time`, `type`, `data` and `dataSize` may be null.
qint32 RegEnumKeyExW(KeyHandle key, quint32 index, char16_t* name, quint32* size, FileTime* time);
qint32 RegEnumValueW(KeyHandle key, quint32 index, char16_t* name, quint32* size, quint32* type, void* data,
                     quint32* dataSize);

// Replaces %NAME% by what the platform's own variables and then the process' environment hold; others stay. At most
// `size` characters with the terminator are written. Returns the room that the whole text takes.
quint32 ExpandEnvironmentStringsW(const QString& source, char16_t* target, quint32 size);

// False on failure. A process of this system is never a 32-bit one on a 64-bit registry.
using IsWow64ProcessCall = bool (*)(qint64 process, qint32& isWow64);
// "IsWow64Process" of "kernel32"; null for any other name.
IsWow64ProcessCall GetProcAddress(const QString& module, const QString& name);
// Stands for the process itself.
qint64 GetCurrentProcess();

} // namespace pnp
