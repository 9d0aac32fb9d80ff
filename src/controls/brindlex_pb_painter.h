// Paints the progress bar from one struct of what it shows. No state; the caller owns the surface.
#pragma once

#include "base/colour.h"
#include "controls/progress_theme.h"
#include "draw/picture.h"
#include "draw/surface.h"

namespace controls {

enum ProgressAppearance { FlatBorder = 0, ThinBorder = 1, ThreeDimensionalBorder = 2 };
enum ProgressBorder { NoBorder = 0, SunkenBorder = 1, RaisedBorder = 2 };
inline constexpr int TilePictureMode = 1; // any other mode stretches

struct ProgressPaint {
    QSize size;
    double fraction = 0; // 0 to 1
    // With `blended` these are the two blend images, else the control's pictures, which may be none.
    draw::Picture backPicture;
    draw::Picture barPicture;
    bool blended = false;
    int backPictureMode = TilePictureMode;
    int barPictureMode = TilePictureMode;
    base::Colour backColor;
    base::Colour foreColor;
    base::Colour barColor;
    base::Colour barForeColor;
    base::Colour parentBackColor; // plain
    int appearance = ThinBorder;
    int borderStyle = SunkenBorder;
    bool segments = false;
    double dpiScale = 1;
    QString text; // empty: none is shown
    int textAlignX = 1;
    int textAlignY = 1;
    QFont font;
    std::optional<ProgressTheme> theme; // set when the visual style is to be tried
};

void DrawProgress(draw::Surface& target, const ProgressPaint& paint);

// Width of one drawn segment and of the gap behind it, in pixels.
struct SegmentSize {
    int chunk = 0;
    int gap = 0;
    int Step() const { return chunk + gap; }
};
SegmentSize SegmentSizeFor(int controlWidth, double dpiScale);

} // namespace controls
