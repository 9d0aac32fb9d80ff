// Comma-separated text as mdb-export prints it: fields in double quotes where needed, quotes doubled, line breaks
// inside quotes kept.
#pragma once

#include <QByteArray>
#include <QStringList>
#include <vector>

namespace tool {

// The rows, the first of which holds the columns' names. False where a quote is not closed.
bool ParseCsv(const QByteArray& text, std::vector<QStringList>& rows);

} // namespace tool
