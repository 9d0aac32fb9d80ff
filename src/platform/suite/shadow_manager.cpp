#include "suite/shadow_manager.h"

#include "forms/compositor.h"
#include "forms/form.h"
#include "suite/paint_tools.h"

#include <QPainter>
#include <algorithm>

namespace suite {

namespace {

// A shadow as dense as its window would look like a thick frame: the curve's peak is shown at this share.
constexpr double density = 0.6;

void PaintSide(QPainter& painter, const QRectF& area, const QPointF& from, const QPointF& to,
               const QGradientStops& stops) {
    QLinearGradient gradient(from, to);
    gradient.setStops(stops);
    painter.fillRect(area, gradient);
}

void PaintCorner(QPainter& painter, const QRectF& area, const QPointF& centre, double radius,
                 const QGradientStops& stops) {
    QRadialGradient gradient(centre, radius);
    gradient.setStops(stops);
    painter.fillRect(area, gradient);
}

} // namespace

double BlendCurve::At(double position) const {
    if (position <= double(Positions.front()))
        return double(Factors.front());
    for (size_t i = 1; i < Positions.size(); ++i) {
        const double start = double(Positions[i - 1]), end = double(Positions[i]);
        if (position > end)
            continue;
        const double share = end > start ? (position - start) / (end - start) : 1.0;
        return double(Factors[i - 1]) + (double(Factors[i]) - double(Factors[i - 1])) * share;
    }
    return double(Factors.back());
}

bool ShadowManager::Available() const { return source_ ? source_() : forms::ScreenComposites(); }

void ShadowManager::SetUpdateMode(bool updating) {
    updating_ = std::max(0, updating_ + (updating ? 1 : -1));
    if (updating_ == 0 && pending_)
        Changed();
}

void ShadowManager::SetBlendCurve(const BlendCurve& curve) {
    curve_ = curve;
    Changed();
}

void ShadowManager::SetSize(int pixels) {
    size_ = std::max(0, pixels);
    Changed();
}

void ShadowManager::SetSecondSize(int pixels) { secondSize_ = std::max(0, pixels); }

void ShadowManager::SetGlobalOffsetX(int pixels) {
    offsetX_ = pixels;
    Changed();
}

void ShadowManager::SetGlobalOffsetY(int pixels) {
    offsetY_ = pixels;
    Changed();
}

void ShadowManager::SetTransparency(int value) {
    transparency_ = std::clamp(value, 0, 255);
    Changed();
}

void ShadowManager::SetColour(base::Colour colour) {
    if (colour_ == colour)
        return;
    colour_ = colour;
    Changed();
}

bool ShadowManager::Knows(Window window) const { return windows_.contains(window); }

void ShadowManager::Add(Window window) {
    if (!window || Knows(window))
        return;
    windows_.append(window);
    connect(window, &forms::Form::Unloaded, this, [this, window] { Forget(window); });
    connect(window, &QObject::destroyed, this, &ShadowManager::Forget);
    Apply(window);
}

void ShadowManager::Remove(Window window) {
    if (!Knows(window))
        return;
    Forget(window);
    window->SetShadow(0, {});
}

void ShadowManager::Forget(QObject* window) {
    disconnect(window, nullptr, this, nullptr);
    windows_.removeIf([window](Window known) { return static_cast<QObject*>(known) == window; });
}

void ShadowManager::Changed() {
    pending_ = updating_ > 0;
    if (pending_)
        return;
    const QList<Window> windows = windows_;
    for (const Window window : windows)
        Apply(window);
}

void ShadowManager::Apply(Window window) {
    window->SetShadow(
        size_ + std::max(std::abs(offsetX_), std::abs(offsetY_)),
        [this](QPainter& painter, const QRect& outer, const QRect& inner) { Paint(painter, outer, inner); });
}

void ShadowManager::Paint(QPainter& painter, const QRect& outer, const QRect& window) const {
    if (size_ <= 0)
        return;
    const QColor base = ToQColor(colour_);
    QGradientStops stops;
    constexpr int steps = 24;
    for (int i = 0; i <= steps; ++i) {
        const double position = double(i) / steps;
        QColor colour = base;
        // The gradients start under the window's edge, where the curve is at its peak already.
        const double factor = curve_.At(std::max(position, double(curve_.Positions[1])));
        colour.setAlphaF(float(factor * factor * density * transparency_ / 255.0));
        stops.append({position, colour});
    }
    const QRectF rect = QRectF(window).translated(offsetX_, offsetY_);
    const double size = size_;
    painter.save();
    painter.setClipRegion(QRegion(outer).subtracted(window));
    PaintSide(painter, {rect.left(), rect.top() - size, rect.width(), size}, rect.topLeft(),
              rect.topLeft() - QPointF(0, size), stops);
    PaintSide(painter, {rect.left(), rect.bottom(), rect.width(), size}, rect.bottomLeft(),
              rect.bottomLeft() + QPointF(0, size), stops);
    PaintSide(painter, {rect.left() - size, rect.top(), size, rect.height()}, rect.topLeft(),
              rect.topLeft() - QPointF(size, 0), stops);
    PaintSide(painter, {rect.right(), rect.top(), size, rect.height()}, rect.topRight(),
              rect.topRight() + QPointF(size, 0), stops);
    PaintCorner(painter, {rect.left() - size, rect.top() - size, size, size}, rect.topLeft(), size, stops);
    PaintCorner(painter, {rect.right(), rect.top() - size, size, size}, rect.topRight(), size, stops);
    PaintCorner(painter, {rect.left() - size, rect.bottom(), size, size}, rect.bottomLeft(), size, stops);
    PaintCorner(painter, {rect.right(), rect.bottom(), size, size}, rect.bottomRight(), size, stops);
    painter.restore();
}

ShadowManager& SharedShadowManager() {
    static ShadowManager manager;
    return manager;
}

} // namespace suite
