// The persisted values of a title bar, as they stand after the control's creation. A plain value, owned by the control.
#pragma once

#include "base/colour.h"
#include "draw/picture.h"

#include <QString>

namespace controls {

namespace titel_bar {

// The built-in colours.
inline constexpr base::Colour Light = base::Colour::FromRgb(230, 230, 230);
inline constexpr base::Colour Steel = base::Colour::FromRgb(90, 110, 140);
inline constexpr base::Colour Night = base::Colour::FromRgb(38, 48, 79);
inline constexpr base::Colour Blue = base::Colour::FromRgb(17, 101, 187);
inline constexpr base::Colour Red = base::Colour::FromRgb(217, 35, 0);
inline constexpr base::Colour White{0xFFFFFFU};
inline constexpr base::Colour Charcoal{0x3C3C3CU};
inline constexpr base::Colour Black{0U};

// The styles that differ from the others: the strip with its slanted end and buttons set apart, and buttons a little
// way off the right edge.
inline constexpr int SlantedStyle = 13;
inline constexpr int NarrowStyle = 14;

} // namespace titel_bar

struct TitelBarState {
    bool autoRedraw = false;
    base::Colour backColor = titel_bar::Light;
    base::Colour foreColor = titel_bar::White; // the surface's foreground
    int backColorCover = 2000;                 // twips
    base::Colour backColorV1Begin = titel_bar::Light;
    base::Colour backColorV1End = titel_bar::Steel;
    base::Colour backColorV2Begin = titel_bar::Steel;
    base::Colour backColorV2End = titel_bar::Night;
    int borderNormal = 0; // pixels
    base::Colour borderColorHighLight = titel_bar::Black;
    base::Colour borderColorDarkLight = titel_bar::Black;
    base::Colour buttonBackColor = titel_bar::Blue;
    base::Colour buttonForeColor = titel_bar::White;
    base::Colour buttonXBackColor = titel_bar::Red;
    base::Colour buttonXForeColor = titel_bar::White;
    QString caption;
    base::Colour captionColor = titel_bar::White;
    base::Colour captionColorBack = titel_bar::Charcoal;
    int captionPosX = 0;
    int captionPosY = 0;
    bool dashBack = false;
    int iconStyle = 0;
    draw::Picture picture;
    draw::Picture pictureButton;
    int picturePosMode = 0;
    int picturePosX = 6; // pixels
    int picturePosY = 4; // pixels
    bool showClose = true;
    bool showMinimized = true;
    bool showMaximized = false;
    bool showHelp = false;
    bool showCloseEnabled = true;
    bool showMinimizedEnabled = true;
    bool showMaximizedEnabled = false;
    bool showHelpEnabled = false;
    int style = titel_bar::SlantedStyle;
};

} // namespace controls
