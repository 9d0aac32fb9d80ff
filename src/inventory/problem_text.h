// Configuration-manager problem codes in words.
#pragma once

#include <QString>

namespace inventory {

// "(" + the text as it came + ") " + its meaning; "Unknown Error" for anything but the known codes in plain decimal.
// Yields once.
QString GetProblemText(const QString& errorCodeText);

} // namespace inventory
