// Whether the objects that a database file defines are the ordinary tables and indexes of its rules and nothing else.
// Judged by their definitions' text: nothing that a file defines is run.
#pragma once

#include "data/database_rules.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <vector>

namespace data {

// One row of the store's own table of objects.
struct SchemaObject {
    QByteArray Type;
    QByteArray Name;
    QByteArray Table;
    QByteArray Definition;
};

// The words, numbers, brackets and commas of a definition in lower case, names without their quotes. Empty where it
// holds anything else, such as a comment, an operator or a text.
QList<QByteArray> DefinitionTokens(const QByteArray& definition);

// Empty, or what is wrong in words.
QString JudgeSchema(const std::vector<SchemaObject>& objects, const DatabaseRules& rules);

} // namespace data
