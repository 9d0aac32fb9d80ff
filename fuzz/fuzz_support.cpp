#include "fuzz_support.h"

#include "base/yield.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <bit>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

void Require(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", promise);
        std::abort();
    }
}

quint8 Reader::Byte() {
    const QByteArray byte = Bytes(1);
    return byte.isEmpty() ? 0 : quint8(byte.at(0));
}

quint16 Reader::Word() {
    const quint8 low = Byte();
    return quint16(low | Byte() << 8);
}

quint32 Reader::Long() {
    const quint32 low = Word();
    return low | quint32(Word()) << 16;
}

double Reader::Real() {
    const quint64 low = Long();
    return std::bit_cast<double>(low | quint64(Long()) << 32);
}

int Reader::Number(int low, int high) {
    const quint32 range = quint32(high - low) + 1;
    return low + int((range <= 256 ? Byte() : Word()) % range);
}

QByteArray Reader::Bytes(qsizetype count) {
    const QByteArray bytes(at_, qMin(count, left_));
    at_ += bytes.size();
    left_ -= bytes.size();
    return bytes;
}

QByteArray Reader::Piece() {
    const QByteArrayView all(at_, left_);
    const qsizetype end = all.indexOf('\0');
    const QByteArray piece = Bytes(end < 0 ? left_ : end);
    Bytes(1);
    return piece;
}

QString Folder() {
    const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir folder((QFileInfo(memory).isWritable() ? memory : QStringLiteral("/tmp")) +
                                      QStringLiteral("/quorvane-fuzz-XXXXXX"));
    return folder.path();
}

QString WriteFile(const QString& name, const QByteArray& bytes) {
    const QString path = Folder() + QLatin1Char('/') + name;
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "the fuzzer's folder takes a file");
    return path;
}

void NeedApplication() {
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    base::SetYieldGate(0);
}

} // namespace fuzz
