#include "forms/density.h"

#include "forms/screen.h"

#include <QApplication>
#include <QFontMetricsF>
#include <algorithm>

namespace forms {

namespace {

constexpr double leastDotsPerInch = 72; // smaller text is read by nobody
constexpr double ratioThatFits = 1.05;  // the room that captions have in the design

// The design's text at 96 dots per inch, in pixels: what this sample takes, and the height of the lowest label.
constexpr auto sample = "All Except Standard System Devices Refresh Hardware Lists Search Google For Drivers";
constexpr double sampleWidth = 520;
constexpr double labelHeight = 17;

double TextRatio(double dotsPerInch) {
    const QFontMetricsF metrics(QApplication::font());
    const double scale = dotsPerInch / standardDotsPerInch;
    return std::max(metrics.horizontalAdvance(QLatin1String(sample)) / (sampleWidth * scale),
                    metrics.height() / (labelHeight * scale));
}

void ScaleFont(double factor) {
    QFont font = QApplication::font();
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(std::max(1, int(font.pixelSize() * factor)));
    QApplication::setFont(font);
}

} // namespace

Density FitDensity(double screenDotsPerInch, double textRatio, QSize room, double widest, double highest) {
    const double wanted = screenDotsPerInch * (textRatio > ratioThatFits ? textRatio : 1);
    Density density{wanted, 1};
    if (room.isEmpty())
        return density;
    const double most = std::min(room.width() * twipsPerInch / widest, room.height() * twipsPerInch / highest);
    if (wanted > most) {
        density.dotsPerInch = std::min(wanted, std::max(most, leastDotsPerInch));
        density.textFactor = density.dotsPerInch / wanted;
    }
    return density;
}

void ApplyDensity(double widest, double highest) {
    const double screen = DotsPerInch();
    const Density density = FitDensity(screen, TextRatio(screen), WorkArea().size(), widest, highest);
    SetDotsPerInch(density.dotsPerInch);
    if (density.textFactor < 1)
        ScaleFont(density.textFactor);
}

} // namespace forms
