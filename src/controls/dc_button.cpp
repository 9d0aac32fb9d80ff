#include "controls/dc_button.h"

#include "base/numbers.h"
#include "controls/accessible.h"
#include "controls/colour_helpers.h"
#include "draw/region.h"
#include "draw/system_colours.h"
#include "draw/text_layout.h"
#include "forms/desktop.h"
#include "forms/tool_tip.h"

#include <QHelpEvent>
#include <QShortcut>
#include <QToolTip>
#include <array>

namespace controls {

namespace {

constexpr int leastSide = 15; // pixels
constexpr int corner = 5;     // pixels, diameter of a rounded side's corners
constexpr int customPointer = 99;

// The toolkit's pointers in the order of the platform's standard pointers.
constexpr std::array<Qt::CursorShape, 16> standardPointers = {
    Qt::ArrowCursor,     Qt::ArrowCursor,   Qt::CrossCursor,     Qt::IBeamCursor,
    Qt::SizeAllCursor,   Qt::SizeAllCursor, Qt::SizeBDiagCursor, Qt::SizeVerCursor,
    Qt::SizeFDiagCursor, Qt::SizeHorCursor, Qt::UpArrowCursor,   Qt::WaitCursor,
    Qt::ForbiddenCursor, Qt::BusyCursor,    Qt::WhatsThisCursor, Qt::SizeAllCursor};

} // namespace

QChar FindAccessKey(const QString& caption) {
    if (caption.size() < 2)
        return {};
    // Positions count from 0. A pair of ampersands is skipped as one.
    qsizetype at = caption.lastIndexOf(u'&', caption.size() - 2);
    while (at >= 0) {
        if (at == 0 || caption.at(at - 1) != u'&')
            return caption.at(at + 1).toLower();
        if (at < 2)
            break;
        at = caption.lastIndexOf(u'&', at - 2);
    }
    return {};
}

dcButton::dcButton(QWidget* container, const QString& name) : DrawnControl(container, name) {
    InstallAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(leastSide, leastSide);
    InitProperties();
}

void dcButton::SetBaseColour(base::Colour& member, base::Colour colour, const char* name) {
    member = colour;
    ComputeColours();
    Repaint(-1, true);
    Changed(name);
}

void dcButton::SetBackColor(base::Colour colour) { SetBaseColour(backColor_, colour, "BackColor"); }

void dcButton::SetBackStartColor(base::Colour colour) { SetBaseColour(backStartColor_, colour, "BackStartColor"); }

void dcButton::SetForeColor(base::Colour colour) { SetBaseColour(foreColor_, colour, "ForeColor"); }

void dcButton::SetMaskColor(base::Colour colour) { SetBaseColour(maskColor_, colour, "MaskColor"); }

void dcButton::SetUseMaskColor(bool use) {
    useMaskColor_ = use;
    Repaint(-1, true);
    Changed("UseMaskColor");
}

void dcButton::SetButtonShape(int shape) {
    buttonShape_ = shape;
    LayoutChanged();
    Changed("ButtonShape");
}

void dcButton::SetSpecialEffect(int effect) {
    specialEffect_ = effect;
    Repaint(-1, true);
    Changed("SpecialEffect");
}

void dcButton::SetCaption(const QString& caption) {
    caption_ = caption;
    ApplyAccessKey();
    LayoutChanged();
    AccessibleNameChanged(this);
    Changed("Caption");
}

void dcButton::SetCheckBoxMode(bool on) {
    checkBoxMode_ = on;
    if (!on)
        value_ = false;
    Repaint(-1, true);
    Changed("CheckBoxMode");
}

void dcButton::SetValue(bool value) {
    const bool changed = value_ != value;
    value_ = value;
    if (value && !checkBoxMode_) {
        const QPointer<dcButton> alive(this);
        lastButton_ = forms::LeftButton;
        OnClick();
        if (!alive)
            return;
        value_ = false;
        Changed("Value");
        return;
    }
    if (changed)
        AccessibleCheckChanged(this);
    Repaint(-1, true);
    Changed("Value");
}

void dcButton::SetEnabled(bool enabled) {
    // Set first: disabling moves the focus on, and what that raises has to meet the new state.
    currentState_ = enabled ? RestingState() : DisabledState;
    DrawnControl::SetEnabled(enabled);
    currentState_ = Enabled() ? RestingState() : DisabledState;
    Repaint(-1, true);
    Changed("Enabled");
}

void dcButton::SetHandPointer(bool on) {
    handPointer_ = on;
    ApplyCursor();
    Changed("HandPointer");
}

void dcButton::SetMousePointer(int pointer) {
    mousePointer_ = pointer;
    if (pointer != customPointer)
        handPointer_ = false;
    ApplyCursor();
    Changed("MousePointer");
}

void dcButton::SetMouseIcon(const draw::Picture& icon) {
    mouseIcon_ = icon;
    mousePointer_ = icon.IsEmpty() ? 0 : customPointer;
    ApplyCursor();
    Changed("MouseIcon");
}

// The pointer is set when a property changes it and not at each move, which would cost a call to the display.
void dcButton::ApplyCursor() {
    if (handPointer_)
        setCursor(Qt::PointingHandCursor);
    else if (mousePointer_ == customPointer && !mouseIcon_.IsEmpty())
        setCursor(QCursor(QPixmap::fromImage(mouseIcon_.Image())));
    else if (mousePointer_ > 0 && mousePointer_ < int(standardPointers.size()))
        setCursor(standardPointers.at(size_t(mousePointer_)));
    else
        unsetCursor();
}

void dcButton::SetFont(const QFont& font) {
    setFont(font);
    LayoutChanged();
    Changed("Font");
}

void dcButton::SetFontBold(bool on) {
    QFont changed = font();
    changed.setBold(on);
    SetFont(changed);
}

void dcButton::SetFontItalic(bool on) {
    QFont changed = font();
    changed.setItalic(on);
    SetFont(changed);
}

void dcButton::SetFontName(const QString& family) {
    QFont changed = font();
    changed.setFamily(family);
    SetFont(changed);
}

void dcButton::SetFontSize(double points) {
    if (!(points > 0))
        return;
    QFont changed = font();
    changed.setPointSizeF(points);
    SetFont(changed);
}

void dcButton::SetFontStrikethru(bool on) {
    QFont changed = font();
    changed.setStrikeOut(on);
    SetFont(changed);
}

void dcButton::SetFontUnderline(bool on) {
    QFont changed = font();
    changed.setUnderline(on);
    SetFont(changed);
}

void dcButton::SetDisplayAsDefault(bool on) {
    displayAsDefault_ = on;
    pressed_ = false;
    mouseDownHeld_ = false;
    spaceHeld_ = false;
    if (Enabled() && !mouseOver_ && !hasFocus_)
        Repaint(-1, true);
}

int dcButton::OverrideColor(int index, base::Colour colour, bool noRefresh) {
    const std::array<base::Colour*, 6> slots = {&colours_.down,         &colours_.reserved, &colours_.disabledFill,
                                                &colours_.disabledText, &colours_.hot,      &colours_.start};
    if (index < 0 || index >= int(slots.size()))
        return InvalidArgument;
    *slots.at(size_t(index)) = draw::OleTranslateColor(colour);
    if (!noRefresh)
        Repaint(-1, true);
    return 0;
}

void dcButton::ComputeColours() {
    colours_.normal = draw::OleTranslateColor(backColor_);
    colours_.down = ShiftColour(colours_.normal, -0.1);
    colours_.hot = ShiftColour(colours_.normal, 0.2);
    colours_.text = draw::OleTranslateColor(foreColor_);
    colours_.disabledText = LerpColour(colours_.text, base::Colour(0xFFFFFF), 0.6);
    colours_.disabledFill = LerpColour(colours_.normal, base::Colour(0xFFFFFF), 0.8);
    colours_.start = draw::OleTranslateColor(backStartColor_);
    colours_.transparent = draw::OleTranslateColor(maskColor_);
}

void dcButton::SetPopupMenu(forms::Menu* menu, int alignment, int flags, const QString& defaultEntry) {
    if (menu == nullptr)
        return;
    popupMenu_ = menu;
    popupAlignment_ = alignment;
    popupFlags_ = flags;
    popupDefault_ = defaultEntry;
    popupSet_ = true;
}

void dcButton::UnsetPopupMenu() {
    popupMenu_.clear();
    popupAlignment_ = 0;
    popupFlags_ = 0;
    popupDefault_.clear();
    popupSet_ = false;
}

void dcButton::Refresh() { LayoutChanged(); }

void dcButton::About() { forms::ShellExecuteA(ParentForm(), QString()); }

void dcButton::ApplyAccessKey() {
    const QChar key = FindAccessKey(caption_);
    delete shortcut_;
    shortcut_ = nullptr;
    // A pair at the caption's end comes out as "&", which is no key.
    if (key.isNull() || key.isSpace() || key == u'&')
        return;
    shortcut_ = new QShortcut(QKeySequence(Qt::ALT | Qt::Key(key.toUpper().unicode())), this);
    shortcut_->setAutoRepeat(false);
    connect(shortcut_, &QShortcut::activated, this, [this, key, alive = QPointer<dcButton>(this)] {
        setFocus(Qt::ShortcutFocusReason);
        if (alive)
            AccessKeyPress(key.unicode());
    });
    // Two controls with one key: it goes round them and presses none.
    connect(shortcut_, &QShortcut::activatedAmbiguously, this, [this] { setFocus(Qt::ShortcutFocusReason); });
}

void dcButton::ApplyRegion() {
    if (buttonShape_ == SquareBoth) {
        if (!mask().isEmpty())
            clearMask();
        return;
    }
    draw::Region region = draw::CreateRoundRectRgn(0, 0, width() + 1, height() + 1, corner, corner);
    const int middle = base::RoundToInt(width() / 2.0);
    if (HasSquareLeft(buttonShape_))
        draw::CombineRgn(region, region, draw::CreateRectRgn(0, 0, middle, height() + 1), draw::RGN_OR);
    if (HasSquareRight(buttonShape_))
        draw::CombineRgn(region, region, draw::CreateRectRgn(middle, 0, width() + 1, height() + 1), draw::RGN_OR);
    setMask(region.ToQRegion() & rect());
}

void dcButton::LayoutChanged() {
    ApplyRegion();
    Repaint(-1, true);
}

void dcButton::Repaint(int state, bool force) {
    if (hidden_)
        return;
    if (!Enabled())
        state = DisabledState;
    else if (state < 0)
        state = currentState_;
    if (!force && state == currentState_ && hasFocus_ == lastFocusPainted_)
        return;
    lastFocusPainted_ = hasFocus_;
    currentState_ = state;
    MarkDirty();
}

ButtonPaint dcButton::PaintState() const {
    ButtonPaint paint;
    paint.size = size();
    paint.state = checkBoxMode_ && value_ && Enabled() ? int(DownState) : currentState_;
    paint.currentState = currentState_;
    paint.value = value_;
    paint.focusFrame = windowActive_ && (hasFocus_ || displayAsDefault_);
    paint.shape = buttonShape_;
    paint.effect = specialEffect_;
    paint.caption = caption_;
    paint.font = font();
    paint.colours = colours_;
    paint.picture = pictureNormal_;
    paint.pictureSize = QSize(pictureSizeW_, pictureSizeH_);
    paint.pictureAlignment = pictureAlignment_;
    paint.naturalPictureSize = pictureSize_ == 0;
    paint.useMaskColour = useMaskColor_;
    return paint;
}

ButtonLayout dcButton::Layout() const { return LayoutContent(PaintState()); }

void dcButton::Draw(draw::Surface& surface) { PaintButton(surface, PaintState()); }

bool dcButton::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        if (!rect().contains(Layout().caption))
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                               forms::PlainTip(draw::WithoutMarks(caption_)), this);
        return true;
    }
    return DrawnControl::event(event);
}

void dcButton::showEvent(QShowEvent* event) {
    DrawnControl::showEvent(event);
    if (!hidden_)
        return;
    // The pointer may have left while nothing was painted.
    hidden_ = false;
    Repaint(pressed_ ? int(DownState) : RestingState(), true);
}

void dcButton::hideEvent(QHideEvent* event) {
    DrawnControl::hideEvent(event);
    hidden_ = true;
}

void dcButton::resizeEvent(QResizeEvent* event) {
    DrawnControl::resizeEvent(event);
    LayoutChanged();
}

} // namespace controls
