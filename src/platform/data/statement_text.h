// Turns a statement as the program words it into one that the store runs: literals become bound parameters, so that no
// text of a device ever is part of a statement and the same shape is prepared once, and a chain of OR terms on one
// column becomes IN, which has no limit worth the name.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <vector>

namespace data {

enum class StatementKind {
    Identity, // SELECT @@Identity
    Query,    // any other SELECT
    Change,   // INSERT, UPDATE, DELETE
};

struct StatementText {
    StatementKind Kind = StatementKind::Query;
    QByteArray Sql; // UTF-8, every value a "?"
    // One for each "?", in order. A null variant stands for a parameter of the command itself.
    std::vector<QVariant> Values;
    int ParameterCount = 0; // how many of Values are parameters of the command

    // For "SELECT * FROM table ...": the table. Sql then gives the row's own number as the first column.
    QString Table;
    bool WholeTable = false; // nothing behind the table's name
};

// Throws Error where the text is empty, is none of the kinds above, holds an unclosed quote or more than one statement.
StatementText TranslateStatement(const QString& text);

} // namespace data
