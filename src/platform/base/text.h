// Text routines under the meanings that the program gives them: lengths and positions count UTF-16 code units, blanks
// are U+0020 alone, comparisons are exact. All are pure functions and accept empty texts.
#pragma once

#include <QString>
#include <QStringList>

namespace base {

// The pieces of `text` between the occurrences of `separator`. An empty text has no pieces at all; an empty separator
// gives the whole text as one piece.
QStringList Split(const QString& text, const QString& separator);

// Removes blanks (U+0020 and nothing else) at both ends, at the left end, at the right end.
QString Trim(const QString& text);
QString TrimLeft(const QString& text);
QString TrimRight(const QString& text);

// The first or last `count` characters; the whole text if it is shorter, nothing for a count below 1.
QString Left(const QString& text, qsizetype count);
QString Right(const QString& text, qsizetype count);

// The `count` characters from `start` on, counted from 1; what lies outside is left out.
QString Mid(const QString& text, qsizetype start, qsizetype count);

QString LowerCase(const QString& text);

// The text before the first character 0; the whole text if there is none.
QString CutAtNull(const QString& text);

// Windows-1252 both ways. Encoding turns each character that the code page lacks into "?"; decoding maps the five
// unassigned bytes to the control characters of the same value. Source: Microsoft's code page 1252 table.
QByteArray ToAnsi(const QString& text);
QString FromAnsi(const QByteArray& bytes);

} // namespace base
