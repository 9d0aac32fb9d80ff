// The caption buttons: their faces, their places, hover and spin, and what a click does.
#include "controls/titel_bar.h"

#include "base/numbers.h"
#include "base/yield.h"
#include "controls/alpha_shape.h"
#include "controls/gradient.h"
#include "draw/system_colours.h"
#include "forms/form.h"
#include "forms/screen.h"

#include <QPainter>
#include <array>
#include <cmath>
#include <numbers>

namespace controls {

namespace {

constexpr double halfButtonAt96Dpi = 10; // pixels; whole buttons are even, so that glyphs have a middle
constexpr int spinMilliseconds = 25;
constexpr int spinStepDegrees = 20;
constexpr int fullTurnDegrees = 360;

// Pixels between the bar's right edge, or the button right of it, and a button, besides the style's margin.
constexpr int closeDistance = 3;
constexpr int buttonDistance = 1;
constexpr int narrowMargin = 6; // of the narrow style; the slanted one takes a button's width

struct ButtonRow {
    const char* image;
    const char* timer;
    const char* toolTip;
};

// In the order of TitelBar::ButtonIndex.
constexpr ButtonRow buttonRows[] = {
    {"TBARX", "TimerButtonXAnimation", "Close"},
    {"TBARMax", "TimerButtonMaxAnimation", "Maximize"},
    {"TBAR_", "TimerButtonMinAnimation", "Minimize"},
    {"TBARHelp", "TimerButtonHelpAnimation", "Help"},
};

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

// An outlined window with a filled bar along its top; all four numbers are parts of the face, each rounded by itself.
void DrawWindowGlyph(draw::Surface& face, double left, double top, double width, double height, base::Colour colour) {
    const int x = base::RoundToInt(left * face.Width());
    const int y = base::RoundToInt(top * face.Height());
    const int right = x + base::RoundToInt(width * face.Width());
    const int bottom = y + base::RoundToInt(height * face.Height());
    const int barBottom = y + base::RoundToInt(0.1 * face.Height());
    face.FrameRect(draw::RectOf(x, y, right, bottom), colour);
    face.FillRect(draw::RectOf(x, y, right, barBottom), colour);
}

void PaintShapeCentred(draw::Surface& face, AlphaShape shape, double width, double height, base::Colour colour) {
    shape.SetSize(2 * base::RoundToInt(face.Width() * width / 2), 2 * base::RoundToInt(face.Height() * height / 2));
    shape.SetFillColor(colour);
    shape.PaintShape(face, (face.Width() - shape.Width()) / 2, (face.Height() - shape.Height()) / 2);
}

} // namespace

void TitelBar::MakeButtons() {
    for (int index = 0; index < ButtonCount; ++index) {
        const ButtonRow& row = buttonRows[index];
        CaptionButton& button = buttons_[size_t(index)];
        button.image = new AlphaImage(this, QLatin1String(row.image));
        button.image->SetToolTipText(QLatin1String(row.toolTip));
        button.image->resize(ButtonSize());
        button.timer = new forms::Timer(this, QLatin1String(row.timer), spinMilliseconds);
        button.timer->SetTag(QStringLiteral("0"));
        ConnectButton(ButtonIndex(index));
    }
    maximizeFace_ = new AlphaImage(this, QStringLiteral("AlphaImgCtlMaximize"));
    maximizeFace_->SetToolTipText(QStringLiteral("Maximize"));
    maximizeFace_->SetVisible(false);
    restoreFace_ = new AlphaImage(this, QStringLiteral("AlphaImgCtlRestore"));
    restoreFace_->SetToolTipText(QStringLiteral("Restore Down"));
    restoreFace_->SetVisible(false);
}

void TitelBar::ConnectButton(ButtonIndex index) {
    const CaptionButton& button = buttons_[index];
    connect(button.image, &AlphaImage::MouseEnter, this, [this, index] { ButtonEntered(index); });
    connect(button.image, &AlphaImage::MouseLeave, this, [this, index] { HoverOff(index); });
    connect(button.image, &AlphaImage::MouseDown, this, &TitelBar::StopTracking);
    connect(button.image, &AlphaImage::MouseDropped, this, &TitelBar::ReturnKeyboard);
    connect(button.image, &AlphaImage::MouseUp, this, [this, index] { ButtonReleased(index); });
    connect(button.image, &AlphaImage::PrePaint, this,
            [this, index](QPainter* context, bool* cancel) { PaintButton(index, context, cancel); });
    connect(button.timer, &forms::Timer::Tick, this, [this, index] { SpinTick(index); });
}

QSize TitelBar::ButtonSize() const {
    const int side = 2 * base::RoundToInt(halfButtonAt96Dpi * forms::DotsPerInch() / 96);
    return {side, side};
}

draw::Picture TitelBar::ComposeFace(Face face, base::Colour middle, base::Colour glyph) const {
    draw::Surface prepare = BlendFace(ButtonSize(), draw::OleTranslateColor(state_.backColorV2Begin),
                                      draw::OleTranslateColor(middle), draw::OleTranslateColor(state_.backColorV2End));
    const base::Colour colour = draw::OleTranslateColor(glyph);
    switch (face) {
    case Face::Question:
        PaintShapeCentred(prepare, AlphaShape(Glyph::Question), 0.4, 0.6, colour);
        break;
    case Face::Bar:
        PaintShapeCentred(prepare, AlphaShape(Glyph::Bar), 0.5, 0.5, colour);
        break;
    case Face::X:
        PaintShapeCentred(prepare, AlphaShape(Glyph::X), 0.5, 0.5, colour);
        break;
    case Face::Maximise:
        DrawWindowGlyph(prepare, 0.25, 0.25, 0.5, 0.5, colour);
        break;
    case Face::Restore:
        DrawWindowGlyph(prepare, 0.4, 0.2, 0.35, 0.35, colour);
        DrawWindowGlyph(prepare, 0.2, 0.4, 0.35, 0.35, colour);
        break;
    }
    return prepare.ToPicture();
}

// Also of a maximised window the maximise button gets the maximise glyph, until the window changes the next time.
void TitelBar::UpdateTitleBarButtons() {
    const base::Colour middle = state_.buttonBackColor;
    const base::Colour glyph = state_.buttonForeColor;
    buttons_[HelpButton].image->SetPicture(ComposeFace(Face::Question, middle, glyph));
    buttons_[MinimiseButton].image->SetPicture(ComposeFace(Face::Bar, middle, glyph));
    maximizeFace_->SetPicture(ComposeFace(Face::Maximise, middle, glyph));
    buttons_[MaximiseButton].image->SetPicture(maximizeFace_->Picture());
    restoreFace_->SetPicture(ComposeFace(Face::Restore, middle, glyph));
    buttons_[CloseButton].image->SetPicture(ComposeFace(Face::X, state_.buttonXBackColor, state_.buttonXForeColor));
}

bool TitelBar::IsShown(ButtonIndex index) const {
    switch (index) {
    case CloseButton:
        return state_.showClose;
    case MaximiseButton:
        return state_.showMaximized;
    case MinimiseButton:
        return state_.showMinimized;
    case HelpButton:
        return state_.showHelp;
    case ButtonCount:
        break;
    }
    return false;
}

const AlphaImage* TitelBar::LastShownButton() const {
    const AlphaImage* last = nullptr;
    for (int index = 0; index < ButtonCount; ++index)
        if (IsShown(ButtonIndex(index)))
            last = buttons_[size_t(index)].image;
    return last;
}

void TitelBar::SetTBX_() {
    laidOutFor_ = size();
    AlphaImage* close = buttons_[CloseButton].image;
    const bool slanted = state_.style == titel_bar::SlantedStyle;
    const bool narrow = state_.style == titel_bar::NarrowStyle;
    const int margin = slanted ? close->width() : narrow ? narrowMargin : 0;
    const int belowMiddle = slanted || narrow ? 3 : 2;
    close->SetEnabled(state_.showCloseEnabled);
    buttons_[MaximiseButton].image->SetEnabled(state_.showMaximizedEnabled);
    buttons_[MinimiseButton].image->SetEnabled(state_.showMinimizedEnabled);
    buttons_[HelpButton].image->SetEnabled(state_.showHelpEnabled);
    int right = width();
    for (int index = 0; index < ButtonCount; ++index) {
        AlphaImage* image = buttons_[size_t(index)].image;
        const bool shown = IsShown(ButtonIndex(index));
        const bool isClose = index == CloseButton;
        if (shown || isClose)
            image->move(right - image->width() - (isClose ? closeDistance : buttonDistance) - margin,
                        (height() - image->height()) / 2 + belowMiddle);
        image->SetVisible(shown);
        if (shown)
            right = image->x();
        else if (isClose)
            right = width() - closeDistance - margin;
    }
}

void TitelBar::ButtonEntered(ButtonIndex index) {
    CaptionButton& button = buttons_[index];
    button.image->SetHover(1);
    button.image->ApplyHover(1, 1);
    if (spinRunning_)
        return;
    // The first step comes a tick later; until then the button shows itself whole.
    TurnSpinPoints(index, 0);
    button.timer->SetTag(QStringLiteral("0"));
    button.timer->SetEnabled(true);
    HoldSpinning();
}

// What the narrowed face of a turning button leaves is in the key's colour, and clicks on it are the button's own.
void TitelBar::HoldSpinning() {
    QRegion area;
    for (const CaptionButton& button : buttons_)
        if (button.timer->Enabled())
            area += QRect(button.image->mapTo(window(), QPoint(0, 0)), button.image->size());
    if (forms::Form* parent = ParentForm())
        parent->HoldColourKey(area, state_.backColorV2End);
}

void TitelBar::HoverOff(ButtonIndex index) {
    buttons_[index].image->SetHover(0);
    buttons_[index].image->ApplyHover(0, 0);
}

// The corners of the button's picture, turned about its vertical axis: the width goes with the cosine, the height
// stays. The factors that come to 0 and 1 stay in the formula, since their last bits decide which way a half is
// rounded.
void TitelBar::TurnSpinPoints(ButtonIndex index, double degrees) {
    const draw::Picture& picture = buttons_[index].image->Picture();
    const int w = picture.Width();
    const int h = picture.Height();
    const std::array<QPointF, 3> corners{{{-w / 2.0, -h / 2.0}, {w / 2.0, -h / 2.0}, {-w / 2.0, h / 2.0}}};
    const double sine = std::sin(Radians(90));
    const double cosine = std::cos(Radians(90));
    const double xFactor = std::sin(Radians(degrees + 90)) * std::tan(Radians(45));
    const double yFactor = std::sin(Radians(90)) * std::tan(Radians(45));
    for (size_t corner = 0; corner < corners.size(); ++corner) {
        const int x = base::RoundToInt(corners[corner].x());
        const int y = base::RoundToInt(corners[corner].y());
        spinPoints_[corner] = {base::RoundToInt((x * sine + y * cosine) * xFactor) + w / 2,
                               base::RoundToInt((y * sine - x * cosine) * yFactor) + h / 2};
    }
}

void TitelBar::SpinTick(ButtonIndex index) {
    CaptionButton& button = buttons_[index];
    spinRunning_ = true;
    button.timer->SetEnabled(false);
    const int degrees = button.timer->Tag().toInt() + spinStepDegrees;
    button.timer->SetTag(QString::number(degrees));
    TurnSpinPoints(index, degrees);
    if (degrees >= fullTurnDegrees) {
        spinRunning_ = false;
        button.timer->SetTag(QStringLiteral("0"));
        button.image->Redraw();
        HoldSpinning();
        return;
    }
    button.image->Redraw();
    button.timer->SetEnabled(true);
    HoldSpinning();
}

void TitelBar::PaintButton(ButtonIndex index, QPainter* context, bool* cancel) {
    if (!buttons_[index].timer->Enabled())
        return;
    *cancel = true;
    buttons_[index].image->RenderParallelogram(*context, spinPoints_);
}

// The colour window holds the colour table for the whole program, so its close button only hides it.
void TitelBar::ButtonReleased(ButtonIndex index) {
    HoverOff(index);
    StopTracking();
    const QPointer<forms::Form> parent(ParentForm());
    const QPointer<TitelBar> alive(this);
    switch (index) {
    case CloseButton:
        if (parent && parent->Name() != QLatin1String("FrmColors"))
            parent->Unload();
        else if (parent)
            parent->Hide();
        base::Yield();
        break;
    case MaximiseButton:
        if (parent && parent->WindowState() == forms::MaximisedWindow)
            parent->SetWindowState(forms::NormalWindow);
        MaxminizeParent();
        base::Yield();
        if (alive)
            GiveParentFocus();
        base::Yield();
        break;
    case MinimiseButton:
        if (parent)
            parent->SetWindowState(forms::MinimisedWindow);
        base::Yield();
        if (alive)
            ReturnKeyboard();
        break;
    case HelpButton:
        Q_EMIT HelpButtonClick();
        base::Yield();
        if (alive)
            ReturnKeyboard();
        break;
    case ButtonCount:
        break;
    }
}

} // namespace controls
