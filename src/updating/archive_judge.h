// What a downloaded archive must hold for its files to come into the program's folder: databases that the program could
// start with, and, in a build that trusts keys, one database alone that one of them signed and that is not older than
// the one in its place.
#pragma once

#include "net/unpacked_files.h"

#include <QString>
#include <functional>

namespace updating {

// `trustedKeys` in the form of a build's setting; one that holds no keys trusts nobody. Takes the signature off the
// files: it has no place in the folder. Reads the files aside and yields meanwhile; ends early, with false, once
// `stopped` says so.
bool IsArchiveGood(QList<net::UnpackedFile>& files, const QString& trustedKeys, const QString& folder,
                   const std::function<bool()>& stopped);

// Whether `offered` is a version of three numbers that is not below `present`. One that is none is below all.
bool IsNotOlder(const QString& offered, const QString& present);

} // namespace updating
