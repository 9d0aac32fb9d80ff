#include "window/placement.h"

#include "base/yield.h"
#include "controls/anchor.h"
#include "forms/form.h"
#include "forms/label.h"
#include "forms/screen.h"

#include <QApplication>

namespace window {

namespace {

constexpr int frameTop = -50; // pixels; anything above the window does

} // namespace

void CentreOnScreen(forms::Form& form) {
    const QWidget* opener = QApplication::activeWindow();
    const QRect monitor = forms::Monitor(opener == nullptr ? QRect() : opener->geometry());
    form.SetLeft(forms::ToTwips(monitor.x()) + forms::ToTwips(monitor.width()) / 2 - form.Width() / 2);
    form.SetTop(forms::ToTwips(monitor.y()) + forms::ToTwips(monitor.height()) / 2 - form.Height() / 2);
    // On a small screen the middle may lie behind a panel.
    form.SetWindowRect(forms::MovedInto(form.WindowRect(), forms::WorkArea(monitor)));
}

void OpenAtLeastSize(forms::Form& form, controls::Anchor& anchor, forms::Label& grip, double width, double height) {
    anchor.SetMinHeight(int(height));
    anchor.SetMinWidth(int(width));
    form.SetHeight(height);
    form.SetWidth(width);
    CentreOnScreen(form);
    PlaceGrip(form, grip);
}

void CentreOver(forms::Control& panel, const forms::Control& list) {
    panel.SetLeft(list.Left() + list.Width() / 2 - panel.Width() / 2);
    base::Yield();
    panel.SetTop(list.Top() + list.Height() / 2 - panel.Height() / 2);
    base::Yield();
}

void PlaceGrip(forms::Form& form, forms::Label& grip) {
    grip.SetLeft(form.Width() - grip.Width());
    grip.SetTop(form.Height() - grip.Height());
}

void ConnectGrip(forms::Form& form, forms::Label& grip) {
    QObject::connect(&grip, &forms::Control::MouseMove, &form, [&form](int button) {
        if (button == forms::LeftButton && !form.InDrag())
            form.NcLButtonDown(forms::HtBottomRight);
    });
}

void DrawFrame(forms::Form& form) {
    form.Cls();
    const QRect window = form.WindowRect();
    form.DrawBox(0, frameTop, window.width() - 1, window.height() - 1);
    form.Refresh();
}

} // namespace window
