#include "contribution/improve_filters.h"

#include "base/text.h"
#include "base/yield.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/text_box.h"
#include "suite/list_box.h"

#include <algorithm>
#include <array>

namespace contribution {

namespace {

// All comparisons are on lower-cased texts.
constexpr std::array excludedIdStarts = {u"root\\", u"storage\\volume", u"usb\\root_hub",   u"swd\\",
                                         u"uuid",   u"umb\\",           u"wpdbusenumroot\\"};

constexpr std::array excludedNameStarts = {u"standard", u"ata channel"};

constexpr std::array excludedNames = {u"usb composite device",  u"usb mass storage device",
                                      u"usb printing support",  u"generic pnp monitor",
                                      u"hid keyboard device",   u"hid-compliant mouse",
                                      u"generic usb hub",       u"primary ide channel",
                                      u"secondary ide channel", u""};

constexpr std::array excludedManufacturers = {u"", u"(standard system devices)"};
constexpr auto excludedManufacturerStart = u"unknown";

// IDs that all devices of a kind report.
constexpr std::array genericIdStarts = {u"usbstor\\gencdrom",    u"gencdrom",  u"gendisk", u"umb\\", u"uuid",
                                        u"internal_ide_channel", u"hid_device"};

template <size_t Count> bool StartsWithAny(const QString& lowered, const std::array<const char16_t*, Count>& starts) {
    return std::any_of(starts.begin(), starts.end(),
                       [&lowered](const char16_t* start) { return lowered.startsWith(QStringView(start)); });
}

template <size_t Count> bool EqualsAny(const QString& lowered, const std::array<const char16_t*, Count>& texts) {
    return std::any_of(texts.begin(), texts.end(),
                       [&lowered](const char16_t* text) { return lowered == QStringView(text); });
}

QString AllowedCharacters() {
    const forms::Form* main = forms::Forms::Instance().Find(QStringLiteral("FrmMain"));
    const auto* box = main == nullptr ? nullptr : main->Find<forms::TextBox>(QStringLiteral("TextChars"));
    return (box == nullptr ? QString() : box->Text()) + u'\t' + QChar(0xA0);
}

} // namespace

bool IsPlainText(const QString& text) {
    QString rest = text;
    const QString allowed = AllowedCharacters();
    for (const QChar character : allowed) {
        rest.remove(character);
        base::Yield();
    }
    return rest.isEmpty();
}

QStringList KeywordsOf(const QByteArray& file) {
    QString text = base::FromAnsi(file);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    QStringList keywords = base::Split(text, QStringLiteral("\n"));
    keywords.removeAll(QString());
    return keywords;
}

bool ListHasKeyword(const QString& text, const suite::ListBox& keywords) {
    const QString lowered = base::LowerCase(text);
    for (int i = 0; i < keywords.ListCount(); ++i) {
        const bool found = lowered.contains(base::LowerCase(keywords.List(i)));
        base::Yield();
        if (found)
            return true;
    }
    return false;
}

bool IsDeviceWorthHaving(const QString& deviceId, const QString& name, const QString& manufacturer) {
    const QString id = base::LowerCase(deviceId);
    const QString lowerName = base::LowerCase(name);
    const QString maker = base::LowerCase(manufacturer);
    if (StartsWithAny(id, excludedIdStarts))
        return false;
    if (StartsWithAny(lowerName, excludedNameStarts) || EqualsAny(lowerName, excludedNames))
        return false;
    if (EqualsAny(maker, excludedManufacturers) || maker.startsWith(QStringView(excludedManufacturerStart)))
        return false;
    return IsPlainText(name) && IsPlainText(manufacturer);
}

bool IsGenericId(const QString& id) {
    const QString lowered = base::LowerCase(base::Trim(id));
    return lowered.isEmpty() || StartsWithAny(lowered, genericIdStarts);
}

} // namespace contribution
