#include "forms/compositor.h"

#include "forms/desktop_watch.h"

#include <QGuiApplication>

namespace forms {

bool ScreenComposites() { return qGuiApp != nullptr && SharedDesktopWatch().Composites(); }

} // namespace forms
