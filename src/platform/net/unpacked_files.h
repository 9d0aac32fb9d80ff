// The files of an archive between their unpacking and their places in the program's folder.
#pragma once

#include <QList>
#include <QString>
#include <functional>

namespace net {

struct UnpackedFile {
    QString Name; // as the archive has it, with "/" between the components
    QString Path; // where it lies now, native
};

// Whether it ends in ".mdb".
bool IsDatabase(const UnpackedFile& file);

// Puts the first file in the place of the second (native paths).
using Replacer = std::function<bool(const QString& from, const QString& to)>;

// Puts all of the files in their places below `target` or none: where one fails, those before it are taken back, as far
// as the file system knows links, by which the old files are kept beside the new ones until then ("PATH.kept").
// Databases go first, by `replaceDatabase` where there is one: they are what can be refused. Nothing goes through a
// link. Dispatches no events.
bool PutInPlace(const QList<UnpackedFile>& files, const QString& target, const Replacer& replaceDatabase);

} // namespace net
