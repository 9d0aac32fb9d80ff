// The pieces that the designs of several windows have alike: placing a control, the anchors by name, buttons, the title
// bar, the panel that shows progress. Controls belong to the container that they are made on.
#pragma once

#include <QString>

class QWidget;

namespace controls {
class AnimationBar;
class PanelFx;
class TitelBar;
class dcButton;
} // namespace controls

namespace forms {
class Form;
class Label;
} // namespace forms

namespace window {

// Which edges a control follows: the letters stand for left, top, right, bottom.
inline constexpr auto FollowWidth = "TTTF*/";
inline constexpr auto Stretch = "TTTT*/";
inline constexpr auto TopRight = "FTTF*/";
inline constexpr auto BottomLeft = "TFFT*/";
inline constexpr auto BottomWide = "TFTT*/";
inline constexpr auto BottomRight = "FFTT*/";

// Twips. Gives the control back.
template <typename Control>
Control* Place(Control* control, double left, double top, double width, double height, const char* anchor = "") {
    control->Move(left, top, width, height);
    control->SetTag(QLatin1String(anchor));
    return control;
}

forms::Label* MakeLabel(QWidget* container, const char* name, const char* caption);
controls::dcButton* MakeButton(QWidget* container, const char* name, const char* caption);

// A title bar over the whole width (twips) of a window; its corners are in the windows' key colour.
controls::TitelBar* MakeTitelBar(QWidget* client, double width, bool canMaximise = true);
// Gives the bar the program's icon, the window's caption and width.
void SetUpTitle(const forms::Form& form, controls::TitelBar& titelBar);

// "Please Wait..." with the bar DB1 on it, hidden. `bar` receives DB1.
controls::PanelFx* MakeProgressPanel(QWidget* container, controls::AnimationBar*& bar);

// The mark in the lower right corner of a window of that size (twips), by which the mouse sizes it.
forms::Label* MakeGrip(QWidget* client, double width, double height);

// What a window's resize does: the title bar takes its width, and a maximised window shows no grip.
void FollowResize(const forms::Form& form, controls::TitelBar& titelBar, forms::Label& grip);

} // namespace window
