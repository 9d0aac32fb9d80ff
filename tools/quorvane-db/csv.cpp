#include "csv.h"

namespace tool {

bool ParseCsv(const QByteArray& text, std::vector<QStringList>& rows) {
    QByteArray field;
    QStringList row;
    bool quoted = false;
    bool any = false; // of the present row
    const auto endField = [&] {
        row.append(QString::fromUtf8(field));
        field.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (quoted) {
            const bool quote = character == '"';
            const bool doubled = quote && i + 1 < text.size() && text[i + 1] == '"';
            if (quote && !doubled) {
                quoted = false;
            } else {
                field += character;
                i += doubled ? 1 : 0;
            }
        } else if (character == '"') {
            quoted = any = true;
        } else if (character == ',') {
            any = true;
            endField();
        } else if (character == '\n') {
            if (any) {
                endField();
                rows.push_back(std::move(row));
            }
            row = QStringList();
            any = false;
        } else {
            any = true;
            field += character;
        }
    }
    if (any) {
        endField();
        rows.push_back(row);
    }
    return !quoted;
}

} // namespace tool
