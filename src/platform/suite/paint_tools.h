// Small helpers that the controls of this folder paint with: colours of the program as colours of the toolkit, mixes of
// two, sizes that grow with the display's dots per inch, and the one look of the keyboard focus.
#pragma once

#include "base/colour.h"

#include <QColor>
#include <QRect>
#include <QString>

class QPainter;
class QPalette;

namespace suite {

QColor ToQColor(base::Colour colour);
base::Colour FromQColor(const QColor& colour);

// `share` 0 gives `from`, 1 gives `to`.
QColor Mix(const QColor& from, const QColor& to, double share);

// How well two colours are told apart, by relative luminance: 1 (not at all) to 21.
double Contrast(const QColor& a, const QColor& b);
// `wanted` if it is readable on `back`, else black or white, whichever reads better.
QColor ReadableOn(const QColor& back, const QColor& wanted);

// A length given in pixels at 96 dots per inch, in pixels of this display; at least 1.
int Scaled(double pixels);

// A thin rounded line just inside `area`.
void DrawFocusRing(QPainter& painter, const QRect& area, const QColor& ink);

// A caption as it is shown: "&&" becomes one ampersand, a single one is dropped.
QString ShownCaption(const QString& caption);

// A palette for toolkit widgets inside a control: fields, scroll bars and popups in shades of the two colours.
QPalette ControlPalette(const QColor& back, const QColor& fore);

} // namespace suite
