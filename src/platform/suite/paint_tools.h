// Small helpers that the controls of this folder paint with: colours from and to the toolkit's, mixes of two, the
// palette of their widgets, and the one look of the keyboard focus.
#pragma once

#include "base/colour.h"
#include "forms/screen.h"
#include "forms/toolkit.h"

#include <QColor>
#include <QRect>

class QPainter;
class QPalette;

namespace suite {

using forms::Scaled;
using forms::ShownCaption;
using forms::ToQColor;

base::Colour FromQColor(const QColor& colour);

// `share` 0 gives `from`, 1 gives `to`.
QColor Mix(const QColor& from, const QColor& to, double share);

// How well two colours are told apart, by relative luminance: 1 (not at all) to 21.
double Contrast(const QColor& a, const QColor& b);
// `wanted` if it is readable on `back`, else black or white, whichever reads better.
QColor ReadableOn(const QColor& back, const QColor& wanted);
// `wanted`, moved towards `other` as far as it must be to be told apart from `back`.
QColor DistinctOn(const QColor& back, const QColor& wanted, const QColor& other);

// A thin rounded line just inside `area`.
void DrawFocusRing(QPainter& painter, const QRect& area, const QColor& ink);

// A palette for toolkit widgets inside a control: fields, scroll bars and popups in shades of the two colours.
QPalette ControlPalette(const QColor& back, const QColor& fore);

} // namespace suite
