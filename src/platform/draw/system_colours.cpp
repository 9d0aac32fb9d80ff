#include "draw/system_colours.h"

#include <QPalette>
#include <array>

namespace draw {
namespace {

using Table = std::array<base::Colour, SysColorCount>;

constexpr base::Colour Rgb(quint32 rgb) {
    return base::Colour::FromRgb(int(rgb >> 16 & 0xFF), int(rgb >> 8 & 0xFF), int(rgb & 0xFF));
}

constexpr Table classicColours = {
    Rgb(0xC8C8C8), Rgb(0x000000), Rgb(0x99B4D1), Rgb(0xBFCDDB), Rgb(0xF0F0F0), Rgb(0xFFFFFF), Rgb(0x646464),
    Rgb(0x000000), Rgb(0x000000), Rgb(0x000000), Rgb(0xB4B4B4), Rgb(0xF4F7FC), Rgb(0xABABAB), Rgb(0x3399FF),
    Rgb(0xFFFFFF), Rgb(0xF0F0F0), Rgb(0xA0A0A0), Rgb(0x6D6D6D), Rgb(0x000000), Rgb(0x434E54), Rgb(0xFFFFFF),
    Rgb(0x696969), Rgb(0xE3E3E3), Rgb(0x000000), Rgb(0xFFFFE1), Rgb(0x000000), Rgb(0x0066CC), Rgb(0xB9D1EA),
    Rgb(0xD7E4F2), Rgb(0x3399FF), Rgb(0xF0F0F0),
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

void SetSysColors(const QPalette& palette) {
    for (const PaletteEntry& entry : paletteEntries) {
        const QColor colour = palette.color(entry.group, entry.role);
        SetSysColor(entry.index, base::Colour::FromRgb(colour.red(), colour.green(), colour.blue()));
    }
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
