// How the button looks, given its state in one struct: places of caption and picture, gradient, content, frames. Pure
// functions on a surface; the control decides what is in the struct. All measures are pixels.
#pragma once

#include "base/colour.h"
#include "draw/picture.h"
#include "draw/surface.h"

#include <QFont>
#include <QRect>
#include <QString>

namespace controls {

enum VisualState { NormalState = 0, HotState = 1, DownState = 2, DisabledState = 3 };

// Which sides are square; the others are rounded.
enum Shape { RoundBoth = 0, SquareLeft = 1, SquareRight = 2, SquareBoth = 3 };
constexpr bool HasSquareLeft(int shape) { return shape == SquareLeft || shape == SquareBoth; }
constexpr bool HasSquareRight(int shape) { return shape == SquareRight || shape == SquareBoth; }

// What is drawn behind the caption. Raised and sunken also double the picture.
enum Effect { NoEffect = 0, Raised = 1, Sunken = 2, DarkBelow = 3 };

// Where the picture stands: in the control, or beside the caption with the pair centred. Other values leave it at the
// origin.
enum PictureAlign {
    PictureCentred = 0,
    PictureAtBottom = 1,
    PictureBelowCaption = 2,
    PictureAtLeft = 3,
    PictureLeftOfCaption = 4,
    PictureAtRight = 5,
    PictureRightOfCaption = 6,
    PictureAtTop = 7,
    PictureAboveCaption = 8
};

// All resolved; derived from the base colours, some of them overridden.
struct ButtonColours {
    base::Colour normal;
    base::Colour down;
    base::Colour hot;
    base::Colour text;
    base::Colour disabledText;
    base::Colour disabledFill;
    base::Colour start;
    base::Colour transparent;
    base::Colour reserved;
};

struct ButtonPaint {
    QSize size;
    int state = NormalState;        // decides the fill
    int currentState = NormalState; // decides the content
    bool value = false;
    bool focusFrame = false;
    int shape = SquareBoth;
    int effect = DarkBelow;
    QString caption;
    QFont font;
    ButtonColours colours;
    draw::Picture picture;
    QSize pictureSize;
    int pictureAlignment = PictureAtLeft;
    bool naturalPictureSize = true; // parts outside the control are cut off
    bool useMaskColour = true;
};

struct ButtonLayout {
    QRect caption;
    QRect picture;
};

// Places for caption and picture; an empty caption or picture has an empty place.
ButtonLayout LayoutContent(const ButtonPaint& paint);

// The whole control in two ramps that meet in the row at `percent` of the height.
void PaintGradient(draw::Surface& surface, base::Colour top, base::Colour bottom, int percent);

void PaintButton(draw::Surface& surface, const ButtonPaint& paint);

// Blends the picture faintly into the surface at `place`. The mask colour stays away; without one in use, a bitmap's
// top left pixel.
void PaintDisabledPicture(draw::Surface& surface, const ButtonPaint& paint, const QRect& place);

} // namespace controls
