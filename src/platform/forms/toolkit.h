// From the program's values to the toolkit's: the plain colour behind a colour value, the text behind a caption.
#pragma once

#include "base/colour.h"

#include <QColor>
#include <QString>

namespace forms {

// System colours are resolved at the time of the call.
QColor ToQColor(base::Colour colour);

// A caption as it is read: "&&" becomes one ampersand, a single one marks the next character and is dropped. One at the
// very end marks nothing and stays.
QString ShownCaption(const QString& caption);

} // namespace forms
