// The tables of the device database; docs/database.md tells what they hold.
#pragma once

#include <QStringList>

namespace database {

// The most characters that are written into a name or manufacturer, and into a hardware ID.
inline constexpr qsizetype NameSize = 100;
inline constexpr qsizetype HardwareIdSize = 125;

// The CREATE statements of an empty database.
QStringList SchemaStatements();

} // namespace database
