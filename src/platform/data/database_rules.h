// What a database file must be for it to be opened: its tables with their columns, the indexes that it may have, and
// how much of everything is plausible. Constant data, made by whoever knows the tables.
#pragma once

#include <QtGlobal>
#include <span>

namespace data {

struct ColumnRule {
    const char* Name;
    bool IsKey; // INTEGER PRIMARY KEY; a text otherwise
    int Most;   // bytes of a text; the largest number of a key
};

struct TableRule {
    const char* Name;
    std::span<const ColumnRule> Columns; // all of them, in any order
    qint64 MostRows;
};

struct IndexRule {
    const char* Name;
    const char* Definition; // its CREATE statement
    bool IsSearched;        // a large file without it would make each search walk a table
};

struct DatabaseRules {
    std::span<const TableRule> Tables;
    std::span<const IndexRule> Indexes;
    qint64 LargestFile;           // bytes
    qint64 LargestWithoutIndexes; // bytes
    int LongestLook = 30'000;     // milliseconds that reading all of it may take; 0 is no limit
};

} // namespace data
