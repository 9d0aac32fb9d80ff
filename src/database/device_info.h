// The text that a row of the ID table keeps its known devices in: for each, the number of its name, a comma, the number
// of its manufacturer, and CR LF.
#pragma once

#include <QString>
#include <vector>

namespace database {

// One entry as it stands in the text: the numbers are not looked at here and may be words or nothing.
struct InfoEntry {
    QString NameId;
    QString ManufacturerId;
};

// The entries in order. A text without any CR LF is one entry whatever it holds; an empty text has none.
std::vector<InfoEntry> DecodeInfo(const QString& info);

// Digits alone, blanks around them allowed: what may go into a query as a number.
bool IsDecimal(const QString& id);

} // namespace database
