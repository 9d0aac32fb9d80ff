// The system colours by the platform's index (0 to 30) and the translation of colour values that name one. The process
// has one table; it starts with the platform's classic values and is set from the toolkit's palette at start.
#pragma once

#include "base/colour.h"

#include <optional>

class QPalette;

namespace draw {

enum SysColor {
    COLOR_SCROLLBAR = 0,
    COLOR_BACKGROUND = 1,
    COLOR_ACTIVECAPTION = 2,
    COLOR_INACTIVECAPTION = 3,
    COLOR_MENU = 4,
    COLOR_WINDOW = 5,
    COLOR_WINDOWFRAME = 6,
    COLOR_MENUTEXT = 7,
    COLOR_WINDOWTEXT = 8,
    COLOR_CAPTIONTEXT = 9,
    COLOR_ACTIVEBORDER = 10,
    COLOR_INACTIVEBORDER = 11,
    COLOR_APPWORKSPACE = 12,
    COLOR_HIGHLIGHT = 13,
    COLOR_HIGHLIGHTTEXT = 14,
    COLOR_BTNFACE = 15,
    COLOR_BTNSHADOW = 16,
    COLOR_GRAYTEXT = 17,
    COLOR_BTNTEXT = 18,
    COLOR_INACTIVECAPTIONTEXT = 19,
    COLOR_BTNHIGHLIGHT = 20,
    COLOR_3DDKSHADOW = 21,
    COLOR_3DLIGHT = 22,
    COLOR_INFOTEXT = 23,
    COLOR_INFOBK = 24,
    COLOR_HOTLIGHT = 26,
    COLOR_GRADIENTACTIVECAPTION = 27,
    COLOR_GRADIENTINACTIVECAPTION = 28,
    COLOR_MENUHILIGHT = 29,
    COLOR_MENUBAR = 30,
};
inline constexpr int SysColorCount = 31;

// A plain colour; black for an index that the table does not have.
base::Colour GetSysColor(int index);
// Sets one entry. An index outside the table or a value that is itself a system colour changes nothing.
void SetSysColor(int index, base::Colour colour);
// Fills the table from the toolkit's palette, and back to the classic values.
void SetSysColors(const QPalette& palette);
void ResetSysColors();

// The colour value of a system colour: 0x80000000 + index.
constexpr base::Colour SystemColour(int index) { return base::Colour(0x80000000U | quint32(index)); }

// The plain colour that a value stands for. Nothing for a system colour outside the table and for a top byte without
// meaning.
std::optional<base::Colour> TryOleTranslateColor(base::Colour colour);
// The same; a value without meaning gives its low three bytes.
base::Colour OleTranslateColor(base::Colour colour);

} // namespace draw
