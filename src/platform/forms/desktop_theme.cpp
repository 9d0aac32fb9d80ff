#include "forms/desktop_theme.h"

#include "draw/system_colours.h"
#include "forms/drawn_control.h"

#include <QApplication>
#include <QEvent>

namespace forms {

namespace {

class ThemeFollower : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp) {
            draw::SetSysColors(QApplication::palette());
            for (QWidget* widget : QApplication::allWidgets()) {
                if (auto* drawn = qobject_cast<DrawnControl*>(widget))
                    drawn->MarkDirty();
                else
                    widget->update();
            }
        }
        return false;
    }
};

} // namespace

void FollowDesktopTheme() {
    draw::SetSysColors(QApplication::palette());
    qApp->installEventFilter(new ThemeFollower(qApp));
}

} // namespace forms
