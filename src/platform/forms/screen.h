// The screen as the program measures it: twips, dots per inch, system metrics and the work area. Coordinates of forms
// and controls are twips, 1/1440 inch; everything else here says its unit.
#pragma once

#include <QRect>

namespace forms {

constexpr double twipsPerInch = 1440;
// What designs in pixels are made for.
constexpr double standardDotsPerInch = 96;

// Horizontal and vertical dots per inch are one value on every platform served.
double DotsPerInch();
// Another value than the screen's own, for everything that is measured afterwards; 0 is the screen's own again.
void SetDotsPerInch(double dotsPerInch);
double TwipsPerPixel();

// Twips to the nearest pixel and back.
int ToPixels(double twips);
double ToTwips(int pixels);

// The factor for sizes of icons, bars and shadows: 1.0 up to 96 dots per inch, 3.0 above 240, five steps between them.
double ScaleForDotsPerInch(double dotsPerInch);

// A length given in pixels at 96 dots per inch, in pixels of this display; at least 1.
int Scaled(double pixels);

// The monitor that shows the most of a place, in pixels of the whole desktop; the primary one for a place that none
// shows.
QRect Monitor(const QRect& place = {});

// That monitor without panels and docks, in pixels (SystemParametersInfoA, action 48).
QRect WorkArea(const QRect& place = {});

// A place moved into an area by the shortest way; one that is too large keeps its upper left corner inside.
QRect MovedInto(QRect place, const QRect& area);

// The metrics that GetSystemMetrics answers, in pixels; 0 for any other index.
enum SystemMetric { BigIconWidth = 11, BigIconHeight = 12, SmallIconWidth = 49, SmallIconHeight = 50 };
int GetSystemMetrics(int index);

// The system-wide setting "show window contents while dragging" (SystemParametersInfoA, actions 38 and 37). The desktop
// has none, so it is a value of the process, on at first.
bool DragFullWindows();
void SetDragFullWindows(bool on);

} // namespace forms
