// A strip that shows the program at work where no progress figure exists: bars with a fading tail slide through it, or
// a block in its middle breathes. The container owns it. Ticks come from the event loop, so the motion stands still
// while nothing yields.
#pragma once

#include "base/colour.h"
#include "base/property_bag.h"
#include "forms/drawn_control.h"
#include "forms/timer.h"

#include <array>
#include <optional>

namespace controls {

class AnimationBar : public forms::DrawnControl {
    Q_OBJECT
    Q_PROPERTY(int Style READ Style WRITE SetStyle)
    Q_PROPERTY(int Increment READ Increment WRITE SetIncrement)
    Q_PROPERTY(int Timing READ Timing WRITE SetTiming)
    Q_PROPERTY(bool ColorBars READ ColorBars WRITE SetColorBars)
    Q_PROPERTY(QString BackGroundColor READ BackGroundColor WRITE SetBackGroundColor)
    Q_PROPERTY(QString LeftColorBarColor READ LeftColorBarColor WRITE SetLeftColorBarColor)
    Q_PROPERTY(QString RightColorBarColor READ RightColorBarColor WRITE SetRightColorBarColor)
    Q_PROPERTY(QString PulseColor READ PulseColor WRITE SetPulseColor)

  public:
    enum Motion { Monic = 1, Right = 2, Pace = 3, Bouncy = 4, Pulse = 5 };
    // The bars as places in the strip.
    enum BarIndex { LeftBar = 0, RightBar = 1, SecondLeftBar = 2, SecondRightBar = 3 };

    AnimationBar(QWidget* container, const QString& name);

    // A Motion, for the next BeginDisplay; 0 becomes Monic there.
    int Style() const { return style_; }
    void SetStyle(int style) { Store("Style", style_, style); }
    // One step in twips; 0 becomes 150.
    int Increment() const { return increment_; }
    void SetIncrement(int twips) { Store("Increment", increment_, To16Bit(twips)); }
    // Milliseconds between steps; 0 becomes 75.
    int Timing() const { return timing_; }
    void SetTiming(int milliseconds) { Store("Timing", timing_, To16Bit(milliseconds)); }
    // True moves the second pair of bars.
    bool ColorBars() const { return colorBars_; }
    void SetColorBars(bool on) { Store("ColorBars", colorBars_, on); }
    // Colours as decimal text. BeginDisplay fills in empty ones: the strip from the container's BackColor, the others
    // from its ForeColor. A text that is no number leaves the colour in use alone.
    QString BackGroundColor() const { return backGroundColor_; }
    void SetBackGroundColor(const QString& colour) { Store("BackGroundColor", backGroundColor_, colour); }
    QString LeftColorBarColor() const { return leftColorBarColor_; }
    void SetLeftColorBarColor(const QString& colour) { Store("LeftColorBarColor", leftColorBarColor_, colour); }
    QString RightColorBarColor() const { return rightColorBarColor_; }
    void SetRightColorBarColor(const QString& colour) { Store("RightColorBarColor", rightColorBarColor_, colour); }
    QString PulseColor() const { return pulseColor_; }
    void SetPulseColor(const QString& colour) { Store("PulseColor", pulseColor_, colour); }

    bool HasDC() const { return true; }
    draw::Surface& hdc() { return UpToDateSurface(); }
    WId hwnd() const { return effectiveWinId(); }

    // Starts the motion from the reset, also while it runs.
    void BeginDisplay();
    // The reset: everything stops. Each reset, also an idle one, puts the bars one step further outside, and the next
    // run's way is longer by that much.
    void EndDisplay();
    void ApplyBackGroundColor(const QString& colour);
    // The same with the colour that BackGroundColor holds.
    Q_INVOKABLE void ApplyBackGroundColor() { ApplyBackGroundColor(backGroundColor_); }

    bool IsRunning() const { return timer_.Enabled(); }
    // Where a bar's left edge stands, in twips.
    double BarLeft(BarIndex bar) const { return bars_.at(bar).left; }
    // The block of Pulse, in twips; nothing while it is hidden.
    std::optional<double> PulseWidth() const;

    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

  protected:
    void Draw(draw::Surface& surface) override;

  private:
    struct Bar {
        double left = 0;  // twips
        double start = 0; // where the last reset put it
        base::Colour colour;
        draw::Surface face; // painted by BeginDisplay; nothing before
    };

    template <typename T> void Store(const char* name, T& member, const T& value) {
        member = value;
        Q_EMIT PropertyChanged(QLatin1String(name));
    }
    static qint16 To16Bit(int value) { return qint16(qBound(-32768, value, 32767)); }
    void Reset();
    void FillInDefaults();
    void TakeColours();
    void PaintFaces();
    void PaintFace(int index);
    void Tick();
    void TickMonic(Bar& left, double rightStart);
    void TickRight(Bar& right, double leftStart);
    void TickPace(Bar& left, Bar& right);
    void TickBouncy(Bar& left, Bar& right);
    void TickPulse();
    // The colour of the nearest container that has the property, as decimal text.
    QString AmbientColour(const char* property) const;

    std::array<Bar, 4> bars_;
    forms::Timer timer_;
    int motion_ = 0; // the one that runs
    int style_ = 0;
    qint16 increment_ = 0;
    qint16 timing_ = 0;
    bool colorBars_ = false;
    QString backGroundColor_;
    QString leftColorBarColor_;
    QString rightColorBarColor_;
    QString pulseColor_;
    base::Colour stripColour_{0x8000000FU};
    base::Colour tailColour_; // the strip's colour when the faces were painted
    base::Colour pulseBlockColour_;
    double pulseWidth_ = 0;
    bool pulseShown_ = false;
    bool pulseShrinks_ = false;
};

} // namespace controls
