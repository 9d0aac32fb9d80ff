// The overlay that makes pixels of one colour see-through: it lies over everything on a form, lets the pointer through,
// looks at what was painted below it and cuts the keyed pixels out of the window's shape.
#pragma once

#include "base/colour.h"

#include <QColor>
#include <QImage>
#include <QRegion>
#include <QWidget>

namespace forms {

// The pixels of `area` in `image` that have exactly the colour `key`.
QRegion KeyedPixels(const QImage& image, const QRect& area, QRgb key);

class ColourKeyOverlay : public QWidget {
    Q_OBJECT

  public:
    explicit ColourKeyOverlay(QWidget* window);

    void SetKey(base::Colour key);
    // Pixels of this area stay the window's whatever their colour, and so do clicks on them. Keyed ones show what lies
    // behind where the screen composites, and `ground` elsewhere.
    void Hold(const QRegion& area, base::Colour ground);
    // What is cut out at present, in pixels of the window.
    const QRegion& Keyed() const { return keyed_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Cover(const QRegion& keyed);

    QRgb key_ = 0;
    // A mask of Wayland lets clicks through, but shows the pixels.
    bool clears_;
    QRegion keyed_;
    QRegion held_;
    QColor ground_;
};

} // namespace forms
