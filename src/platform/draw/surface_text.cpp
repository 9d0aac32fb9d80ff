// Text. Glyphs are smoothed by the toolkit; their places follow the platform's rules.
#include "draw/surface.h"

#include "draw/text_layout.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace draw {

void Surface::DrawTextLine(int x, int y, const QString& text, int underlined) {
    if (text.isEmpty() || clip_.isEmpty())
        return;
    const QFontMetrics metrics(font_);
    if (backgroundMode_ == OPAQUE)
        FillSolid(QRect(x, y, metrics.horizontalAdvance(text), metrics.height()), ToRgb(backColour_));
    QPainter painter(&image_);
    if (clip_.size() > 1 || clip_.first() != image_.rect()) {
        QRegion clip;
        for (const QRect& part : clip_)
            clip += part;
        painter.setClipRegion(clip);
    }
    const QColor colour(ToRgb(textColour_));
    painter.setFont(font_);
    painter.setPen(colour);
    painter.drawText(x, y + metrics.ascent(), text);
    if (underlined >= 0) {
        const int from = metrics.horizontalAdvance(text, underlined);
        const int to = metrics.horizontalAdvance(text, underlined + 1);
        painter.fillRect(QRect(x + from, y + metrics.ascent() + 1, to - from, std::max(1, metrics.lineWidth())),
                         colour);
    }
}

void Surface::TextOutW(int x, int y, const QString& text) { DrawTextLine(x, y, text.left(LongestText), -1); }

QSize Surface::GetTextExtentPoint32W(const QString& text) const {
    const QFontMetrics metrics(font_);
    return {metrics.horizontalAdvance(text.left(LongestText)), metrics.height()};
}

int Surface::TextHeight() const { return QFontMetrics(font_).height(); }

int Surface::DrawTextW(const QString& text, const QRect& rect, unsigned format) {
    QRect copy = rect;
    return DrawTextW(text, copy, format & ~unsigned(DT_CALCRECT));
}

int Surface::DrawTextW(const QString& text, QRect& rect, unsigned format) {
    const TextLayout layout = LayOutText(text, QFontMetrics(font_), rect.width(), format);
    if (format & DT_CALCRECT) {
        rect.setSize(QSize(layout.Width(), layout.Height()));
        return layout.Height();
    }
    if (!IsDrawable())
        return layout.Height();

    int y = rect.top();
    if (format & DT_SINGLELINE && format & DT_VCENTER)
        y += (rect.height() - layout.Height()) / 2;
    else if (format & DT_SINGLELINE && format & DT_BOTTOM)
        y += rect.height() - layout.Height();

    const QVector<QRect> clip = clip_;
    if (!(format & DT_NOCLIP))
        clip_ = ClipWithin(rect);
    for (const TextLine& line : layout.lines) {
        int x = rect.left();
        if (format & DT_CENTER)
            x += (rect.width() - line.width) / 2;
        else if (format & DT_RIGHT)
            x += rect.width() - line.width;
        if (y > image_.height())
            break;
        if (y + layout.lineHeight > 0)
            DrawTextLine(x, y, line.text, line.underlined);
        y += layout.lineHeight;
    }
    clip_ = clip;
    return layout.Height();
}

} // namespace draw
