// The design of the colour editor: its controls and their places, in pixels at 96 dots per inch.
#include "appearance/colour_table.h"
#include "appearance/frm_colors.h"
#include "base/numbers.h"
#include "base/property_bag.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "draw/picture.h"
#include "forms/label.h"
#include "forms/picture_box.h"
#include "forms/screen.h"
#include "suite/alpha_image.h"
#include "suite/check_box.h"
#include "suite/color_picker.h"
#include "suite/combo_box.h"
#include "suite/group_box.h"
#include "suite/h_scroll.h"

#include <QRect>
#include <array>
#include <span>

namespace appearance {

namespace {

// A colour that nothing paints: what is left of the title bar in it, its corners, shows what lies behind the window.
constexpr base::Colour transparentColour = Rgb(0xF8B8F7);

constexpr int twipsPerDesignPixel = 15;
constexpr int groupCaptionHeight = 17;
constexpr int groupMargin = 3;

struct GroupDesign {
    const char* Caption;
    QRect Place;
    int PickerHeight;
    std::span<const ColourIndex> Pickers;
};

constexpr std::array program = {ProgramBack, ProgramText, ImportantText, InfoText, LogoBack};
constexpr std::array buttons = {ButtonTopBack, ButtonText};
constexpr std::array texts = {TextBack, TextText};
constexpr std::array titleBar = {TitleTopBack,    TitleBottomBack, TitleTopBack2,    TitleBottomBack2, TitleText,
                                 TitleButtonBack, TitleButtonFore, TitleButtonXBack, TitleButtonXFore};
constexpr std::array importantButtons = {ImportantButtonTopBack, ImportantButtonText};
constexpr std::array progressBars = {PbBack, PbText, PbBar, PbFillText};
constexpr std::array monitorBars = {MbBack, MbText, MbBar, MbFillText};

// clang-format off
constexpr GroupDesign groups[] = {
    {"Program",              {4,   36, 157, 108}, 17, program},
    {"Buttons && Tabs",      {4,  148, 157,  57}, 17, buttons},
    {"Text Boxes && Lists",  {4,  209, 157,  57}, 17, texts},
    {"Title Bar && Border",  {164, 36, 157, 174}, 17, titleBar},
    {"Important Buttons",    {164, 211, 157, 55}, 17, importantButtons},
    {"Progress Bars",        {324, 36, 147, 151}, 18, progressBars},
    {"System Monitor Bars",  {324, 191, 147, 151}, 18, monitorBars},
};
// clang-format on

// Each edge is rounded for itself, so that neighbours that touch in the design touch at every density.
void Place(forms::Control* control, const QRect& pixels) {
    const auto edge = [](int designPixels) { return forms::ToPixels(designPixels * twipsPerDesignPixel); };
    const QPoint corner(edge(pixels.x()), edge(pixels.y()));
    const QPoint end(edge(pixels.x() + pixels.width()), edge(pixels.y() + pixels.height()));
    control->setGeometry(QRect(corner, end - QPoint(1, 1)));
}

} // namespace

void FrmColors::CreateControls() {
    titleBar_ = new controls::TitelBar(Client(), QStringLiteral("TitelBar1"));
    titleBar_->InitProperties();
    titleBar_->SetBackColor(transparentColour);
    titleBar_->SetBackColorCover(2000);
    titleBar_->SetStyle(controls::titel_bar::SlantedStyle);
    Place(titleBar_, {0, 0, 475, 32});
    CreateGroups();
    CreatePresets();
}

void FrmColors::CreateGroups() {
    for (const GroupDesign& design : groups) {
        auto* const group = new suite::GroupBox(Client(), QStringLiteral("FrameNormal"));
        group->SetCaption(QLatin1StringView(design.Caption));
        Place(group, design.Place);
        int top = groupCaptionHeight;
        for (const ColourIndex index : design.Pickers) {
            auto* const picker = new suite::ColorPicker(group, QStringLiteral("ColorPicker"));
            picker->SetCaption(QLatin1StringView(RowOf(index)->Label));
            picker->SetColor(RowOf(index)->Default);
            Place(picker, {groupMargin, top, design.Place.width() - 2 * groupMargin, design.PickerHeight});
            pickers_[index] = picker;
            top += design.PickerHeight;
        }
        if (design.Pickers.data() == progressBars.data())
            CreateBars(group, top, QStringLiteral("PBar"), pBarSmooth_, pBarScroll_, pBarExample_);
        else if (design.Pickers.data() == monitorBars.data())
            CreateBars(group, top, QStringLiteral("MBar"), mBarSmooth_, mBarScroll_, mBarExample_);
    }
}

void FrmColors::CreateBars(suite::GroupBox* group, int top, const QString& kind, suite::CheckBox*& smooth,
                           suite::HScroll*& scroll, controls::BrindlexPB*& example) {
    const int width = base::RoundToInt(group->Width() / twipsPerDesignPixel) - 2 * groupMargin;
    smooth = new suite::CheckBox(group, QStringLiteral("Check") + kind + QStringLiteral("Smooth"));
    smooth->SetCaption(QStringLiteral("Use Bar Segments"));
    Place(smooth, {groupMargin, top, width, 18});
    scroll = new suite::HScroll(group, QStringLiteral("HScroll") + kind.first(2) + QStringLiteral("Example"));
    scroll->SetAccessibleLabel(QStringLiteral("Value Of The Example"));
    scroll->SetToolTipText(QStringLiteral("Moves the example bar below"));
    scroll->SetMax(100);
    scroll->SetValue(50);
    Place(scroll, {groupMargin, top + 20, width, 14});
    example = new controls::BrindlexPB(group, kind + QStringLiteral("Example"));
    base::PropertyBag design;
    design.WriteProperty(QStringLiteral("Value"), 50, 0);
    design.WriteProperty(QStringLiteral("ShowText"), true, false);
    design.WriteProperty(QStringLiteral("Text"), QStringLiteral("Example"), QString());
    example->ReadProperties(design);
    Place(example, {groupMargin, top + 38, width, 20});
}

void FrmColors::CreatePresets() {
    auto* const label = new forms::Label(Client(), QStringLiteral("Label1"), QStringLiteral("Color Presets:"));
    Place(label, {8, 274, 92, 20});
    presets_ = new suite::ComboBox(Client(), QStringLiteral("Combo2"));
    presets_->SetAccessibleLabel(QStringLiteral("Color Presets"));
    Place(presets_, {102, 272, 219, 22});
    save_ = new controls::dcButton(Client(), QStringLiteral("Command2"));
    save_->SetCaption(QStringLiteral("Save Current Colors As Preset"));
    Place(save_, {4, 297, 244, 24});
    disableShadow_ = new suite::CheckBox(Client(), QStringLiteral("CheckDisableShadow"));
    disableShadow_->SetCaption(QStringLiteral("Disable Border Shadow"));
    Place(disableShadow_, {8, 324, 238, 18});

    auto* const logoBox = new forms::PictureBox(Client(), QStringLiteral("LogoPictureBox"));
    Place(logoBox, {254, 297, 67, 45});
    logo_ = new suite::AlphaImgCtl(logoBox, QStringLiteral("aicAlphaImage1"));
    logo_->SetPicture(draw::LoadPicture(QStringLiteral(":/appearance/logo.png")));
    Place(logo_, {13, 2, 41, 41});

    mouseIcon_ = new suite::AlphaImgCtl(Client(), QStringLiteral("ImageMouseIcon"));
    mouseIcon_->SetPicture(draw::LoadPicture(QStringLiteral(":/appearance/APPHAND")));
    mouseIcon_->SetVisible(false);
    auto* const icon = new suite::AlphaImgCtl(Client(), QStringLiteral("ImageProgramColorsIcon"));
    icon->SetVisible(false);
    auto* const picture = new forms::PictureBox(Client(), QStringLiteral("Picture1"));
    picture->SetVisible(false);
}

} // namespace appearance
