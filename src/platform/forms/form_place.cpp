// Where a form stands and how large it is.
#include "forms/desktop_watch.h"
#include "forms/form.h"
#include "forms/screen.h"
#include "forms/shadow_frame.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace forms {

namespace {

// What must show of a title bar to take hold of it: pixels at 96 dots per inch of its upper edge.
constexpr QSize reachablePart(40, 10);

} // namespace

QRect Form::WindowRect() const {
    const int extent = shadow_->Extent();
    return geometry().adjusted(extent, extent, -extent, -extent);
}

void Form::SetWindowRect(const QRect& pixels) {
    // A surface that takes another size while it counts as maximised ends the connection, and the program with it.
    if (awaitsSize_)
        return;
    QRect target = pixels;
    target.setSize(target.size().expandedTo(QSize(1, 1)));
    const int extent = shadow_->ExtentFor(target);
    const QSize before = client_->size();
    const bool extentChanged = extent != shadow_->Extent();
    shadow_->SetCurrent(extent);
    if (extentChanged)
        TellSizeLimits();
    const QRect outer = target.adjusted(-extent, -extent, extent, extent);
    // The toolkit asks for a changed place with the size that the window manager told last, which may be an earlier one
    // than what was asked for since. So the whole of it is asked for first.
    if (isVisible() && windowHandle() != nullptr)
        windowHandle()->setGeometry(outer);
    setGeometry(outer);
    if (isVisible() && !extentChanged)
        return;
    // A hidden window gets its resize event only when it is shown; the layout wants to know now.
    LayOutClient();
    if (client_->size() != before && !isVisible()) {
        Q_EMIT Sized();
        Q_EMIT Resized();
        Resize();
    }
}

double Form::Left() const { return ToTwips(WindowRect().x()); }
double Form::Top() const { return ToTwips(WindowRect().y()); }
double Form::Width() const { return ToTwips(WindowRect().width()); }
double Form::Height() const { return ToTwips(WindowRect().height()); }

void Form::SetLeft(double twips) {
    QRect rect = WindowRect();
    rect.moveLeft(ToPixels(twips));
    SetWindowRect(rect);
}

void Form::SetTop(double twips) {
    QRect rect = WindowRect();
    rect.moveTop(ToPixels(twips));
    SetWindowRect(rect);
}

void Form::SetWidth(double twips) {
    QRect rect = WindowRect();
    rect.setWidth(ToPixels(twips));
    SetWindowRect(rect);
}

void Form::SetHeight(double twips) {
    QRect rect = WindowRect();
    rect.setHeight(ToPixels(twips));
    SetWindowRect(rect);
}

void Form::Move(double left, double top, double width, double height) {
    SetWindowRect(QRect(ToPixels(left), ToPixels(top), ToPixels(width), ToPixels(height)));
}

void Form::BringIntoReach() {
    if (IsUnloaded() || InDrag() || IsMinimised())
        return;
    const QRect place = WindowRect();
    const QSize least(Scaled(reachablePart.width()), Scaled(reachablePart.height()));
    const QRect bar(place.topLeft(), QSize(place.width(), least.height()));
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect shown = screen->geometry() & bar;
        if (shown.width() >= least.width() && shown.height() == bar.height())
            return;
    }
    SetWindowRect(MovedInto(place, WorkArea(place)));
}

void Form::SetSizeLimits(const QSize& least, const QSize& greatest) {
    leastSize_ = least;
    greatestSize_ = greatest;
    TellSizeLimits();
}

void Form::TellSizeLimits() {
    QWindow* window = windowHandle();
    if (window == nullptr)
        return;
    const int margins = 2 * shadow_->Extent();
    const auto limit = [margins](int wanted, int none) { return wanted > 0 ? wanted + margins : none; };
    window->setMinimumSize({limit(leastSize_.width(), 0), limit(leastSize_.height(), 0)});
    window->setMaximumSize(
        {limit(greatestSize_.width(), QWIDGETSIZE_MAX), limit(greatestSize_.height(), QWIDGETSIZE_MAX)});
}

} // namespace forms
