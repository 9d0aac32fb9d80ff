// The settings store: one value of settings.ini in the program's folder, or of a file of the same form, such as a
// colour preset. Neither routine reports a failure to the user.
#pragma once

#include <QString>

namespace values {

// The value as text, at most 2047 characters; empty if there is none. An empty `filePath` is replaced by the path of
// settings.ini, and the caller sees that.
QString ReadSetting(const QString& section, const QString& key, QString& filePath);

// True if the value was written. `filePath` as above. A missing file is made as a Unicode file first, since a file made
// by the write itself would lose every character outside the code page.
bool WriteSetting(const QString& section, const QString& key, const QString& value, QString& filePath);

// The path that most callers pass: settings.ini, spelled with a capital letter. It names the same file.
QString SettingsPath();

// A setting read as true or false; false where it is missing or spells neither.
bool ReadFlag(const QString& section, const QString& key);

} // namespace values
