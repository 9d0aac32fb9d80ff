#include "forms/screen.h"

#include "base/numbers.h"
#include "forms/desktop_watch.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace forms {

namespace {

struct ScaleStep {
    double upTo; // dots per inch
    double scale;
};

constexpr ScaleStep scaleSteps[] = {{96, 1.0}, {120, 1.25}, {144, 1.5}, {192, 2.0}, {216, 2.25}, {240, 2.5}};
constexpr double largestScale = 3.0;

double& GivenDotsPerInch() {
    static double given = 0;
    return given;
}

bool& DragSetting() {
    static bool on = true;
    return on;
}

} // namespace

double DotsPerInch() {
    if (GivenDotsPerInch() > 0)
        return GivenDotsPerInch();
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? standardDotsPerInch : screen->logicalDotsPerInchX();
}

void SetDotsPerInch(double dotsPerInch) { GivenDotsPerInch() = dotsPerInch; }

double TwipsPerPixel() { return twipsPerInch / DotsPerInch(); }

int ToPixels(double twips) { return base::RoundToInt(twips / TwipsPerPixel()); }

double ToTwips(int pixels) { return pixels * TwipsPerPixel(); }

double ScaleForDotsPerInch(double dotsPerInch) {
    for (const ScaleStep& step : scaleSteps)
        if (dotsPerInch <= step.upTo)
            return step.scale;
    return largestScale;
}

int Scaled(double pixels) { return std::max(1, int(std::lround(pixels * DotsPerInch() / standardDotsPerInch))); }

QRect Monitor(const QRect& place) {
    const QScreen* holder = QGuiApplication::primaryScreen();
    int most = 0;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect shown = screen->geometry() & place;
        if (shown.width() * shown.height() > most) {
            most = shown.width() * shown.height();
            holder = screen;
        }
    }
    return holder == nullptr ? QRect() : holder->geometry();
}

QRect WorkArea(const QRect& place) {
    const QRect monitor = Monitor(place);
    QRect area = monitor;
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen->geometry() == monitor)
            area = screen->availableGeometry();
    return qGuiApp == nullptr ? area : WithoutReserved(area, SharedDesktopWatch().ReservedStrips());
}

QRect MovedInto(QRect place, const QRect& area) {
    place.moveRight(std::min(place.right(), area.right()));
    place.moveBottom(std::min(place.bottom(), area.bottom()));
    place.moveTopLeft({std::max(place.left(), area.left()), std::max(place.top(), area.top())});
    return place;
}

int GetSystemMetrics(int index) {
    const double scale = DotsPerInch() / standardDotsPerInch;
    switch (index) {
    case BigIconWidth:
    case BigIconHeight:
        return base::RoundToInt(32 * scale);
    case SmallIconWidth:
    case SmallIconHeight:
        return base::RoundToInt(16 * scale);
    default:
        return 0;
    }
}

bool DragFullWindows() { return DragSetting(); }

void SetDragFullWindows(bool on) { DragSetting() = on; }

} // namespace forms
