#include "controls/animation_bar.h"

#include "base/numbers.h"
#include "base/yield.h"
#include "controls/accessible.h"
#include "draw/system_colours.h"
#include "forms/late_bound.h"
#include "forms/screen.h"

namespace controls {

namespace {

constexpr double barWidth = 1500;  // twips
constexpr double outwardGap = 150; // twips between a bar at rest and the strip's edge
constexpr int defaultIncrement = 150;
constexpr int defaultTiming = 75;

QString AsText(base::Colour colour) { return QString::number(colour.SignedValue()); }

// A skin sets colours, and these properties hold text.
void AllowColoursAsText() {
    if (!QMetaType::hasRegisteredConverterFunction<base::Colour, QString>())
        QMetaType::registerConverter<base::Colour, QString>(AsText);
}

void TakeColour(base::Colour& target, const QString& text) {
    const std::optional<double> value = base::TextToNumber(text);
    if (value && *value >= -2147483648.0 && *value <= 4294967295.0)
        target = base::Colour(quint32(qint64(*value)));
}

} // namespace

AnimationBar::AnimationBar(QWidget* container, const QString& name)
    : DrawnControl(container, name), timer_(nullptr, QStringLiteral("Motion"), defaultTiming) {
    AllowColoursAsText();
    InstallAccessibility();
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(QStringLiteral("Working"));
    connect(&timer_, &forms::Timer::Tick, this, &AnimationBar::Tick);
}

void AnimationBar::Reset() {
    timer_.SetEnabled(false);
    pulseShown_ = false;
    for (int i = LeftBar; i <= SecondRightBar; ++i) {
        Bar& bar = bars_.at(size_t(i));
        const bool leftOne = i == LeftBar || i == SecondLeftBar;
        // Relative to where it stands, so that bars wander outwards from reset to reset.
        bar.left += leftOne ? -barWidth - outwardGap : Width() + outwardGap;
        bar.start = bar.left;
    }
    MarkDirty();
}

void AnimationBar::EndDisplay() {
    const bool wasRunning = IsRunning();
    Reset();
    if (wasRunning)
        AccessibleBusyChanged(this);
}

void AnimationBar::BeginDisplay() {
    Reset();
    FillInDefaults();
    TakeColours();
    PaintFaces();
    motion_ = style_;
    if (motion_ == Pulse) {
        TakeColour(pulseBlockColour_, pulseColor_);
        pulseShown_ = true;
        pulseWidth_ = 0;
    }
    if (motion_ < Monic || motion_ > Pulse)
        return;
    timer_.SetInterval(timing_);
    timer_.SetEnabled(true);
    AccessibleBusyChanged(this);
}

void AnimationBar::FillInDefaults() {
    if (backGroundColor_.isEmpty())
        backGroundColor_ = AmbientColour("BackColor");
    for (QString* colour : {&leftColorBarColor_, &rightColorBarColor_, &pulseColor_})
        if (colour->isEmpty())
            *colour = AmbientColour("ForeColor");
    if (timing_ == 0)
        timing_ = defaultTiming;
    if (increment_ == 0)
        increment_ = defaultIncrement;
    if (style_ == 0)
        style_ = Monic;
}

QString AnimationBar::AmbientColour(const char* property) const {
    for (const QObject* ancestor = parent(); ancestor != nullptr; ancestor = ancestor->parent()) {
        const QVariant value = forms::GetProperty(ancestor, property);
        if (value.metaType() == QMetaType::fromType<base::Colour>())
            return AsText(value.value<base::Colour>());
    }
    return {};
}

void AnimationBar::TakeColours() {
    for (int i = LeftBar; i <= SecondRightBar; ++i)
        TakeColour(bars_.at(size_t(i)).colour,
                   i == LeftBar || i == SecondLeftBar ? leftColorBarColor_ : rightColorBarColor_);
    TakeColour(stripColour_, backGroundColor_);
}

void AnimationBar::ApplyBackGroundColor(const QString& colour) {
    backGroundColor_ = colour;
    TakeColour(stripColour_, colour);
    MarkDirty();
}

void AnimationBar::PaintFaces() {
    tailColour_ = stripColour_;
    for (int i = LeftBar; i <= SecondRightBar; ++i)
        PaintFace(i);
}

// The solid end leads the movement, the tail fades into the strip.
void AnimationBar::PaintFace(int index) {
    Bar& bar = bars_.at(size_t(index));
    const bool leftOne = index == LeftBar || index == SecondLeftBar;
    const base::Colour tail = draw::OleTranslateColor(tailColour_);
    const base::Colour head = draw::OleTranslateColor(bar.colour);
    bar.face = draw::Surface(forms::ToPixels(barWidth), height());
    const std::array vertices = {draw::MakeTriVertex(0, 0, leftOne ? tail : head),
                                 draw::MakeTriVertex(bar.face.Width(), bar.face.Height(), leftOne ? head : tail)};
    const std::array rects = {draw::GradientRect{}};
    bar.face.GradientFill(vertices, rects, draw::GRADIENT_FILL_RECT_H);
}

void AnimationBar::Tick() {
    Bar& left = bars_.at(colorBars_ ? SecondLeftBar : LeftBar);
    Bar& right = bars_.at(colorBars_ ? SecondRightBar : RightBar);
    MarkDirty();
    switch (motion_) {
    case Monic:
        TickMonic(left, right.start);
        break;
    case Right:
        TickRight(right, left.start);
        break;
    case Pace:
        TickPace(left, right);
        base::Yield();
        break;
    case Bouncy:
        TickBouncy(left, right);
        base::Yield();
        break;
    case Pulse:
        TickPulse();
        break;
    default:
        break;
    }
}

void AnimationBar::TickMonic(Bar& left, double rightStart) {
    left.left += increment_;
    if (left.left >= rightStart)
        left.left = left.start;
}

void AnimationBar::TickRight(Bar& right, double leftStart) {
    if (right.left <= leftStart)
        right.left = right.start;
    right.left -= increment_;
}

void AnimationBar::TickPace(Bar& left, Bar& right) {
    if (left.left < right.start) {
        left.left += increment_;
    } else if (right.left > left.start) {
        right.left -= increment_;
    } else {
        left.left = left.start;
        right.left = right.start;
    }
}

void AnimationBar::TickBouncy(Bar& left, Bar& right) {
    if (left.left < right.start)
        left.left += increment_;
    else
        left.left = left.start;
    if (right.left <= left.start)
        right.left = right.start;
    else
        right.left -= increment_;
}

void AnimationBar::TickPulse() {
    if (pulseShrinks_) {
        if (pulseWidth_ - increment_ < 0)
            pulseShrinks_ = false;
        else
            pulseWidth_ -= increment_;
        return;
    }
    pulseWidth_ += increment_;
    pulseShrinks_ = pulseWidth_ >= Width();
}

std::optional<double> AnimationBar::PulseWidth() const {
    return pulseShown_ ? std::optional(pulseWidth_) : std::nullopt;
}

void AnimationBar::Draw(draw::Surface& surface) {
    surface.Cls(draw::OleTranslateColor(stripColour_));
    if (pulseShown_) {
        const int wide = forms::ToPixels(pulseWidth_);
        const int left = forms::ToPixels(Width() / 2 - pulseWidth_ / 2);
        surface.FillRect(QRect(left, 0, wide, height()), draw::OleTranslateColor(pulseBlockColour_));
    }
    for (int i = LeftBar; i <= SecondRightBar; ++i) {
        const double from = bars_.at(size_t(i)).left;
        if (bars_.at(size_t(i)).face.Width() <= 0 || from >= Width() || from + barWidth <= 0)
            continue;
        if (bars_.at(size_t(i)).face.Height() != height())
            PaintFace(i);
        const draw::Surface& face = bars_.at(size_t(i)).face;
        surface.BitBlt(forms::ToPixels(from), 0, face.Width(), face.Height(), face, 0, 0);
    }
}

void AnimationBar::ReadProperties(const base::PropertyBag& bag) {
    style_ = bag.Read(QStringLiteral("Style"), 0);
    increment_ = To16Bit(bag.Read(QStringLiteral("Increment"), 0));
    timing_ = To16Bit(bag.Read(QStringLiteral("Timing"), 0));
    colorBars_ = bag.Read(QStringLiteral("ColorBars"), false);
    backGroundColor_ = bag.Read(QStringLiteral("BackGroundColor"), QString());
    leftColorBarColor_ = bag.Read(QStringLiteral("LeftColorBarColor"), QString());
    rightColorBarColor_ = bag.Read(QStringLiteral("RightColorBarColor"), QString());
    pulseColor_ = bag.Read(QStringLiteral("PulseColor"), QString());
}

void AnimationBar::WriteProperties(base::PropertyBag& bag) const {
    bag.WriteProperty(QStringLiteral("Style"), style_, 0);
    bag.WriteProperty(QStringLiteral("Increment"), int(increment_), 0);
    bag.WriteProperty(QStringLiteral("Timing"), int(timing_), 0);
    bag.WriteProperty(QStringLiteral("ColorBars"), colorBars_, false);
    bag.WriteProperty(QStringLiteral("BackGroundColor"), backGroundColor_, QString());
    bag.WriteProperty(QStringLiteral("LeftColorBarColor"), leftColorBarColor_, QString());
    bag.WriteProperty(QStringLiteral("RightColorBarColor"), rightColorBarColor_, QString());
    bag.WriteProperty(QStringLiteral("PulseColor"), pulseColor_, QString());
}

} // namespace controls
