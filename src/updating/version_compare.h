// The comparison of version texts, as the checks for a new program and a new database need it.
#pragma once

#include <QString>

namespace updating {

// False only where `remote` is newer than `local` in its first three fields. Fields are compared as texts of at least
// five digits, so one of six digits sorts by its first; a field that either text lacks counts as current.
bool IsVersionCurrent(const QString& remote, const QString& local);

// The version behind the colon of the main window's label, trimmed; empty without one.
QString VersionInCaption(const QString& caption);

} // namespace updating
