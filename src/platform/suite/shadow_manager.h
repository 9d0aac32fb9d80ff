// The one manager of the soft shadows around the program's windows. It keeps the windows that have one and how a shadow
// looks; the window draws it on a transparent margin of its own. Shadows need a compositing screen: without one the
// manager reports that it is not available and nothing changes. Sizes in pixels.
#pragma once

#include "base/colour.h"

#include <QList>
#include <QObject>
#include <array>
#include <functional>

class QPainter;
class QRect;

namespace forms {
class Form;
}

namespace suite {

// How strong a shadow is on its way outwards: at each position (0 at the window's edge, 1 at the shadow's end) a factor
// between 0 and 1, straight lines in between.
struct BlendCurve {
    std::array<float, 3> Positions{0.0F, 0.01F, 1.0F};
    std::array<float, 3> Factors{0.0F, 1.0F, 0.0F};
    double At(double position) const;
};

class ShadowManager : public QObject {
    Q_OBJECT

  public:
    // A window's handle.
    using Window = forms::Form*;

    // Whether the screen composites windows now.
    bool Available() const;

    // true enters the update mode: what is set from now on is applied at once when it is left again. Calls nest.
    void SetUpdateMode(bool updating);

    // Kept and not drawn, as is the second size below: there is one style.
    int StyleFlags() const { return styleFlags_; }
    void SetStyleFlags(int flags) { styleFlags_ = flags; }
    const BlendCurve& Curve() const { return curve_; }
    void SetBlendCurve(const BlendCurve& curve);

    // The defaults of windows that are added later ...
    int Size() const { return size_; }
    void SetSize(int pixels);
    int SecondSize() const { return secondSize_; }
    void SetSecondSize(int pixels);
    void SetOffsetX(int pixels) { offsetX_ = pixels; }
    void SetOffsetY(int pixels) { offsetY_ = pixels; }
    // 0 to 255.
    int Transparency() const { return transparency_; }
    void SetTransparency(int value);
    base::Colour Colour() const { return colour_; }
    void SetColour(base::Colour colour);
    // ... and the same for all. Every shadow looks alike, so these set the same values.
    void SetGlobalSize(int pixels) { SetSize(pixels); }
    void SetGlobalSecondSize(int pixels) { SetSecondSize(pixels); }
    void SetGlobalOffsetX(int pixels);
    void SetGlobalOffsetY(int pixels);
    void SetGlobalTransparency(int value) { SetTransparency(value); }
    void SetGlobalColour(base::Colour colour) { SetColour(colour); }

    // Whether the window has a shadow, giving it one, taking it away. A window that ends is forgotten.
    bool Knows(Window window) const;
    void Add(Window window);
    void Remove(Window window);

    // Draws a shadow between a window and the outer edge of its margin, with the present look.
    void Paint(QPainter& painter, const QRect& outer, const QRect& window) const;

    // Takes the place of the question to the screen; null restores it.
    void SetCompositingSource(std::function<bool()> source) { source_ = std::move(source); }

  private:
    void Changed();
    void Apply(Window window);
    void Forget(QObject* window);

    QList<Window> windows_;
    BlendCurve curve_;
    std::function<bool()> source_;
    base::Colour colour_;
    int styleFlags_ = 0;
    int size_ = 10;
    int secondSize_ = 15;
    int offsetX_ = 0;
    int offsetY_ = 0;
    int transparency_ = 255;
    int updating_ = 0;
    bool pending_ = false;
};

// The manager of this process, made on first use.
ShadowManager& SharedShadowManager();

} // namespace suite
