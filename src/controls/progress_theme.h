// The platform's visual style for progress bars, served by the toolkit's style. Opened for one paint; holds nothing.
#pragma once

#include "draw/surface.h"

#include <optional>

class QStyle;
class QWidget;

namespace controls {

class ProgressTheme {
  public:
    enum Part { PP_BAR = 1, PP_BARVERT = 2, PP_CHUNK = 3, PP_CHUNKVERT = 4 };
    enum Property { TMT_PROGRESSCHUNKSIZE = 2411, TMT_PROGRESSSPACESIZE = 2412 };

    // Nothing when the toolkit has no style for the widget.
    static std::optional<ProgressTheme> OpenThemeData(const QWidget& widget);

    // Pixels; nothing for a property that the style does not know.
    std::optional<int> GetThemeInt(Property property) const;
    void DrawThemeBackground(draw::Surface& surface, Part part, const QRect& rect) const;
    void DrawThemeText(draw::Surface& surface, const QString& text, unsigned format, const QRect& rect) const;

  private:
    ProgressTheme(const QStyle& style, const QWidget& widget) : style_(&style), widget_(&widget) {}

    const QStyle* style_;
    const QWidget* widget_;
};

} // namespace controls
