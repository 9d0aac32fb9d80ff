#include "pnp/identity.h"

#include "pnp/sysfs.h"

#include <algorithm>
#include <cctype>

namespace pnp {

namespace {

constexpr int LongestSerial = 120;

bool AllHex(const std::string& text, std::size_t begin, std::size_t count) {
    for (std::size_t i = begin; i < begin + count; ++i) {
        if (i >= text.size() || std::isxdigit(static_cast<unsigned char>(text[i])) == 0)
            return false;
    }
    return true;
}

// "0003:046D:C52B.0004": the last number is counted up at each arrival.
bool IsHidInstance(const std::string& component) {
    return component.size() == 19 && component[4] == ':' && component[9] == ':' && component[14] == '.' &&
           AllHex(component, 0, 4) && AllHex(component, 5, 4) && AllHex(component, 10, 4) && AllHex(component, 15, 4);
}

bool IsLetterOrDigit(QChar c) {
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') || (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z');
}

} // namespace

QString Hex(quint32 value, int digits) {
    return QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

quint32 StableHash(const std::string& text) {
    quint32 hash = 2166136261U;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 16777619U;
    }
    return hash;
}

QString InstanceSuffix(int level, const std::string& parent, const QString& location) {
    return QString::number(level) + QLatin1Char('&') + Hex(StableHash(parent), 1) + QStringLiteral("&0&") + location;
}

bool IsNumbered(std::string_view component, std::string_view prefix) {
    return component.starts_with(prefix) && AllDigits(component.substr(prefix.size()));
}

bool IsPciAddress(const std::string& component) {
    const std::size_t colon = component.find(':');
    return (colon == 4 || colon == 5) && component.size() == colon + 8 && component[colon + 3] == ':' &&
           component[colon + 6] == '.' && AllHex(component, 0, colon) && AllHex(component, colon + 1, 2) &&
           AllHex(component, colon + 4, 2) && component[colon + 7] >= '0' && component[colon + 7] <= '7';
}

bool IsUsbPlace(const std::string& component) {
    return AllDigits(component.substr(0, 1)) && component.find('-') != std::string::npos;
}

std::string PciFolder(const std::string& path) {
    std::string folder = path;
    while (!folder.empty() && !IsPciAddress(LastComponent(folder)))
        folder = ParentPath(folder);
    return folder;
}

int TreeLevel(const std::string& path) {
    int functions = 0;
    int others = 0;
    for (const std::string& part : Components(path)) {
        if (IsPciAddress(part))
            ++functions;
        else if (IsNumbered(part, "usb") || IsUsbPlace(part) || IsHidInstance(part))
            ++others;
    }
    return 2 + std::max(1, functions) + others;
}

std::string StablePath(const std::string& path) {
    std::string stable;
    for (const std::string& part : Components(path)) {
        stable += '/';
        if (IsHidInstance(part))
            stable += part.substr(0, 14);
        else if (IsNumbered(part, "i2c-"))
            stable += "i2c";
        else if (IsNumbered(part, "host"))
            stable += "host";
        else
            stable += part;
    }
    return stable;
}

QString IdField(const QString& text, int width) {
    QString id = text.left(width);
    for (QChar& c : id) {
        const char16_t u = c.unicode();
        // The bar parts the IDs of a list.
        if (u <= u' ' || u > u'~' || u == u',' || u == u'|')
            c = QLatin1Char('_');
    }
    return id.leftJustified(width, QLatin1Char('_'));
}

QString PathField(const QString& text, int width) {
    QString field = text.left(width);
    while (field.endsWith(QLatin1Char(' ')))
        field.chop(1);
    const qsizetype blanks = field.size() - field.trimmed().size();
    return QString(blanks, QLatin1Char('_')) + PathText(field);
}

QString PathText(const QString& text) {
    QString part = text.trimmed();
    for (QChar& c : part) {
        const char16_t u = c.unicode();
        if (u <= u' ' || u > u'~' || u == u',' || u == u'\\' || u == u'/' || u == u'&' || u == u'|')
            c = QLatin1Char('_');
    }
    return part;
}

QString SerialText(const QString& text) {
    const QString serial = text.trimmed();
    const bool printable = std::all_of(serial.cbegin(), serial.cend(), [](QChar c) {
        return c.unicode() >= u' ' && c.unicode() <= u'~' && c != QLatin1Char(',') && c != QLatin1Char('\\');
    });
    const bool telling = std::any_of(serial.cbegin(), serial.cend(),
                                     [](QChar c) { return IsLetterOrDigit(c) && c != QLatin1Char('0'); });
    return printable && telling && serial.size() <= LongestSerial ? PathText(serial) : QString();
}

} // namespace pnp
