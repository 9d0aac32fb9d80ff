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

// Puts all of the files in their places below `target` or, where the first of them fails, none. Databases go first, by
// `replaceDatabase` where there is one: they are what can be refused. Nothing goes through a link. Yields after each.
bool PutInPlace(const QList<UnpackedFile>& files, const QString& target,
                const std::function<bool(const QString& from, const QString& to)>& replaceDatabase);

} // namespace net
