// A database file put in the place of another, safely beside running instances and crashes, and new files made whole.
#pragma once

#include <QString>
#include <QStringList>

namespace data {

// Puts `newFile` in the place of `target` (both native, in one folder). Others that replace it wait; a write that
// another process has under way ends first, and an interrupted one is taken back, so that no journal of the old file is
// left to be played into the new one. A reader or a crash meets the old file whole or the new file whole. Where it
// fails, after at most about 20 s, `target` is as it was, `newFile` still there, and `error` says why.
bool ReplaceDatabaseFile(const QString& newFile, const QString& target, QString* error = nullptr);

// Makes `copy` (native, not there yet) of one state of the database at `path`, whoever writes to it meanwhile; a write
// that was cut off is taken back first. Nothing stands at `copy`, and `error` says why, where that fails.
bool CopyDatabaseFile(const QString& path, const QString& copy, QString* error);

// Makes a database file that must not exist yet, with the tables that these CREATE statements name. False, and no file,
// where that fails.
bool CreateDatabaseFile(const QString& nativePath, const QStringList& statements, QString* error = nullptr);

} // namespace data
