// Files that the sub-commands take in whole: ID files and contributions, or pipes that bring them.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace tool {

// The first `most` bytes, all of a shorter file; nothing where it cannot be read, and then `error` is the line to
// print.
std::optional<QByteArray> ReadAtMost(const QString& path, qint64 most, QString& error);

} // namespace tool
