// The font of a control whose bag holds none: its container's.
#pragma once

#include <QApplication>
#include <QFont>
#include <QWidget>

namespace controls {

inline QFont AmbientFont(const QWidget& control) {
    return control.parentWidget() == nullptr ? QApplication::font() : control.parentWidget()->font();
}

} // namespace controls
