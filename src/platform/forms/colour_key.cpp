#include "forms/colour_key.h"

#include "forms/compositor.h"

#include <QBackingStore>
#include <QEvent>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

namespace forms {

namespace {

constexpr QRgb opaque = 0xFF000000U;

// Runs of one row, as rectangles one pixel high.
QVector<QRect> KeyedRuns(const QRgb* row, int y, const QRect& area, QRgb key) {
    QVector<QRect> runs;
    for (int x = area.left(); x <= area.right(); ++x) {
        if ((row[x] | opaque) != key)
            continue;
        const int begin = x;
        while (x <= area.right() && (row[x] | opaque) == key)
            ++x;
        runs.append(QRect(begin, y, x - begin, 1));
    }
    return runs;
}

// A branchless first look, since most rows hold no key colour at all.
bool HasKey(const QRgb* row, const QRect& area, QRgb key) {
    unsigned any = 0;
    for (int x = area.left(); x <= area.right(); ++x)
        any |= unsigned((row[x] | opaque) == key);
    return any != 0;
}

// On a screen of few colours the pixels have lost their lower bits, and so must the key.
QRgb KeyAsPaintedOn(const QImage& image, QRgb key) {
    QImage dot(1, 1, image.format());
    dot.fill(QColor(key));
    return dot.pixel(0, 0) | opaque;
}

} // namespace

QRegion KeyedPixels(const QImage& image, const QRect& area, QRgb key) {
    const QRect within = area & image.rect();
    if (within.isEmpty())
        return {};
    if (image.depth() != 32) {
        const QImage pixels = image.copy(within).convertToFormat(QImage::Format_RGB32);
        return KeyedPixels(pixels, pixels.rect(), KeyAsPaintedOn(image, key)).translated(within.topLeft());
    }
    QVector<QRect> done;
    QVector<QRect> open; // runs of the row above that may grow downwards
    for (int y = within.top(); y <= within.bottom(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QVector<QRect> runs;
        if (HasKey(row, within, key))
            runs = KeyedRuns(row, y, within, key);
        for (const QRect& above : open) {
            bool grown = false;
            for (QRect& run : runs) {
                if (run.left() == above.left() && run.width() == above.width() && run.top() == y) {
                    run.setTop(above.top());
                    grown = true;
                    break;
                }
            }
            if (!grown)
                done.append(above);
        }
        open = runs;
    }
    done += open;
    QRegion region;
    for (const QRect& rect : done)
        region += rect;
    return region;
}

ColourKeyOverlay::ColourKeyOverlay(QWidget* window)
    : QWidget(window), clears_(QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    window->installEventFilter(this);
    setGeometry(window->rect());
    show();
}

void ColourKeyOverlay::SetKey(base::Colour key) {
    key_ = qRgb(key.Red(), key.Green(), key.Blue());
    raise();
    update();
}

void ColourKeyOverlay::paintEvent(QPaintEvent* event) {
    QBackingStore* store = window()->backingStore();
    const auto* image = store == nullptr ? nullptr : dynamic_cast<const QImage*>(store->paintDevice());
    QWindow* handle = window()->windowHandle();
    if (image == nullptr || handle == nullptr)
        return;
    const QRegion area = event->region() & image->rect();
    QRegion now;
    for (const QRect& part : area)
        now += KeyedPixels(*image, part, key_);
    Cover(now);
    const QRegion keyed = ((keyed_ & QRegion(rect())) - area + now) - held_;
    // The mask also depends on the size, so it is renewed with every resize (the area is then the whole window).
    if (keyed == keyed_ && area != QRegion(rect()))
        return;
    keyed_ = keyed;
    handle->setMask(QRegion(rect()) - keyed_);
}

void ColourKeyOverlay::Cover(const QRegion& keyed) {
    const QRegion clear = clears_ ? keyed : ScreenComposites() ? keyed & held_ : QRegion();
    const QRegion fill = (keyed & held_) - clear;
    QPainter painter(this);
    for (const QRect& part : fill)
        painter.fillRect(part, ground_);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    for (const QRect& part : clear)
        painter.fillRect(part, Qt::transparent);
}

void ColourKeyOverlay::Hold(const QRegion& area, base::Colour ground) {
    if (area == held_)
        return;
    const QRegion changed = area ^ held_;
    held_ = area;
    ground_ = QColor(ground.Red(), ground.Green(), ground.Blue());
    update(changed);
}

bool ColourKeyOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        setGeometry(static_cast<QWidget*>(watched)->rect());
    else if (event->type() == QEvent::ChildAdded)
        raise();
    return false;
}

} // namespace forms
