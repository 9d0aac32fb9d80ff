#include "shell/logo_badges.h"

#include <QFont>
#include <QPainter>

namespace shell {

namespace {

constexpr double badgeShare = 0.5; // of the logo's side
constexpr QColor ink(0x08, 0x28, 0x4D);

void DrawGlobe(QPainter& painter, const QRectF& disc) {
    const double inset = disc.width() * 0.2;
    const QRectF globe = disc.adjusted(inset, inset, -inset, -inset);
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(globe);
    painter.drawEllipse(globe.adjusted(globe.width() * 0.3, 0, -globe.width() * 0.3, 0));
    painter.drawLine(QPointF(globe.left(), globe.center().y()), QPointF(globe.right(), globe.center().y()));
}

} // namespace

draw::Picture WithBadge(const draw::Picture& logo, int index) {
    if (logo.IsEmpty())
        return logo;
    QImage image = logo.Image().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const double side = badgeShare * qMin(image.width(), image.height());
    const double line = side / 12;
    const QRectF disc(image.width() - side - line, image.height() - side - line, side, side);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, line));
    painter.setBrush(Qt::white);
    painter.drawEllipse(disc);
    if (index == 0) {
        DrawGlobe(painter, disc);
    } else {
        QFont font;
        font.setBold(true);
        font.setPixelSize(qMax(1, int(side * 0.75)));
        painter.setFont(font);
        painter.drawText(disc, Qt::AlignCenter, QString::number(index));
    }
    painter.end();
    return draw::Picture::FromImage(image);
}

} // namespace shell
