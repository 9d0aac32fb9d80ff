#include "database/device_info.h"

#include "base/text.h"

#include <algorithm>

namespace database {

namespace {

InfoEntry DecodeEntry(const QString& text) {
    const QStringList fields = base::Split(text, QStringLiteral(","));
    return {fields.value(0), fields.value(1)};
}

} // namespace

std::vector<InfoEntry> DecodeInfo(const QString& info) {
    const QStringList lines = base::Split(info, QStringLiteral("\r\n"));
    std::vector<InfoEntry> entries;
    for (const QString& line : lines) {
        if (lines.size() == 1 || !base::Trim(line).isEmpty()) {
            entries.push_back(DecodeEntry(line));
        }
    }
    return entries;
}

bool IsDecimal(const QString& id) {
    const QString digits = base::Trim(id);
    return !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), [](QChar character) {
        return character.unicode() >= '0' && character.unicode() <= '9';
    });
}

} // namespace database
