// A picture control inside the title bar: shows one opaque picture, brightened while the pointer is over it, and
// reports the pointer. Its paint can be taken over, and it draws its picture into any parallelogram. Owned by the
// control that holds it.
#pragma once

#include "draw/picture.h"

#include <QWidget>
#include <array>

class QPainter;

namespace controls {

// The images of a picture's top left, top right and bottom left corner, in pixels.
using Parallelogram = std::array<QPoint, 3>;

class AlphaImage : public QWidget {
    Q_OBJECT

  public:
    AlphaImage(QWidget* owner, const QString& name);

    const draw::Picture& Picture() const { return picture_; }
    void SetPicture(const draw::Picture& picture);
    QString ToolTipText() const { return toolTip(); }
    // Also what a screen reader says.
    void SetToolTipText(const QString& text);

    // The control's own flag, whatever its owner shows.
    bool Visible() const { return !isHidden(); }
    void SetVisible(bool visible) { setVisible(visible); }
    bool Enabled() const { return enabled_; }
    void SetEnabled(bool enabled);

    // 1 while the pointer is over the control, else 0; takes effect with ApplyHover.
    int Hover() const { return hover_; }
    void SetHover(int hover) { hover_ = hover; }
    void ApplyHover(int hover, int redraw);

    void Redraw() { update(); }
    // The picture as it is shown now, drawn into a parallelogram; nothing if that has no area.
    void RenderParallelogram(QPainter& context, const Parallelogram& points) const;

  Q_SIGNALS:
    // Raised in each paint; setting `*cancel` leaves the painting to the receiver. Directly connected only.
    void PrePaint(QPainter* context, bool* cancel);
    void MouseEnter();
    void MouseLeave();
    // The left button. MouseUp comes only if it went down here and is let go here.
    void MouseDown();
    void MouseUp();
    // Any other button, or the left one let go elsewhere.
    void MouseDropped();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void SetInside(bool inside);
    const QImage& ShownImage() const { return applied_ != 0 ? bright_ : picture_.Image(); }

    draw::Picture picture_;
    QImage bright_;
    int hover_ = 0;
    int applied_ = 0;
    bool enabled_ = true;
    bool inside_ = false;
    bool pressed_ = false;
};

} // namespace controls
