// What the fuzzers share: bytes taken apart into values, a property that must hold, and a folder in memory for routines
// that read files. A property that does not hold ends the process, so that the fuzzer keeps the input.
#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>

namespace fuzz {

// Prints what was promised and aborts unless `holds`.
void Require(bool holds, const char* promise);

// Takes values off the front of an input. Past its end everything is zero or empty.
class Reader {
  public:
    Reader(const uint8_t* data, size_t size) : at_(reinterpret_cast<const char*>(data)), left_(qsizetype(size)) {}

    bool AtEnd() const { return left_ == 0; }
    quint8 Byte();
    quint16 Word();
    quint32 Long();
    // Little-endian bits of a double, any of them.
    double Real();
    // At least `low`, at most `high`.
    int Number(int low, int high);
    QByteArray Bytes(qsizetype count);
    // Up to the next NUL, which is taken off too.
    QByteArray Piece();
    // A piece as UTF-8, broken sequences replaced.
    QString Text() { return QString::fromUtf8(Piece()); }
    QByteArray Rest() { return Bytes(left_); }

  private:
    const char* at_;
    qsizetype left_;
};

// A folder of this process, on a file system in memory where there is one, removed at the end.
QString Folder();
// Writes a file in it and gives its path.
QString WriteFile(const QString& name, const QByteArray& bytes);

// The application object without a display that some routines need; made at the first call.
void NeedApplication();

} // namespace fuzz
