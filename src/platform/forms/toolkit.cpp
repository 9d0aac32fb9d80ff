#include "forms/toolkit.h"

#include "draw/system_colours.h"

namespace forms {

QColor ToQColor(base::Colour colour) {
    const base::Colour plain = draw::OleTranslateColor(colour);
    return {plain.Red(), plain.Green(), plain.Blue()};
}

QString ShownCaption(const QString& caption) {
    QString shown;
    shown.reserve(caption.size());
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption.at(i) == u'&' && i + 1 < caption.size())
            ++i;
        shown.append(caption.at(i));
    }
    return shown;
}

} // namespace forms
