// The tables of the device database; docs/database.md tells what they hold.
#pragma once

#include "data/database_rules.h"

#include <QStringList>

namespace database {

// The most characters that are written into a name or manufacturer, and into a hardware ID.
inline constexpr qsizetype NameSize = 100;
inline constexpr qsizetype HardwareIdSize = 125;

// The most bytes of an info text in a database that is opened: some five thousand devices under one ID.
inline constexpr int LongestInfo = 64 * 1024;

// The statements that add a row; the parameters are the columns in order.
inline constexpr char16_t InsertDeviceName[] = u"INSERT INTO devicenames (devicename) VALUES(?)";
inline constexpr char16_t InsertManufacturer[] = u"INSERT INTO mfgs (mfg) VALUES(?)";
inline constexpr char16_t InsertHardwareId[] = u"INSERT INTO hwids (hwid,info) VALUES(?,?)";

// The most characters of a version.
inline constexpr int VersionSize = 50;

// The CREATE statements of an empty database.
QStringList SchemaStatements();

// What a file must be to be opened as the device database.
const data::DatabaseRules& Rules();

} // namespace database
