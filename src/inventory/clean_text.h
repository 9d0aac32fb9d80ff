// The clean-up of names as devices and registry give them.
#pragma once

#include <QString>
#include <QVariant>

namespace inventory {

// Tabs and no-break spaces become blanks, runs of blanks one blank, and blanks at both ends go. Yields after each round
// of shortening. A value that does not convert to text gives an empty one.
QString CleanText(const QVariant& value);

} // namespace inventory
