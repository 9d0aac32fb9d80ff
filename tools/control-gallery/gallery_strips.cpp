// The sections of progress bars, animation bars, panels and title bars.
#include "frm_gallery.h"

#include "controls/animation_bar.h"
#include "controls/brindlex_pb.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "forms/picture_box.h"

namespace {

constexpr int middleLeft = 360;
constexpr int rightLeft = 680;
constexpr base::Colour barColour = base::Colour::FromRgb(40, 140, 220);
constexpr base::Colour trackColour = base::Colour::FromRgb(90, 100, 116);

struct ProgressSample {
    const char* note;
    int value;
    bool blended;
    bool segments;
    bool text;
    bool themed;
    bool pictures;
    int appearance;
    int borderStyle;
};

constexpr ProgressSample samples[] = {
    {"Blended", 60, true, false, false, false, false, 1, 0},
    {"Blended, text", 55, true, false, true, false, false, 1, 1},
    {"Blended, segments", 70, true, true, false, false, false, 0, 1},
    {"Solid, thin sunken", 40, false, false, false, false, false, 1, 1},
    {"Solid, thin raised, text", 50, false, false, true, false, false, 1, 2},
    {"Segments, 3-D sunken", 80, false, true, false, false, false, 2, 1},
    {"Segments, 3-D raised", 45, false, true, true, false, false, 2, 2},
    {"Pictures, tiled", 50, false, false, false, false, true, 0, 1},
    {"Visual style, text", 65, false, false, true, true, false, 1, 1},
    {"Empty", 0, false, false, true, false, false, 0, 1},
    {"Full", 100, false, true, true, false, false, 0, 1},
};

void Apply(controls::BrindlexPB& bar, const ProgressSample& sample) {
    bar.SetBarColor(barColour);
    bar.SetBackColor(trackColour);
    bar.SetForeColor(base::Colour::FromRgb(235, 240, 245));
    bar.SetBarForeColor(base::Colour::FromRgb(10, 20, 50));
    bar.SetValue(sample.value);
    bar.SetBlendToParent(sample.blended);
    bar.SetSegments(sample.segments);
    bar.SetShowText(sample.text);
    bar.SetText(QStringLiteral("%1 percent of the way").arg(sample.value));
    bar.SetXpStyle(sample.themed);
    bar.SetAppearance(sample.appearance);
    bar.SetBorderStyle(sample.borderStyle);
    if (sample.pictures)
        bar.SetBarPicture(gallery::Tile());
}

QString AsText(base::Colour colour) { return QString::number(colour.SignedValue()); }

} // namespace

void FrmGallery::AddProgressBars() {
    AddHeading(middleLeft, 44, QStringLiteral("Progress bars, wide and tall"));
    int top = 64;
    int number = 0;
    for (const ProgressSample& sample : samples) {
        AddNote(middleLeft, top + 2, 150, QString::fromLatin1(sample.note));
        auto* bar = new controls::BrindlexPB(Client(), QStringLiteral("PB%1").arg(++number));
        Apply(*Place(bar, middleLeft + 152, top, 150, 20), sample);
        top += 27;
    }
    int left = middleLeft;
    for (const int index : {0, 1, 2, 3, 5, 6, 7, 8}) {
        auto* bar = new controls::BrindlexPB(Client(), QStringLiteral("PBTall%1").arg(++number));
        Apply(*Place(bar, left, top + 4, 24, 110), samples[index]);
        left += 38;
    }
}

void FrmGallery::AddAnimationBars() {
    AddHeading(middleLeft, 490, QStringLiteral("Animation bars: the five motions"));
    for (int motion = controls::AnimationBar::Monic; motion <= controls::AnimationBar::Pulse; ++motion) {
        const int top = 510 + (motion - 1) * 24;
        AddNote(middleLeft, top, 50, QStringLiteral("Style %1").arg(motion));
        auto* bar = Place(new controls::AnimationBar(Client(), QStringLiteral("DB%1").arg(motion)), middleLeft + 52,
                          top, 250, 16);
        bar->SetStyle(motion);
        bar->SetBackGroundColor(AsText(base::Colour::FromRgb(24, 30, 40)));
        bar->SetLeftColorBarColor(AsText(barColour));
        bar->SetRightColorBarColor(AsText(base::Colour::FromRgb(240, 150, 30)));
        bar->SetPulseColor(AsText(barColour));
        bar->BeginDisplay();
    }
}

void FrmGallery::AddPanels() {
    AddHeading(rightLeft, 44, QStringLiteral("Panels: plain, gradient, tiled"));
    for (int style = 0; style < 3; ++style) {
        auto* panel = Place(new controls::PanelFx(Client(), QStringLiteral("Panel%1").arg(style)), rightLeft,
                            64 + style * 112, 314, 102);
        panel->InitProperties();
        panel->SetTileHeight(gallery::Scaled(20));
        panel->SetBackGroundStyle(style);
        panel->SetTitleCaption(QStringLiteral("Title alignment %1, corner %2").arg(style).arg(style * 12));
        panel->SetTitleAlignment(style);
        panel->SetRoundEdge(style * 12);
        panel->SetTitleBitmap(gallery::Tile());
        panel->SetPanelBitmap(gallery::Tile());
        panel->SetAllowDraging(true);
        panel->SetCanCollapse(true);
        panel->SetTitleIcon(gallery::DiscIcon(gallery::Scaled(16)));
        panel->SetTitleIconWidth(gallery::Scaled(16));
        panel->SetTitleIconHeight(gallery::Scaled(16));
        panel->SetTitleIconYPos(2);
        panel->SetHideTitleIcon(style == 2);
    }
    auto* collapsed = Place(new controls::PanelFx(Client(), QStringLiteral("PanelCollapsed")), rightLeft, 402, 314, 60);
    collapsed->InitProperties();
    collapsed->SetTitleCaption(QStringLiteral("Collapsed"));
    collapsed->SetTileHeight(gallery::Scaled(20));
    collapsed->SetBackGroundStyle(controls::PanelFx::Gradient);
    collapsed->SetgCTitleDir(controls::PanelFx::Horizontal);
    collapsed->SetCanCollapse(true);
    collapsed->SetCollapse(true);
}

void FrmGallery::AddTitleBars() {
    AddHeading(rightLeft, 440, QStringLiteral("Title bars: caption, buttons, second band"));
    for (int kind = 0; kind < 4; ++kind) {
        auto* box = Place(new forms::PictureBox(Client(), QStringLiteral("Box%1").arg(kind)), rightLeft,
                          460 + kind * 44, 314, 36);
        box->SetBackColor(BackColor());
        auto* bar = Place(new controls::TitelBar(box, QStringLiteral("TitelBarSample%1").arg(kind)), 0, 0, 314, 32);
        bar->InitProperties();
        bar->SetBackColor(BackColor());
        bar->SetCaption(QStringLiteral("Caption %1").arg(kind));
        bar->SetCaptionPosX(kind);
        bar->SetShowMaximized(kind % 2 == 1);
        bar->SetShowMaximizedEnabled(kind == 3);
        bar->SetShowHelp(kind >= 2);
        bar->SetShowClose(kind != 2);
        if (kind == 1)
            bar->SetPicture(gallery::DiscIcon(gallery::Scaled(24)));
        if (kind == 3)
            bar->SetBackColorCover(0);
        bar->SetBorderNormal(kind == 2 ? 1 : 0);
        bar->Refresh();
    }
    AddNote(
        16, 640, 960,
        QStringLiteral("The gallery is for looking: move the pointer over the buttons, hold them, press the space key, "
                       "drag the panels by their titles."));
}
