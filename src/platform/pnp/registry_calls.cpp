#include "pnp/registry_calls.h"

#include "pnp/registry_hive.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <unordered_map>

namespace pnp {

namespace {

constexpr quint32 QueryValue = 0x1;
constexpr quint32 SetValueRight = 0x2;
constexpr quint32 CreateSubkey = 0x4;
constexpr quint32 CreatedNew = 1;
constexpr quint32 OpenedExisting = 2;

struct OpenKey {
    quint32 root = 0;
    QString path;
    quint32 access = 0;
    std::shared_ptr<RegistryKey> key;
    // Where the last enumeration of subkeys stood, so that counting up does not start anew each time.
    quint32 place = 0;
    quint64 placeVersion = 0;
    std::map<QString, std::shared_ptr<RegistryKey>, NameLess>::iterator placeAt;
    bool placed = false;
};

struct Handles {
    std::unordered_map<KeyHandle, OpenKey> open;
    KeyHandle next = 4;
};

Handles& Held() {
    static Handles held;
    return held;
}

bool IsRoot(KeyHandle key) { return quint32(key) >= 0x80000000U; }

// The open key of a handle, or one made up for a predefined root, which anybody may read and write.
OpenKey* Find(KeyHandle key, OpenKey& forRoot) {
    if (IsRoot(key)) {
        forRoot.root = quint32(key);
        forRoot.access = QueryValue | SetValueRight | CreateSubkey;
        forRoot.key = Hive().Root(quint32(key));
        return forRoot.key == nullptr ? nullptr : &forRoot;
    }
    const auto found = Held().open.find(key);
    return found == Held().open.end() ? nullptr : &found->second;
}

QString Joined(const QString& path, const QString& subkey) {
    QString below = subkey;
    while (below.startsWith(QLatin1Char('\\')))
        below.remove(0, 1);
    while (below.endsWith(QLatin1Char('\\')))
        below.chop(1);
    if (path.isEmpty() || below.isEmpty())
        return path + below;
    return path + QLatin1Char('\\') + below;
}

KeyHandle Keep(quint32 root, const QString& path, quint32 access, std::shared_ptr<RegistryKey> key) {
    Handles& handles = Held();
    while (handles.next <= 0 || handles.open.contains(handles.next))
        handles.next = handles.next > 0x7FFFFFF0 || handles.next <= 0 ? 4 : handles.next + 4;
    const KeyHandle handle = handles.next;
    handles.next += 4;
    OpenKey& entry = handles.open[handle];
    entry.root = root;
    entry.path = path;
    entry.access = access;
    entry.key = std::move(key);
    return handle;
}

// Copies a value out by the platform's rules for room and size.
qint32 CopyOut(const QByteArray& bytes, void* data, quint32* size) {
    const quint32 room = size == nullptr ? 0 : *size;
    if (size != nullptr)
        *size = quint32(bytes.size());
    if (data == nullptr)
        return Success;
    if (size == nullptr)
        return InvalidParameter;
    if (room < quint32(bytes.size()))
        return MoreData;
    std::memcpy(data, bytes.constData(), std::size_t(bytes.size()));
    return Success;
}

qint32 CopyName(const QString& text, char16_t* name, quint32* size) {
    if (name == nullptr || size == nullptr)
        return InvalidParameter;
    if (*size <= quint32(text.size()))
        return MoreData;
    std::memcpy(name, text.utf16(), std::size_t(text.size() + 1) * sizeof(char16_t));
    *size = quint32(text.size());
    return Success;
}

struct Variable {
    const char16_t* name;
    const char16_t* value;
};

constexpr Variable Variables[] = {
    {u"SystemRoot", u"C:\\Windows"},
    {u"windir", u"C:\\Windows"},
    {u"SystemDrive", u"C:"},
    {u"ProgramFiles", u"C:\\Program Files"},
};

QString VariableValue(const QString& name) {
    for (const Variable& variable : Variables) {
        if (name.compare(QStringView(variable.name), Qt::CaseInsensitive) == 0)
            return QString::fromUtf16(variable.value);
    }
    return qEnvironmentVariable(name.toLocal8Bit().constData());
}

QString Expanded(const QString& source) {
    QString text;
    qsizetype at = 0;
    while (at < source.size()) {
        const qsizetype begin = source.indexOf(QLatin1Char('%'), at);
        const qsizetype end = begin < 0 ? -1 : source.indexOf(QLatin1Char('%'), begin + 1);
        if (end < 0)
            break;
        const QString value = end == begin + 1 ? QString() : VariableValue(source.mid(begin + 1, end - begin - 1));
        if (value.isNull()) {
            // The second sign may begin the next name.
            text += QStringView(source).sliced(at, end - at);
            at = end;
            continue;
        }
        text += QStringView(source).sliced(at, begin - at);
        text += value;
        at = end + 1;
    }
    return text + source.mid(at);
}

bool SystemIsWow64(qint64, qint32& isWow64) {
    isWow64 = 0;
    return true;
}

} // namespace

qint32 RegOpenKeyExW(KeyHandle key, const QString& subkey, quint32, quint32 access, KeyHandle& result) {
    result = 0;
    OpenKey forRoot;
    const OpenKey* parent = Find(key, forRoot);
    if (parent == nullptr)
        return InvalidHandle;
    const QString path = Joined(parent->path, subkey);
    std::shared_ptr<RegistryKey> found = Hive().Open(parent->root, path);
    if (found == nullptr)
        return NotFound;
    result = Keep(parent->root, path, access, std::move(found));
    return Success;
}

qint32 RegCreateKeyExW(KeyHandle key, const QString& subkey, quint32 access, KeyHandle& result, quint32* disposition) {
    result = 0;
    OpenKey forRoot;
    const OpenKey* parent = Find(key, forRoot);
    if (parent == nullptr)
        return InvalidHandle;
    bool existed = false;
    const QString path = Joined(parent->path, subkey);
    std::shared_ptr<RegistryKey> made = Hive().Create(parent->root, path, existed);
    if (made == nullptr)
        return NotFound;
    if (disposition != nullptr)
        *disposition = existed ? OpenedExisting : CreatedNew;
    result = Keep(parent->root, path, access, std::move(made));
    return Success;
}

qint32 RegCloseKey(KeyHandle key) {
    if (IsRoot(key))
        return Success;
    return Held().open.erase(key) == 0 ? InvalidHandle : Success;
}

qint32 RegQueryValueExW(KeyHandle key, const QString& name, quint32* type, void* data, quint32* size) {
    OpenKey forRoot;
    const OpenKey* open = Find(key, forRoot);
    if (open == nullptr)
        return InvalidHandle;
    if ((open->access & QueryValue) == 0)
        return AccessDenied;
    const auto value = open->key->values.find(name);
    if (value == open->key->values.end())
        return NotFound;
    if (type != nullptr)
        *type = value->second.type;
    return CopyOut(value->second.data, data, size);
}

qint32 RegSetValueExW(KeyHandle key, const QString& name, quint32 type, const void* data, quint32 size) {
    OpenKey forRoot;
    const OpenKey* open = Find(key, forRoot);
    if (open == nullptr)
        return InvalidHandle;
    if ((open->access & SetValueRight) == 0)
        return AccessDenied;
    if (data == nullptr && size != 0)
        return InvalidParameter;
    open->key->values[name] = {name, type, QByteArray(static_cast<const char*>(data), qsizetype(size))};
    open->key->lastWrite = FileTimeNow();
    return Success;
}

qint32 RegDeleteValueW(KeyHandle key, const QString& name) {
    OpenKey forRoot;
    const OpenKey* open = Find(key, forRoot);
    if (open == nullptr)
        return InvalidHandle;
    if ((open->access & SetValueRight) == 0)
        return AccessDenied;
    if (open->key->values.erase(name) == 0)
        return NotFound;
    open->key->lastWrite = FileTimeNow();
    return Success;
}

qint32 RegDeleteKeyW(KeyHandle key, const QString& subkey) { return RegDeleteKeyExW(key, subkey, 0); }

qint32 RegDeleteKeyExW(KeyHandle key, const QString& subkey, quint32) {
    OpenKey forRoot;
    const OpenKey* open = Find(key, forRoot);
    if (open == nullptr)
        return InvalidHandle;
    const QString path = Joined(open->path, subkey);
    if (path.isEmpty())
        return AccessDenied;
    bool found = false;
    const bool gone = Hive().Delete(open->root, path, found);
    if (!found)
        return NotFound;
    return gone ? Success : AccessDenied;
}

qint32 RegEnumKeyExW(KeyHandle key, quint32 index, char16_t* name, quint32* size, FileTime* time) {
    OpenKey forRoot;
    OpenKey* open = Find(key, forRoot);
    if (open == nullptr)
        return InvalidHandle;
    if (index == 0)
        Hive().ReadAllDevices(open->root, open->path);
    RegistryKey& parent = *open->key;
    if (index >= parent.children.size())
        return NoMoreItems;
    if (!open->placed || open->placeVersion != parent.version || index < open->place) {
        open->placeAt = parent.children.begin();
        open->place = 0;
        open->placeVersion = parent.version;
        open->placed = true;
    }
    std::advance(open->placeAt, index - open->place);
    open->place = index;
    const RegistryKey& child = *open->placeAt->second;
    if (time != nullptr)
        time->value = child.lastWrite;
    return CopyName(child.name, name, size);
}

qint32 RegEnumValueW(KeyHandle key, quint32 index, char16_t* name, quint32* size, quint32* type, void* data,
                     quint32* dataSize) {
    OpenKey forRoot;
    const OpenKey* open = Find(key, forRoot);
    if (open == nullptr)
        return InvalidHandle;
    if (index >= open->key->values.size())
        return NoMoreItems;
    const RegistryValue& value = std::next(open->key->values.begin(), std::ptrdiff_t(index))->second;
    const qint32 named = CopyName(value.name, name, size);
    if (named != Success)
        return named;
    if (type != nullptr)
        *type = value.type;
    return data == nullptr && dataSize == nullptr ? Success : CopyOut(value.data, data, dataSize);
}

quint32 ExpandEnvironmentStringsW(const QString& source, char16_t* target, quint32 size) {
    const QString text = Expanded(source);
    const quint32 needed = quint32(text.size()) + 1;
    if (target != nullptr && size > 0) {
        const quint32 count = std::min(size - 1, needed - 1);
        std::memcpy(target, text.utf16(), count * sizeof(char16_t));
        target[count] = 0;
    }
    return needed;
}

IsWow64ProcessCall GetProcAddress(const QString& module, const QString& name) {
    const bool kernel = module.compare(QStringLiteral("kernel32"), Qt::CaseInsensitive) == 0 ||
                        module.compare(QStringLiteral("kernel32.dll"), Qt::CaseInsensitive) == 0;
    return kernel && name == QStringLiteral("IsWow64Process") ? SystemIsWow64 : nullptr;
}

qint64 GetCurrentProcess() { return -1; }

} // namespace pnp
