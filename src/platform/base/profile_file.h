// INI-style profile files under the platform's names. Sections and keys match without regard to case, the first match
// wins, and what a write does not concern stays byte for byte. UTF-16 little-endian with a byte-order mark stays
// Unicode; a file without one is Windows-1252 and stays so. Each write goes to a temporary file beside the target that
// is renamed over it, so a reader or a crash meets the old file or the new one.
#pragma once

#include <QString>

namespace base {

// The value of `key` in `section`; `fallback` where file, section or key is missing. One pair of quotes around a value
// and blanks around it are taken off. At most `size` - 1 characters are returned. Files above 4 MiB read as missing.
QString GetPrivateProfileStringW(const QString& section, const QString& key, const QString& fallback, int size,
                                 const QString& path);

// Replaces the value in place or appends key and section as needed. A missing file is made as Windows-1252. False where
// nothing could be written, or where section or key hold a line break.
bool WritePrivateProfileStringW(const QString& section, const QString& key, const QString& value, const QString& path);

// CreateTextFile with Unicode: an empty file that holds the byte-order mark FF FE alone, replacing one that is there.
bool CreateTextFile(const QString& path);

// Gathers the writes to one file: while it lives they are kept in memory, where reads meet them, and its end stores
// them all at once, which costs one replaced file instead of one for each value. Nothing may yield meanwhile, and
// batches do not nest.
class ProfileBatch {
  public:
    explicit ProfileBatch(const QString& path);
    ~ProfileBatch();
    ProfileBatch(const ProfileBatch&) = delete;
    ProfileBatch& operator=(const ProfileBatch&) = delete;
};

} // namespace base
