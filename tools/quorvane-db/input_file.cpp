#include "input_file.h"

#include <QFile>

namespace tool {

namespace {

constexpr qint64 pieceSize = 64 << 10; // bytes

} // namespace

std::optional<QByteArray> ReadAtMost(const QString& path, qint64 most, QString& error) {
    QFile file(path);
    QByteArray bytes;
    bool more = file.open(QIODevice::ReadOnly);
    // In pieces: a pipe does not tell its size, and a small file needs no room for the largest.
    while (more && bytes.size() < most) {
        const QByteArray piece = file.read(qMin(pieceSize, most - bytes.size()));
        more = !piece.isEmpty();
        bytes += piece;
    }
    if (file.error() == QFileDevice::NoError)
        return bytes;
    error = QStringLiteral("%1: %2").arg(path, file.errorString());
    return std::nullopt;
}

} // namespace tool
