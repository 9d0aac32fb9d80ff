#include "draw/system_colours.h"

#include "draw/contrast.h"
#include "draw/pixels.h"

#include <QPalette>
#include <array>

namespace draw {
namespace {

using Table = std::array<base::Colour, SysColorCount>;

constexpr Table classicColours = {
    FromRgb(0xC8C8C8), FromRgb(0x000000), FromRgb(0x99B4D1), FromRgb(0xBFCDDB), FromRgb(0xF0F0F0), FromRgb(0xFFFFFF),
    FromRgb(0x646464), FromRgb(0x000000), FromRgb(0x000000), FromRgb(0x000000), FromRgb(0xB4B4B4), FromRgb(0xF4F7FC),
    FromRgb(0xABABAB), FromRgb(0x3399FF), FromRgb(0xFFFFFF), FromRgb(0xF0F0F0), FromRgb(0xA0A0A0), FromRgb(0x6D6D6D),
    FromRgb(0x000000), FromRgb(0x434E54), FromRgb(0xFFFFFF), FromRgb(0x696969), FromRgb(0xE3E3E3), FromRgb(0x000000),
    FromRgb(0xFFFFE1), FromRgb(0x000000), FromRgb(0x0066CC), FromRgb(0xB9D1EA), FromRgb(0xD7E4F2), FromRgb(0x3399FF),
    FromRgb(0xF0F0F0),
};

struct PaletteEntry {
    SysColor index;
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

constexpr PaletteEntry paletteEntries[] = {
    {COLOR_SCROLLBAR, QPalette::Active, QPalette::Midlight},
    {COLOR_MENU, QPalette::Active, QPalette::Window},
    {COLOR_WINDOW, QPalette::Active, QPalette::Base},
    {COLOR_WINDOWFRAME, QPalette::Active, QPalette::Dark},
    {COLOR_MENUTEXT, QPalette::Active, QPalette::WindowText},
    {COLOR_WINDOWTEXT, QPalette::Active, QPalette::Text},
    {COLOR_APPWORKSPACE, QPalette::Active, QPalette::Mid},
    {COLOR_HIGHLIGHT, QPalette::Active, QPalette::Highlight},
    {COLOR_HIGHLIGHTTEXT, QPalette::Active, QPalette::HighlightedText},
    {COLOR_BTNFACE, QPalette::Active, QPalette::Button},
    {COLOR_BTNSHADOW, QPalette::Active, QPalette::Dark},
    {COLOR_GRAYTEXT, QPalette::Disabled, QPalette::WindowText},
    {COLOR_BTNTEXT, QPalette::Active, QPalette::ButtonText},
    {COLOR_BTNHIGHLIGHT, QPalette::Active, QPalette::Light},
    {COLOR_3DDKSHADOW, QPalette::Active, QPalette::Shadow},
    {COLOR_3DLIGHT, QPalette::Active, QPalette::Midlight},
    {COLOR_INFOTEXT, QPalette::Active, QPalette::ToolTipText},
    {COLOR_INFOBK, QPalette::Active, QPalette::ToolTipBase},
    {COLOR_HOTLIGHT, QPalette::Active, QPalette::Link},
    {COLOR_MENUHILIGHT, QPalette::Active, QPalette::Highlight},
    {COLOR_MENUBAR, QPalette::Active, QPalette::Window},
};

Table& SystemColours() {
    static Table table = classicColours;
    return table;
}

bool IsInTable(quint32 index) { return index < quint32(SysColorCount); }

} // namespace

base::Colour GetSysColor(int index) {
    return IsInTable(quint32(index)) ? SystemColours()[size_t(index)] : base::Colour();
}

void SetSysColor(int index, base::Colour colour) {
    if (IsInTable(quint32(index)) && !colour.IsSystemColour())
        SystemColours()[size_t(index)] = colour;
}

namespace {

constexpr double readable = 4.5;

base::Colour Between(base::Colour a, base::Colour b, int tenths) {
    const auto part = [tenths](int from, int to) { return from + (to - from) * tenths / 10; };
    return base::Colour::FromRgb(part(a.Red(), b.Red()), part(a.Green(), b.Green()), part(a.Blue(), b.Blue()));
}

// The toolkit knows nothing of captions. The classic colours serve as long as the theme's text on buttons, which is put
// on them too, can be read there; otherwise they are the theme's buttons with as much of its highlight as that bears.
void SetCaptionColours() {
    const base::Colour text = GetSysColor(COLOR_BTNTEXT);
    const base::Colour face = GetSysColor(COLOR_BTNFACE);
    for (const int index : {COLOR_ACTIVECAPTION, COLOR_INACTIVECAPTION, COLOR_CAPTIONTEXT, COLOR_INACTIVECAPTIONTEXT,
                            COLOR_GRADIENTACTIVECAPTION, COLOR_GRADIENTINACTIVECAPTION})
        SetSysColor(index, classicColours.at(size_t(index)));
    if (Contrast(text, GetSysColor(COLOR_ACTIVECAPTION)) >= readable)
        return;
    int tenths = 5;
    while (tenths > 0 && Contrast(text, Between(face, GetSysColor(COLOR_HIGHLIGHT), tenths)) < readable)
        --tenths;
    const base::Colour active = Between(face, GetSysColor(COLOR_HIGHLIGHT), tenths);
    SetSysColor(COLOR_ACTIVECAPTION, active);
    SetSysColor(COLOR_GRADIENTACTIVECAPTION, active);
    SetSysColor(COLOR_INACTIVECAPTION, face);
    SetSysColor(COLOR_GRADIENTINACTIVECAPTION, face);
    SetSysColor(COLOR_CAPTIONTEXT, text);
    SetSysColor(COLOR_INACTIVECAPTIONTEXT, text);
}

} // namespace

void SetSysColors(const QPalette& palette) {
    for (const PaletteEntry& entry : paletteEntries) {
        SetSysColor(entry.index, FromRgb(palette.color(entry.group, entry.role).rgb()));
    }
    SetCaptionColours();
}

void ResetSysColors() { SystemColours() = classicColours; }

std::optional<base::Colour> TryOleTranslateColor(base::Colour colour) {
    const quint32 low = colour.Value() & 0x00FFFFFFU;
    switch (colour.Value() >> 24) {
    case 0x00:
    case 0x02: // the nearest palette colour, which on a 32-bit surface is the colour itself
        return base::Colour(low);
    case 0x80:
        return IsInTable(low) ? std::optional(GetSysColor(int(low))) : std::nullopt;
    default:
        return std::nullopt;
    }
}

base::Colour OleTranslateColor(base::Colour colour) {
    return TryOleTranslateColor(colour).value_or(base::Colour(colour.Value() & 0x00FFFFFFU));
}

} // namespace draw
