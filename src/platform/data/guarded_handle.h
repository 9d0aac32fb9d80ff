// A database file opened with nothing let in: what lies beside it is looked at first, the file's head before the store
// reads it, its definitions before anything is asked of it, and the store is held to what the program needs. Owned by
// who opens; every failure is an Error.
#pragma once

#include "data/database_rules.h"

#include <QString>
#include <memory>

struct sqlite3;

namespace data {

inline constexpr int LongestValue = 512 * 1024; // bytes of one value or row; longer ones are refused

struct CloseHandle {
    void operator()(sqlite3* handle) const;
};
using Handle = std::unique_ptr<sqlite3, CloseHandle>;

// Opens an existing file (native path) for reading and writing, or for reading alone where it cannot be written; takes
// back what an interrupted write left. Throws Error where it is missing, no plain file, not permitted, cut short, no
// database or not what `rules` ask for. Without rules any tables will do. Costs the same for a file of any size.
// `storeCode` takes what the store said, where it said anything.
Handle OpenGuarded(const QString& nativePath, const DatabaseRules* rules, int* storeCode = nullptr);

// The error for a file that is a database, but not one that may be opened: the path and why.
[[noreturn]] void RefuseFile(const QString& path, const QString& why);

// The error for what the store said at opening.
[[noreturn]] void FailOpen(const QString& path, int code);

} // namespace data
