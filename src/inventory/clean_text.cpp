#include "inventory/clean_text.h"

#include "base/text.h"
#include "base/yield.h"

namespace inventory {

QString CleanText(const QVariant& value) {
    QString text = value.toString();
    text.replace(QChar(u'\t'), QChar(u' '));
    text.replace(QChar(u'\u00A0'), QChar(u' '));
    const QString two = QStringLiteral("  ");
    const QString one = QStringLiteral(" ");
    while (text.contains(two)) {
        text.replace(two, one);
        base::Yield();
    }
    return base::Trim(text);
}

} // namespace inventory
