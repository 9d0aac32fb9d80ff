// Which devices and hardware IDs are worth contributing: generic, virtual, translated and garbled ones are not.
#pragma once

#include <QString>
#include <QStringList>

namespace suite {
class ListBox;
}

namespace contribution {

// Whether a text holds nothing but characters of the allowed set (the main window's TextChars, tab and non-breaking
// space). True for an empty text. Yields for each character of the set.
bool IsPlainText(const QString& text);

// The keywords of a file in Windows-1252, one a line, lines ended in any of the three ways. A line of blanks is a
// keyword like any other; an empty one is none.
QStringList KeywordsOf(const QByteArray& file);

// Whether one of the keywords occurs in the text, in any case. Yields for each keyword.
bool ListHasKeyword(const QString& text, const suite::ListBox& keywords);

// The rules for a device, on its cleaned texts.
bool IsDeviceWorthHaving(const QString& deviceId, const QString& name, const QString& manufacturer);

// Whether an ID stands for a class of devices and not for a product. Blank IDs do too.
bool IsGenericId(const QString& id);

} // namespace contribution
