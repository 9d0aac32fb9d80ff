#include "pnp/ata_identity.h"

#include "pnp/identity.h"

#include <algorithm>
#include <optional>

namespace pnp {

namespace {

constexpr std::size_t LargestPage = 8192;
constexpr std::size_t ModelSize = 40;
constexpr std::size_t FirmwareSize = 8;
// Bytes of the identify data, which page 0x89 holds from byte 60 on.
constexpr std::size_t FirmwareAt = 46;
constexpr std::size_t ModelAt = 54;
constexpr std::size_t IdentifyAt = 60;
// The kernel shows as much of a model.
constexpr qsizetype ShownModel = 16;
// What is as long as a vendor's field is no vendor.
constexpr qsizetype VendorSize = 8;

struct Names {
    QString model;
    QString firmware;
};

// Texts of devices are printable and filled up with blanks; anything else is no text.
QString PlainText(const std::string& bytes) {
    const bool printable = std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
    QString text = printable ? QString::fromLatin1(bytes.data(), qsizetype(bytes.size())) : QString();
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text;
}

// Two characters share a word of 16 bits, the first in its upper half, which comes second.
std::string Swapped(std::string bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

std::optional<Names> FromIdentify(const std::string& identify) {
    if (identify.size() < ModelAt + ModelSize)
        return std::nullopt;
    Names names{PlainText(Swapped(identify.substr(ModelAt, ModelSize))),
                PlainText(Swapped(identify.substr(FirmwareAt, FirmwareSize)))};
    return names.model.isEmpty() ? std::nullopt : std::optional(names);
}

std::optional<Names> FromPage89(const Node& disk) {
    const std::string page = disk.Bytes("vpd_pg89", LargestPage);
    if (page.size() < IdentifyAt || static_cast<unsigned char>(page[1]) != 0x89)
        return std::nullopt;
    return FromIdentify(page.substr(IdentifyAt));
}

// A list of designators; that of the maker's form holds "ATA", the model and the serial number.
std::optional<Names> FromPage83(const Node& disk) {
    const std::string page = disk.Bytes("vpd_pg83", LargestPage);
    const auto byte = [&page](std::size_t at) { return std::size_t(static_cast<unsigned char>(page[at])); };
    if (page.size() < 4 || byte(1) != 0x83)
        return std::nullopt;
    const std::size_t end = std::min(page.size(), 4 + (byte(2) << 8) + byte(3));
    for (std::size_t at = 4; at + 4 <= end; at += 4 + byte(at + 3)) {
        const std::string text = page.substr(at + 4, byte(at + 3));
        const bool ascii = (byte(at) & 0x0F) == 2;
        const bool makers = (byte(at + 1) & 0x0F) == 1;
        if (!ascii || !makers || text.size() < VendorSize + ModelSize || !text.starts_with("ATA     "))
            continue;
        const QString model = PlainText(text.substr(VendorSize, ModelSize));
        if (!model.isEmpty())
            return Names{model, {}};
    }
    return std::nullopt;
}

// ".../ata2/link2/dev2.0/ata_device/dev2.0/id": the identify data as words in hexadecimal.
std::optional<Names> FromLink(const Node& disk) {
    std::string port = disk.Path();
    while (!port.empty() && !IsNumbered(LastComponent(port), "ata"))
        port = ParentPath(port);
    if (port.empty())
        return std::nullopt;
    const std::string number = LastComponent(port).substr(3);
    const std::string address = disk.Name();
    const std::size_t channel = address.find(':');
    const std::size_t target = address.find(':', channel + 1) + 1;
    const std::string name = "dev" + number + "." + address.substr(target, address.find(':', target) - target);
    const Node link = disk.Ancestor(port).Child("link" + number);
    const QString words =
        QString::fromLatin1(link.Child(name).Child("ata_device").Child(name).Bytes("id", LargestPage).c_str());
    std::string identify;
    for (const QString& word : words.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const quint32 value = ParseHex(word.toStdString()).value_or(0);
        identify += char(value & 0xFF);
        identify += char(value >> 8 & 0xFF);
    }
    return FromIdentify(identify);
}

} // namespace

Inquiry AtaInquiry(const Node& disk, const Inquiry& inquiry) {
    std::optional<Names> whole = FromPage89(disk);
    if (!whole)
        whole = FromLink(disk);
    if (!whole)
        whole = FromPage83(disk);
    const QString model = whole ? whole->model : inquiry.product;
    Inquiry ata{{}, model, inquiry.revision};
    if (whole && !whole->firmware.isEmpty())
        ata.revision = whole->firmware;
    const qsizetype blank = model.indexOf(QLatin1Char(' '));
    if (blank <= 0 || blank >= VendorSize)
        return ata;
    ata.vendor = model.left(blank);
    ata.product = model.mid(blank + 1);
    // A blank at the end of what is shown cannot be told from the end of the model.
    ata.productIsCut = !whole && model.size() >= ShownModel - 1;
    return ata;
}

} // namespace pnp
