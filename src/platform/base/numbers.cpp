#include "base/numbers.h"

#include "base/text.h"

#include <QLocale>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace base {

namespace {

// Half to even, whatever rounding mode the process is in.
double RoundHalfEven(double value) {
    const double floor = std::floor(value);
    const double rest = value - floor;
    if (rest < 0.5)
        return floor;
    if (rest > 0.5)
        return floor + 1;
    return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

template <typename Integer> Integer Clamped(double value) {
    if (std::isnan(value))
        return 0;
    if (value <= double(std::numeric_limits<Integer>::min()))
        return std::numeric_limits<Integer>::min();
    if (value >= double(std::numeric_limits<Integer>::max()))
        return std::numeric_limits<Integer>::max();
    return Integer(value);
}

// To a whole number, half away from zero. The exact expansion of a double seldom ends in a tie, so near a tie the first
// 15 significant digits decide; elsewhere they cannot make a difference.
double RoundHalfUp(double value) {
    const double floor = std::floor(value);
    const double rest = value - floor;
    if (std::fabs(rest - 0.5) > 1e-12 + value * 1e-13)
        return rest < 0.5 ? floor : floor + 1;
    return std::floor(QString::number(value, 'g', 15).toDouble() + 0.5);
}

// What the user's locale says of decimals, kept as long as it stays the same: each question to the system costs as much
// as the rest of a number's text.
struct DecimalSigns {
    QLocale locale;
    QString point;
    QString minus;
    bool plainDigits = false;
};

DecimalSigns SignsOf(const QLocale& locale) {
    return {locale, locale.decimalPoint(), locale.negativeSign(), locale.zeroDigit() == QLatin1String("0")};
}

const DecimalSigns& PresentSigns() {
    const QLocale locale;
    static DecimalSigns signs = SignsOf(locale);
    if (signs.locale != locale)
        signs = SignsOf(locale);
    return signs;
}

// The digits of `scaled`, of which the last `decimals` stand behind the point, built in place: a download writes three
// such texts with every piece that comes.
QString WithPoint(qint64 scaled, int decimals, const QString& point) {
    std::array<QChar, 64> room;
    auto first = room.end();
    const auto putDigit = [&first, &scaled] {
        *--first = QChar(char16_t(u'0' + scaled % 10));
        scaled /= 10;
    };
    for (int i = 0; i < decimals; ++i)
        putDigit();
    if (decimals > 0)
        first = std::copy_backward(point.begin(), point.end(), first);
    do
        putDigit();
    while (scaled > 0);
    return QString(first, room.end() - first);
}

QString FixedDecimals(double value, int decimals) {
    constexpr double exactWhole = 1e15;
    constexpr int mostDecimals = 20;
    constexpr std::array<double, 3> factors = {1, 10, 100};
    const double factor = size_t(decimals) < factors.size() ? factors[size_t(decimals)] : std::pow(10.0, decimals);
    const double scaled = RoundHalfUp(std::fabs(value) * factor);
    const DecimalSigns& signs = PresentSigns();
    if (scaled >= exactWhole || decimals > mostDecimals || !signs.plainDigits) {
        QLocale locale = signs.locale;
        const double rounded = std::copysign(scaled / factor, value);
        locale.setNumberOptions(QLocale::OmitGroupSeparator);
        return locale.toString(rounded == 0 ? 0.0 : rounded, 'f', decimals);
    }
    const QString text = WithPoint(qint64(scaled), decimals, signs.point);
    return value < 0 && scaled != 0 ? signs.minus + text : text;
}

QString AtLeastDigits(double value, qsizetype digits) {
    const QString text = FixedDecimals(std::fabs(value), 0).rightJustified(digits, u'0');
    return RoundHalfUp(std::fabs(value)) != 0 && value < 0 ? PresentSigns().minus + text : text;
}

QString Grouped(double value) {
    // The magnitude: what is clamped to the smallest number has no positive one of its type.
    const qint64 whole = RoundToInt64(std::fabs(value));
    if (whole == 0)
        return {};
    QString digits = QString::number(whole);
    const QString separator = QLocale().groupSeparator();
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, separator);
    return value < 0 ? PresentSigns().minus + digits : digits;
}

} // namespace

qint32 RoundToInt(double value) { return Clamped<qint32>(RoundHalfEven(value)); }

qint64 RoundToInt64(double value) { return Clamped<qint64>(RoundHalfEven(value)); }

double Int(double value) { return std::floor(value); }

double Fix(double value) { return std::trunc(value); }

QString FormatNumber(double value, const QString& pattern) {
    if (!std::isfinite(value))
        return QString::number(value);
    if (pattern == QLatin1String("###,###,###,###"))
        return Grouped(value);
    if (pattern == QLatin1String("#0"))
        return FixedDecimals(value, 0);
    const qsizetype point = pattern.indexOf(u'.');
    const QString whole = point < 0 ? pattern : pattern.first(point);
    if (whole.isEmpty() || whole.count(u'0') != whole.size())
        return QString::number(value, 'g', 15);
    if (point < 0)
        return AtLeastDigits(value, whole.size());
    return FixedDecimals(value, int(pattern.size() - point - 1));
}

QString FormatNumber(const QString& text, const QString& pattern) {
    const std::optional<double> number = TextToNumber(text);
    return number ? FormatNumber(*number, pattern) : text;
}

std::optional<double> TextToNumber(const QString& text) {
    const QString trimmed = Trim(text);
    if (trimmed.isEmpty())
        return std::nullopt;
    bool ok = false;
    if (trimmed.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)) {
        const quint32 value = trimmed.mid(2).toUInt(&ok, 16);
        return ok ? std::optional<double>(double(qint32(value))) : std::nullopt;
    }
    // C's grammar also takes "inf" and "nan", which are words here.
    for (const QChar character : trimmed)
        if (!character.isDigit() && !QStringLiteral("+-.eE").contains(character))
            return std::nullopt;
    const double value = QLocale::c().toDouble(trimmed, &ok);
    return ok && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

std::optional<qint32> TextToInt(const QString& text) {
    const std::optional<double> number = TextToNumber(text);
    if (!number)
        return std::nullopt;
    const double rounded = RoundHalfEven(*number);
    if (rounded < double(std::numeric_limits<qint32>::min()) || rounded > double(std::numeric_limits<qint32>::max()))
        return std::nullopt;
    return qint32(rounded);
}

std::optional<bool> TextToBool(const QString& text) {
    const QString trimmed = Trim(text);
    if (trimmed.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    const std::optional<double> number = TextToNumber(text);
    return number ? std::optional<bool>(*number != 0) : std::nullopt;
}

} // namespace base
