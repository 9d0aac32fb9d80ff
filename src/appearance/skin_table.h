// The skin as data: which prefix of a control's name sets which properties to which colour, and in which order the
// routines run. A routine walks all controls of a window and tests its rows one after the other, never as alternatives,
// so a control can match several and later settings win. Prefixes without a control in today's windows serve windows to
// come.
#pragma once

#include "appearance/colour_table.h"

#include <array>

namespace appearance {

// The routines that walk a window's controls.
enum class Routine {
    TitleStart,
    TitleEnd,
    TitleFore,
    Back,
    Fore,
    Border,
    Important,
    Info,
    Logo,
    ButtonBack,
    ButtonFore,
    TextFore,
    TextBack,
    SecondButtonBack,
    SecondButtonFore,
    ProgressBar,
    MonitorBar,
    None
};

// What a row's properties are set to besides colours of the table.
constexpr int flatAppearance = 100; // the number 2
constexpr int pBarSegments = 101;   // the two segment check boxes, true or false
constexpr int mBarSegments = 102;

// What a control needs beyond its properties.
enum class Extra { None, RepaintTabs, ApplyBackGround, Frame, BackCells, ForeCells };

struct SkinRow {
    Routine In;
    std::array<const char*, 7> Prefixes; // lower case, empty places are null
    std::array<const char*, 7> Properties;
    int Value; // index into the colour table, or one of the three above
    Extra Then = Extra::None;
};

// clang-format off
inline constexpr SkinRow skinRows[] = {
    {Routine::TitleStart, {"panel"}, {"gCTitleStart"}, TitleTopBack},
    {Routine::TitleEnd, {"panel"}, {"gCTitleEnd"}, TitleBottomBack},
    {Routine::TitleFore, {"panel"}, {"TitleForeColor"}, TitleText},

    {Routine::Back, {"opt", "lab", "lbl", "chk", "che"}, {"BackColor"}, ProgramBack},
    {Routine::Fore, {"opt", "lab", "lbl", "chk", "che"}, {"ForeColor"}, ProgramText},
    {Routine::Back, {"pict"}, {"BackColor"}, ProgramBack},
    {Routine::Back, {"info"}, {"BackColor"}, ProgramBack},
    {Routine::Info, {"info"}, {"ForeColor"}, InfoText},
    {Routine::Back, {"important"}, {"BackColor"}, ProgramBack},
    {Routine::Important, {"important"}, {"ForeColor"}, ImportantText},
    {Routine::Important, {"importantpic"}, {"BackColor"}, ImportantText},
    {Routine::Back, {"resizer"}, {"BackColor"}, ProgramBack},
    {Routine::Info, {"resizer"}, {"ForeColor"}, InfoText},
    {Routine::Back, {"taskbar"}, {"BackColor"}, ProgramBack},
    {Routine::Border, {"taskbar"}, {"ForeColor"}, TitleBottomBack},
    {Routine::ButtonBack, {"taskbar"}, {"SelectingBackColor", "SunkenBackColor"}, ButtonTopBack},
    {Routine::ButtonFore, {"taskbar"}, {"ButtonForeColor"}, ButtonText},
    {Routine::Back, {"fra"}, {"BackColor"}, ProgramBack},
    {Routine::Back, {"fra"}, {"Appearance"}, flatAppearance},
    {Routine::Fore, {"fra"}, {"ForeColor"}, ProgramText},
    {Routine::Fore, {"fra"}, {"Appearance"}, flatAppearance},
    {Routine::Back, {"colorpicker"}, {"BackColor"}, ProgramBack},
    {Routine::Back, {"colorpicker"}, {"Appearance"}, flatAppearance},
    {Routine::Back, {"scroll"}, {"BarBackColor", "ButtonsBackColor", "ScrollerBackColor", "ScrollerGripColor"}, ProgramBack},
    {Routine::Border, {"scroll"}, {"BarBorderColor", "ButtonsBorderColor", "ScrollerBorderColor"}, TitleBottomBack},
    {Routine::Fore, {"scroll"}, {"ButtonsArrowColor"}, ProgramText},
    {Routine::Back, {"alphashape"}, {"BackColor"}, ProgramBack},
    {Routine::Border, {"alphashape"}, {"BorderColor"}, TitleBottomBack},
    {Routine::Fore, {"alphashape"}, {"FillColor"}, ProgramText},
    {Routine::Border, {"pictureshape"}, {"BorderColor"}, TitleBottomBack},
    {Routine::Border, {"picturebase"}, {"ForeColor"}, TitleBottomBack, Extra::Frame},
    {Routine::Border, {"barpic"}, {"BackColor"}, TitleBottomBack},
    {Routine::Back, {"xtab"}, {"ActiveTabBackStartColor", "ActiveTabBackEndColor", "TabStripBackColor", "HoverColor", "FocusedColor"}, ProgramBack},
    {Routine::Fore, {"xtab"}, {"ActiveTabForeColor"}, ProgramText},
    {Routine::ButtonBack, {"xtab"}, {"OuterBorderColor", "InActiveTabBackStartColor", "InActiveTabBackEndColor"}, ButtonTopBack},
    {Routine::ButtonFore, {"xtab"}, {"InActiveTabForeColor"}, ButtonText},
    {Routine::Back, {"tabcontrol"},
     {"BackColor", "PaintManager.ColorSet.ButtonSelected", "PaintManager.ColorSet.ButtonHighlighted",
      "PaintManager.ColorSet.HeaderFaceDark", "PaintManager.ColorSet.HeaderFaceLight", "PaintManager.ColorSet.PaneFace",
      "PaintManager.ColorSet.ControlFace"}, ProgramBack, Extra::RepaintTabs},
    {Routine::Border, {"tabcontrol"}, {"PaintManager.ColorSet.FrameBorder"}, TitleBottomBack, Extra::RepaintTabs},
    {Routine::Fore, {"tabcontrol"}, {"PaintManager.ColorSet.SelectedText", "PaintManager.ColorSet.HighlightText"}, ProgramText, Extra::RepaintTabs},
    {Routine::ButtonBack, {"tabcontrol"}, {"PaintManager.ColorSet.ButtonNormal", "PaintManager.ColorSet.BorderHighlight"}, ButtonTopBack, Extra::RepaintTabs},
    {Routine::ButtonFore, {"tabcontrol"}, {"PaintManager.ColorSet.NormalText"}, ButtonText, Extra::RepaintTabs},
    {Routine::Back, {"panel"}, {"PanelBackColor", "gCPanelEnd", "gCPanelStart"}, ProgramBack},
    {Routine::Border, {"panel"}, {"PanelBorderColor"}, TitleBottomBack},
    {Routine::ButtonBack, {"panel"}, {"TileBackColor"}, ButtonTopBack},
    {Routine::Back, {"db1"}, {"BackGroundColor"}, ProgramBack, Extra::ApplyBackGround},
    {Routine::Fore, {"db1"}, {"LeftColorBarColor", "RightColorBarColor"}, ProgramText},
    {Routine::Logo, {"logopicture"}, {"BackColor"}, LogoBack},
    {Routine::ButtonBack, {"comm", "button", "pushb", "dcbutton"}, {"BackColor", "BackStartColor"}, ButtonTopBack},
    {Routine::ButtonFore, {"comm", "button", "pushb", "dcbutton"}, {"ForeColor"}, ButtonText},
    {Routine::ButtonBack, {"ctx"}, {"FormatControl.BackGradient.Color"}, ButtonTopBack},
    {Routine::ButtonFore, {"ctx"}, {"FormatControl.ForeColor"}, ButtonText},
    {Routine::Border, {"ctx"}, {"FormatControl.BorderColor"}, TitleBottomBack},
    {Routine::SecondButtonBack, {"b2comm", "b2button", "b2dcbutton"}, {"BackColor", "BackStartColor"}, ImportantButtonTopBack},
    {Routine::SecondButtonFore, {"b2comm", "b2button", "b2dcbutton"}, {"ForeColor"}, ImportantButtonText},
    {Routine::TextBack, {"txt", "combo", "lis", "dri", "tex", "lv", "cmb"}, {"BackColor"}, TextBack},
    {Routine::TextFore, {"txt", "combo", "lis", "dri", "tex", "lv", "cmb"}, {"ForeColor"}, TextText},
    {Routine::TextBack, {"imagelist"}, {"BackColor"}, TextBack},
    {Routine::TextBack, {"tree"}, {"BackColor", "SelectionForeColor"}, TextBack},
    {Routine::TextFore, {"tree"}, {"ForeColor", "SelectionBackColor"}, TextText},
    {Routine::TextBack, {"lynx"},
     {"BackColor", "BackColorBkg", "BackColorEdit", "BackColorEvenRows", "ForeColorSel", "ThemeCustomColorFrom",
      "ThemeCustomColorTo"}, TextBack, Extra::BackCells},
    {Routine::TextFore, {"lynx"},
     {"ForeColor", "ForeColorEdit", "ForeColorHdr", "BackColorSel", "FocusRectColor", "GridColor"}, TextText, Extra::ForeCells},
    {Routine::MonitorBar, {"mbar"}, {"BackColor"}, MbBack},
    {Routine::MonitorBar, {"mbar"}, {"ForeColor"}, MbText},
    {Routine::MonitorBar, {"mbar"}, {"BarColor"}, MbBar},
    {Routine::MonitorBar, {"mbar"}, {"Segments"}, mBarSegments},
    {Routine::MonitorBar, {"mbar"}, {"BarForeColor"}, MbFillText},
    {Routine::ProgressBar, {"pbar", "pb1", "pb2", "pb3"}, {"BackColor"}, PbBack},
    {Routine::ProgressBar, {"pbar", "pb1", "pb2", "pb3"}, {"ForeColor"}, PbText},
    {Routine::ProgressBar, {"pbar", "pb1", "pb2", "pb3"}, {"BarColor"}, PbBar},
    {Routine::ProgressBar, {"pbar", "pb1", "pb2", "pb3"}, {"Segments"}, pBarSegments},
    {Routine::ProgressBar, {"pbar", "pb1", "pb2", "pb3"}, {"BarForeColor"}, PbFillText},
};

// One step of the sequence: a property of TitelBar1, then a walk, then a property of the window itself.
struct SkinStep {
    const char* TitleBarProperty; // null for none
    ColourIndex Colour;
    Routine Walk;
    const char* WindowProperty = nullptr;
};

inline constexpr SkinStep skinSteps[] = {
    {"BackColorV1Begin", TitleTopBack, Routine::TitleStart},
    {"BackColorV1End", TitleBottomBack, Routine::TitleEnd},
    {"BackColorV2Begin", TitleTopBack2, Routine::None},
    {"BackColorV2End", TitleBottomBack2, Routine::None},
    {"CaptionColor", TitleText, Routine::TitleFore},
    {nullptr, ProgramBack, Routine::Back, "BackColor"},
    {nullptr, ProgramText, Routine::Fore},
    {nullptr, TitleBottomBack, Routine::Border},
    {nullptr, ImportantText, Routine::Important},
    {nullptr, InfoText, Routine::Info},
    {nullptr, LogoBack, Routine::Logo},
    {nullptr, ButtonTopBack, Routine::ButtonBack},
    {nullptr, ButtonText, Routine::ButtonFore},
    {nullptr, TextText, Routine::TextFore},
    {nullptr, TextBack, Routine::TextBack},
    {nullptr, ImportantButtonTopBack, Routine::SecondButtonBack},
    {nullptr, ImportantButtonText, Routine::SecondButtonFore},
    {nullptr, PbBack, Routine::ProgressBar},
    {nullptr, MbBack, Routine::MonitorBar},
    {"ButtonBackColor", TitleButtonBack, Routine::None},
    {"ButtonForeColor", TitleButtonFore, Routine::None},
    {"ButtonXBackColor", TitleButtonXBack, Routine::None},
    {"ButtonXForeColor", TitleButtonXFore, Routine::None},
};
// clang-format on

} // namespace appearance
