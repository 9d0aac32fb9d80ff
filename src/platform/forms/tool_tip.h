// Tool tips of texts that may come from devices, databases and servers.
#pragma once

#include <QString>
#include <QTextDocument>

namespace forms {

// The text in a form that the toolkit shows as it stands. A tip that looks like markup would be taken for it otherwise,
// and could name files to be loaded.
inline QString PlainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped()) : text;
}

} // namespace forms
