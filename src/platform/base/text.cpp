#include "base/text.h"

#include <array>

namespace base {

namespace {

constexpr QChar blank = u' ';

// Bytes 0x80 to 0x9F of code page 1252; the others map to the character of the same value.
constexpr std::array<char16_t, 32> ansiUpperBlock = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr bool InUpperBlock(uint value) { return value >= 0x80 && value < 0xA0; }

char AnsiByte(QChar character) {
    const ushort value = character.unicode();
    if (value < 0x100 && !InUpperBlock(value))
        return char(value);
    for (size_t i = 0; i < ansiUpperBlock.size(); ++i)
        if (ansiUpperBlock[i] == value)
            return char(0x80 + i);
    return '?';
}

} // namespace

QStringList Split(const QString& text, const QString& separator) {
    if (text.isEmpty())
        return {};
    if (separator.isEmpty())
        return {text};
    return text.split(separator);
}

QString TrimLeft(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && text.at(start) == blank)
        ++start;
    return text.sliced(start);
}

QString TrimRight(const QString& text) {
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1) == blank)
        --end;
    return text.first(end);
}

QString Trim(const QString& text) { return TrimLeft(TrimRight(text)); }

QString Left(const QString& text, qsizetype count) { return count < 1 ? QString() : text.left(count); }

QString Right(const QString& text, qsizetype count) { return count < 1 ? QString() : text.right(count); }

QString Mid(const QString& text, qsizetype start, qsizetype count) {
    if (start < 1 || count < 1 || start > text.size())
        return {};
    return text.mid(start - 1, count);
}

QString LowerCase(const QString& text) { return text.toLower(); }

QString CutAtNull(const QString& text) {
    const qsizetype end = text.indexOf(QChar(u'\0'));
    return end < 0 ? text : text.first(end);
}

QByteArray ToAnsi(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        // A pair of surrogates is one character, so it becomes one "?".
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        bytes.append(AnsiByte(text.at(i)));
    }
    return bytes;
}

QString FromAnsi(const QByteArray& bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto value = uchar(bytes.at(i));
        text[i] = InUpperBlock(value) ? QChar(ansiUpperBlock[value - 0x80U]) : QChar(value);
    }
    return text;
}

} // namespace base
