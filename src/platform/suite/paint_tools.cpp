#include "suite/paint_tools.h"

#include "draw/contrast.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <cmath>

namespace suite {

namespace {

constexpr double leastReadable = 3.0;

} // namespace

base::Colour FromQColor(const QColor& colour) {
    return base::Colour::FromRgb(colour.red(), colour.green(), colour.blue());
}

QColor Mix(const QColor& from, const QColor& to, double share) {
    const auto part = [share](int a, int b) { return int(std::lround(a + (b - a) * share)); };
    return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

double Contrast(const QColor& a, const QColor& b) { return draw::Contrast(FromQColor(a), FromQColor(b)); }

QColor ReadableOn(const QColor& back, const QColor& wanted) {
    if (Contrast(back, wanted) >= leastReadable)
        return wanted;
    return Contrast(back, Qt::black) >= Contrast(back, Qt::white) ? QColor(Qt::black) : QColor(Qt::white);
}

QColor DistinctOn(const QColor& back, const QColor& wanted, const QColor& other) {
    constexpr int steps = 20;
    int step = 0;
    while (step < steps && Contrast(back, Mix(wanted, other, double(step) / steps)) < leastReadable)
        ++step;
    return Mix(wanted, other, double(step) / steps);
}

void DrawFocusRing(QPainter& painter, const QRect& area, const QColor& ink) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = Scaled(1);
    painter.setPen(QPen(ink, width));
    painter.setBrush(Qt::NoBrush);
    const double inset = width / 2;
    painter.drawRoundedRect(QRectF(area).adjusted(inset, inset, -inset, -inset), Scaled(2), Scaled(2));
    painter.restore();
}

QPalette ControlPalette(const QColor& back, const QColor& fore) {
    QPalette palette = QGuiApplication::palette();
    const QColor raised = Mix(back, fore, 0.10);
    palette.setColor(QPalette::Base, back);
    palette.setColor(QPalette::AlternateBase, Mix(back, fore, 0.04));
    palette.setColor(QPalette::Window, back);
    palette.setColor(QPalette::Button, raised);
    palette.setColor(QPalette::Light, Mix(raised, Qt::white, 0.35));
    palette.setColor(QPalette::Midlight, Mix(raised, Qt::white, 0.15));
    palette.setColor(QPalette::Mid, Mix(back, fore, 0.30));
    palette.setColor(QPalette::Dark, Mix(back, fore, 0.45));
    palette.setColor(QPalette::Shadow, Mix(back, Qt::black, 0.6));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText, QPalette::BrightText}) {
        palette.setColor(role, fore);
        palette.setColor(QPalette::Disabled, role, Mix(fore, back, 0.5));
    }
    palette.setColor(QPalette::PlaceholderText, Mix(fore, back, 0.4));
    return palette;
}

} // namespace suite
