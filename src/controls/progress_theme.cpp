#include "controls/progress_theme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionProgressBar>
#include <QWidget>

namespace controls {

std::optional<ProgressTheme> ProgressTheme::OpenThemeData(const QWidget& widget) {
    const QStyle* style = widget.style();
    if (style == nullptr)
        return std::nullopt;
    return ProgressTheme(*style, widget);
}

std::optional<int> ProgressTheme::GetThemeInt(Property property) const {
    switch (property) {
    case TMT_PROGRESSCHUNKSIZE: {
        const int size = style_->pixelMetric(QStyle::PM_ProgressBarChunkWidth, nullptr, widget_);
        return size > 0 ? std::optional(size) : std::nullopt;
    }
    case TMT_PROGRESSSPACESIZE:
        return 0; // the toolkit's styles draw chunks without gaps
    }
    return std::nullopt;
}

void ProgressTheme::DrawThemeBackground(draw::Surface& surface, Part part, const QRect& rect) const {
    if (!surface.IsDrawable() || rect.isEmpty())
        return;
    const bool isChunk = part == PP_CHUNK || part == PP_CHUNKVERT;
    const bool isTall = part == PP_BARVERT || part == PP_CHUNKVERT;
    QPainter painter(&surface.Pixels());
    painter.setClipRect(rect);
    if (!isChunk)
        painter.fillRect(rect, widget_->palette().window());
    QStyleOptionProgressBar option;
    option.initFrom(widget_);
    option.rect = rect;
    option.minimum = 0;
    option.maximum = 1;
    option.progress = 1;
    option.textVisible = false;
    option.state |= QStyle::State_Horizontal;
    if (isTall) { // a wide bar stood on its left end, since not every style draws tall ones
        painter.translate(rect.left(), rect.top() + rect.height());
        painter.rotate(-90);
        option.rect = QRect(0, 0, rect.height(), rect.width());
    }
    style_->drawControl(isChunk ? QStyle::CE_ProgressBarContents : QStyle::CE_ProgressBarGroove, &option, &painter,
                        widget_);
}

void ProgressTheme::DrawThemeText(draw::Surface& surface, const QString& text, unsigned format,
                                  const QRect& rect) const {
    if (!surface.IsDrawable())
        return;
    int flags = Qt::TextSingleLine;
    flags |= format & draw::DT_CENTER ? Qt::AlignHCenter : format & draw::DT_RIGHT ? Qt::AlignRight : Qt::AlignLeft;
    flags |= format & draw::DT_VCENTER ? Qt::AlignVCenter : format & draw::DT_BOTTOM ? Qt::AlignBottom : Qt::AlignTop;
    QPainter painter(&surface.Pixels());
    painter.setFont(surface.Font());
    style_->drawItemText(&painter, rect, flags, widget_->palette(), true, text.left(4096), QPalette::WindowText);
}

} // namespace controls
