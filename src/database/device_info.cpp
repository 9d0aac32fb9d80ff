#include "database/device_info.h"

#include "base/text.h"

#include <algorithm>

namespace database {

namespace {

InfoEntry DecodeEntry(const QString& text) {
    const qsizetype comma = text.indexOf(u',');
    if (comma < 0) {
        return {text, QString()};
    }
    const qsizetype end = text.indexOf(u',', comma + 1);
    return {text.left(comma), text.mid(comma + 1, end < 0 ? -1 : end - comma - 1)};
}

bool IsBlank(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar character) { return character == u' '; });
}

} // namespace

std::vector<InfoEntry> DecodeInfo(const QString& info) {
    const QStringList lines = base::Split(info, QStringLiteral("\r\n"));
    std::vector<InfoEntry> entries;
    for (const QString& line : lines) {
        if (lines.size() == 1 || !IsBlank(line)) {
            entries.push_back(DecodeEntry(line));
        }
    }
    return entries;
}

bool IsDecimal(const QString& id) {
    QStringView digits(id);
    while (digits.startsWith(u' ')) {
        digits = digits.sliced(1);
    }
    while (digits.endsWith(u' ')) {
        digits.chop(1);
    }
    return !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), [](QChar character) {
        return character.unicode() >= '0' && character.unicode() <= '9';
    });
}

} // namespace database
