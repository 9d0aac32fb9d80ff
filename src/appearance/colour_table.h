// The colour table: the program is drawn in twenty-eight colours that the user edits. This file is the table as data
// (keys, labels, defaults, orders of loading and saving) and its way to and from files. The working copy of a colour is
// the Color of the element of that index in the ColorPicker array of FrmColors, which stays loaded, hidden, while the
// program runs.
#pragma once

#include "base/colour.h"
#include "draw/system_colours.h"

#include <QString>
#include <array>
#include <optional>

namespace suite {
class ColorPicker;
class ComboBox;
} // namespace suite

namespace appearance {

// Indices into the picker array. The array has no elements 11 and 15.
enum ColourIndex {
    ProgramBack = 0,
    ProgramText = 1,
    ButtonTopBack = 2,
    ButtonText = 3,
    TextBack = 4,
    TextText = 5,
    TitleTopBack = 6,
    TitleBottomBack = 7,
    TitleTopBack2 = 8,
    TitleBottomBack2 = 9,
    TitleText = 10,
    ImportantText = 12,
    InfoText = 13,
    LogoBack = 14,
    ImportantButtonTopBack = 16,
    ImportantButtonText = 17,
    PbBack = 18,
    PbText = 19,
    PbBar = 20,
    PbFillText = 21,
    MbBack = 22,
    MbText = 23,
    MbBar = 24,
    MbFillText = 25,
    TitleButtonBack = 26,
    TitleButtonFore = 27,
    TitleButtonXBack = 28,
    TitleButtonXFore = 29
};
constexpr int pickerArraySize = 30;

// A colour written the way people read it, 0xRRGGBB.
constexpr base::Colour Rgb(quint32 rrggbb) {
    return base::Colour::FromRgb(int(rrggbb >> 16 & 0xFF), int(rrggbb >> 8 & 0xFF), int(rrggbb & 0xFF));
}

struct ColourRow {
    ColourIndex Index;
    const char* Key;   // in section "colors"
    const char* Label; // beside the swatch, "&&" shows one ampersand
    base::Colour Default;
    base::Colour WindowsDefault; // a system colour or a plain value
};

// clang-format off
inline constexpr std::array<ColourRow, 28> colourRows = {{
    {ProgramBack,            "programback",            "Background",       Rgb(0x404040), draw::SystemColour(draw::COLOR_BTNFACE)},
    {ProgramText,            "programtext",            "Text",             Rgb(0xFFFFFF), draw::SystemColour(draw::COLOR_BTNTEXT)},
    {ButtonTopBack,          "buttontopback",          "Background",       Rgb(0x808080), draw::SystemColour(draw::COLOR_ACTIVECAPTION)},
    {ButtonText,             "buttontext",             "Text",             Rgb(0xFFFFFF), draw::SystemColour(draw::COLOR_BTNTEXT)},
    {TextBack,               "textback",               "Background",       Rgb(0xC0C0C0), draw::SystemColour(draw::COLOR_WINDOW)},
    {TextText,               "texttext",               "Text",             Rgb(0x000000), draw::SystemColour(draw::COLOR_WINDOWTEXT)},
    {TitleTopBack,           "titletopback",           "Top",              Rgb(0x3399FF), draw::SystemColour(draw::COLOR_ACTIVECAPTION)},
    {TitleBottomBack,        "titlebottomback",        "Bottom && Border", Rgb(0x000000), draw::SystemColour(draw::COLOR_ACTIVECAPTION)},
    {TitleTopBack2,          "titletopback2",          "Top Right",        Rgb(0xC0C0C0), draw::SystemColour(draw::COLOR_ACTIVECAPTION)},
    {TitleBottomBack2,       "titlebottomback2",       "Bottom Right",     Rgb(0xC0C0C0), draw::SystemColour(draw::COLOR_ACTIVECAPTION)},
    {TitleText,              "titletext",              "Text",             Rgb(0xFFFFFF), draw::SystemColour(draw::COLOR_CAPTIONTEXT)},
    {ImportantText,          "importanttext",          "Important Text",   Rgb(0xFDC800), Rgb(0x0085C3)},
    {InfoText,               "infotext",               "Info Text",        Rgb(0x3399FF), Rgb(0x00C000)},
    {LogoBack,               "logoback",               "Logo Background",  Rgb(0x808080), draw::SystemColour(draw::COLOR_BTNSHADOW)},
    {ImportantButtonTopBack, "importantbuttontopback", "Background",       Rgb(0x3399FF), draw::SystemColour(draw::COLOR_ACTIVECAPTION)},
    {ImportantButtonText,    "importantbuttontext",    "Text",             Rgb(0xFFFFFF), draw::SystemColour(draw::COLOR_CAPTIONTEXT)},
    {PbBack,                 "pbback",                 "Background",       Rgb(0xC0C0C0), draw::SystemColour(draw::COLOR_WINDOW)},
    {PbText,                 "pbtext",                 "Text",             Rgb(0x000000), draw::SystemColour(draw::COLOR_WINDOWTEXT)},
    {PbBar,                  "pbbar",                  "Fill",             Rgb(0x3399FF), draw::SystemColour(draw::COLOR_HIGHLIGHT)},
    {PbFillText,             "pbfilltext",             "Fill Text",        Rgb(0x000000), draw::SystemColour(draw::COLOR_HIGHLIGHTTEXT)},
    {MbBack,                 "mbback",                 "Background",       Rgb(0xC0C0C0), draw::SystemColour(draw::COLOR_WINDOW)},
    {MbText,                 "mbtext",                 "Text",             Rgb(0x000000), draw::SystemColour(draw::COLOR_WINDOWTEXT)},
    {MbBar,                  "mbbar",                  "Fill",             Rgb(0xFDC800), draw::SystemColour(draw::COLOR_HIGHLIGHT)},
    {MbFillText,             "mbfilltext",             "Fill Text",        Rgb(0x000000), draw::SystemColour(draw::COLOR_HIGHLIGHTTEXT)},
    {TitleButtonBack,        "titlebuttonback",        "Button Back",      Rgb(0x1165BB), Rgb(0x1165BB)},
    {TitleButtonFore,        "titlebuttonfore",        "Button Top",       Rgb(0xFFFFFF), Rgb(0xFFFFFF)},
    {TitleButtonXBack,       "titlebuttonxback",       "Button X Back",    Rgb(0xD92300), Rgb(0xD92300)},
    {TitleButtonXFore,       "titlebuttonxfore",       "Button X Top",     Rgb(0xFFFFFF), Rgb(0xFFFFFF)},
}};
// clang-format on

// Files are read in this order: the window's colours, then, from settings only, the important button's colours are
// taken from title bar top and title text, then bars and title buttons, and last the important button's own two.
inline constexpr std::array windowColours = {ProgramBack,     ProgramText,   ImportantText,    InfoText, LogoBack,
                                             ButtonTopBack,   ButtonText,    TextBack,         TextText, TitleTopBack,
                                             TitleBottomBack, TitleTopBack2, TitleBottomBack2, TitleText};
inline constexpr std::array barColours = {
    PbBack, PbText,     PbBar,           PbFillText,      MbBack,           MbText,
    MbBar,  MbFillText, TitleButtonBack, TitleButtonFore, TitleButtonXBack, TitleButtonXFore};
inline constexpr std::array importantButtonColours = {ImportantButtonTopBack, ImportantButtonText};

// Row of an index; null for 11, 15 and everything outside.
const ColourRow* RowOf(int index);

// The element of FrmColors' picker array, which owns it. Makes and loads that window if it is not there yet. Null for
// an index without an element, while the program is closing, and where no maker of FrmColors is registered.
suite::ColorPicker* ColorPicker(int index);

// The working copy of a colour; its default where there is no picker. Setting does nothing without one.
base::Colour ColorOf(int index);
void SetColor(int index, base::Colour colour);

// The colour that a text of a file spells in decimal, nothing if it is no whole number of 32 bits.
std::optional<base::Colour> ColourFromText(const QString& text);

// Reads the colours from settings.ini. What is missing or spells no number leaves its colour as it is.
void LoadColors();
// The same from a preset, where an important button without keys keeps its colours.
void LoadColorPreset(const QString& name);

// Writes the 28 colours to settings.ini, or to the preset's file, making the presets' folder if need be. Failures are
// silent. Without a colour window there is nothing to save, and the files stay.
void SaveColors();
// A name that is no plain file name of the folder (separators, "." and "..", too long, control characters) is not
// written.
void SaveColorPreset(const QString& name);
bool IsSafePresetName(const QString& name);

// Sets all 28 pickers from the desktop's present colours, as plain values.
void TakeWindowsDefaultColors();
inline constexpr auto windowsDefaultPreset = "Current Windows Default";

// Refills a combo box: an empty item, "Current Windows Default", then the presets of the folder. Clears its selection.
void ListColorPresets(suite::ComboBox* combo);

} // namespace appearance
