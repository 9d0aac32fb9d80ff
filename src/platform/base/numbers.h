// Numbers to text and back, and the roundings of the platform's language. Separators come from the user's locale
// ("," for thousands and "." for decimals in the C locale), and so does the minus sign.
#pragma once

#include <QString>
#include <optional>

namespace base {

// To the nearest whole number, ties to the even one. Values beyond the range of the result are clamped.
qint32 RoundToInt(double value);
qint64 RoundToInt64(double value);

// Int rounds towards minus infinity, Fix towards zero.
double Int(double value);
double Fix(double value);

// Patterns served: "0" and "0.00" (fixed decimals), "00", "000", "00000" (at least so many digits), "#0", and
// "###,###,###,###" (digits grouped by three, nothing at all for zero). Rounds half away from zero, as the platform's
// number formats do. An unknown pattern gives the shortest decimal form.
QString FormatNumber(double value, const QString& pattern);

// The same for a text: one that reads as a number is formatted, any other is returned as it stands.
QString FormatNumber(const QString& text, const QString& pattern);

// The number that a text spells as a whole ("12", " -7 ", "1.5", "&H1F"); nothing for an empty text, for words and for
// digits followed by anything else.
std::optional<double> TextToNumber(const QString& text);

// TextToNumber rounded to 32 bits; nothing where the text is no number or lies outside the range.
std::optional<qint32> TextToInt(const QString& text);

// TextToNumber as true or false ("True" and "False" in any case read too); nothing where neither fits.
std::optional<bool> TextToBool(const QString& text);

} // namespace base
