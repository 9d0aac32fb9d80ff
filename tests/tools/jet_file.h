// Writes Jet 4 files as far as mdbtools reads them: tables of numbers, texts and memos, rows over any number of pages,
// no keys, no indexes.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <vector>

namespace jet {

inline constexpr qsizetype PageSize = 4096; // bytes

enum class Type : quint8 { Integer = 3, Long = 4, Text = 10, Memo = 12 };

struct Column {
    QString Name;
    Type Kind;
};

struct Table {
    QString Name;
    std::vector<Column> Columns;
    std::vector<QVariantList> Rows;
};

// The file's bytes. The pages of the tables follow one another in the tables' order, so cutting the file's end costs
// the last one.
QByteArray File(const std::vector<Table>& tables);

} // namespace jet
