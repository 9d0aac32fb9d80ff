#include "forms/screen.h"

#include "base/numbers.h"

#include <QGuiApplication>
#include <QScreen>

namespace forms {

namespace {

constexpr double twipsPerInch = 1440;
constexpr double standardDotsPerInch = 96;

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

double ScreenWidth() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? 0 : ToTwips(screen->geometry().width());
}

double ScreenHeight() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? 0 : ToTwips(screen->geometry().height());
}

QRect WorkArea() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? QRect() : screen->availableGeometry();
}

int GetSystemMetrics(int index) {
    const double scale = DotsPerInch() / standardDotsPerInch;
    switch (index) {
    case 11:
    case 12:
        return base::RoundToInt(32 * scale);
    case 49:
    case 50:
        return base::RoundToInt(16 * scale);
    default:
        return 0;
    }
}

bool DragFullWindows() { return DragSetting(); }

void SetDragFullWindows(bool on) { DragSetting() = on; }

} // namespace forms
