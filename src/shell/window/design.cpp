#include "window/design.h"

#include "base/colour.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "forms/form.h"
#include "forms/label.h"
#include "forms/screen.h"
#include "window/form_icon.h"
#include "window/icon_resource.h"

namespace window {

namespace {

// Nothing else in a window has this colour.
constexpr base::Colour keyColour = base::Colour::FromRgb(0xF8, 0xB8, 0xF7);
constexpr int wholeWindowCover = 32767; // twips: below every title bar, so that the second band stays empty
constexpr double titleHeight = 480;     // twips
constexpr double gripSize = 270;
constexpr double panelTitleHeight = 360;
constexpr int centred = 1;
constexpr int gradient = 1;

} // namespace

forms::Label* MakeLabel(QWidget* container, const char* name, const char* caption) {
    return new forms::Label(container, QLatin1String(name), QLatin1String(caption));
}

controls::dcButton* MakeButton(QWidget* container, const char* name, const char* caption) {
    auto* button = new controls::dcButton(container, QLatin1String(name));
    button->InitProperties();
    button->SetCaption(QLatin1String(caption));
    return button;
}

controls::TitelBar* MakeTitelBar(QWidget* client, double width, bool canMaximise) {
    auto* titelBar = Place(new controls::TitelBar(client, QStringLiteral("TitelBar1")), 0, 0, width, titleHeight);
    titelBar->InitProperties();
    titelBar->SetBackColor(keyColour);
    titelBar->SetBackColorCover(wholeWindowCover);
    if (canMaximise) {
        titelBar->SetShowMaximized(true);
        titelBar->SetShowMaximizedEnabled(true);
    }
    return titelBar;
}

void SetUpTitle(const forms::Form& form, controls::TitelBar& titelBar) {
    const int size = TitleIconSize();
    titelBar.SetPicture(LoadIconFromRes(QStringLiteral("AAA"), size, size, 0, false));
    titelBar.SetCaption(form.Caption());
    titelBar.SetWidth(form.Width());
}

controls::PanelFx* MakeProgressPanel(QWidget* container, controls::AnimationBar*& bar) {
    auto* panel = Place(new controls::PanelFx(container, QStringLiteral("PanelProgress")), 2000, 5400, 4500, 1050);
    panel->InitProperties();
    panel->SetTitleCaption(QStringLiteral("Please Wait..."));
    panel->SetBackGroundStyle(gradient);
    panel->SetTitleAlignment(centred);
    panel->SetTileHeight(forms::ToPixels(panelTitleHeight));
    panel->SetVisible(false);
    bar = Place(new controls::AnimationBar(panel, QStringLiteral("DB1")), 180, 540, 4140, 330);
    return panel;
}

forms::Label* MakeGrip(QWidget* client, double width, double height) {
    auto* grip = Place(MakeLabel(client, "LabelResize", "o"), width - gripSize, height - gripSize, gripSize, gripSize,
                       BottomRight);
    grip->SetGrip(true);
    return grip;
}

void FollowResize(const forms::Form& form, controls::TitelBar& titelBar, forms::Label& grip) {
    titelBar.SetWidth(form.Width());
    grip.SetVisible(!titelBar.Maximised());
}

} // namespace window
