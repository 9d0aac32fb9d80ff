#include "contribution_file.h"

#include "base/text.h"
#include "database/schema.h"
#include "input_file.h"
#include "inventory/clean_text.h"

#include <algorithm>

namespace tool {

namespace {

constexpr qint64 largestFile = 16 << 20; // bytes, of many contributions joined

bool HasControlCharacter(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        return character.unicode() < 0x20 || (character.unicode() >= 0x7F && character.unicode() < 0xA0);
    });
}

using Device = database::Contribution;

struct Rule {
    bool (*Holds)(const QString& text, const Device& device);
    const char* Reason;
};

bool HasThreeFields(const QString& text) { return text.count(QStringLiteral("|||")) == 2; }

constexpr Rule malformed[] = {
    {[](const QString& text, const Device&) { return HasControlCharacter(text); }, "holds a control character"},
    {[](const QString& text, const Device&) { return !HasThreeFields(text); }, "has not three fields"},
    {[](const QString&, const Device& device) { return base::Trim(device.HardwareId).isEmpty(); },
     "has no hardware ID"},
    {[](const QString&, const Device& device) { return device.HardwareId.size() > database::HardwareIdSize; },
     "hardware ID over 125 characters"},
    {[](const QString&, const Device& device) { return device.Name.size() > database::NameSize; },
     "name over 100 characters"},
    {[](const QString&, const Device& device) { return device.Manufacturer.size() > database::NameSize; },
     "manufacturer over 100 characters"},
};

// IDs of whole classes of devices: under one of them every device of the class would be a match.
constexpr const char* classIds[] = {"usb\\class_", "usb\\devclass_",   "usb\\composite", "usb\\root_hub",
                                    "pci\\cc_",    "acpi\\processor",  "hid_device",     "gendisk",
                                    "gencdrom",    "root\\",           "swd\\",          "umb\\",
                                    "uuid",        "usbstor\\gencdrom"};

bool IsClassId(const QString& id) {
    const QString lower = id.toLower();
    return std::any_of(std::begin(classIds), std::end(classIds),
                       [&](const char* prefix) { return lower.startsWith(QLatin1String(prefix)); });
}

// "BUS\..." or "*XXX0000", without blanks or signs that no platform puts into an ID's first part.
bool LooksLikeId(const QString& id) {
    if (id.startsWith(QLatin1Char('*'))) {
        return id.size() >= 5;
    }
    const qsizetype slash = id.indexOf(QLatin1Char('\\'));
    return slash >= 2 && slash + 1 < id.size() && std::all_of(id.begin(), id.begin() + slash, [](QChar character) {
               return character.isLetterOrNumber() && character.unicode() < 0x80;
           });
}

bool HoldsMarkupOrAddress(const QString& text) {
    for (const char* sign : {"<", ">", "://", "www.", "{{", "${"}) {
        if (text.contains(QLatin1String(sign), Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

bool IsUnknown(const QString& text) {
    return text.isEmpty() || text.startsWith(QLatin1String("unknown"), Qt::CaseInsensitive);
}

constexpr Rule suspicious[] = {
    {[](const QString&, const Device& device) { return !LooksLikeId(device.HardwareId); }, "is no hardware ID"},
    {[](const QString&, const Device& device) { return IsClassId(device.HardwareId); },
     "ID of a whole class of devices"},
    {[](const QString&, const Device& device) { return IsUnknown(device.Name) || IsUnknown(device.Manufacturer); },
     "no name or no manufacturer"},
    {[](const QString& text, const Device&) { return HoldsMarkupOrAddress(text); }, "holds markup or an address"},
    {[](const QString& text, const Device&) { return text.contains(QLatin1Char('?')); },
     "holds characters lost in writing"},
    {[](const QString&, const Device& device) {
         return device.Name.compare(device.HardwareId, Qt::CaseInsensitive) == 0;
     },
     "the name is the ID"},
};

template <size_t Count>
const Rule* FirstThatHolds(const Rule (&rules)[Count], const QString& text, const Device& device) {
    const auto* found =
        std::find_if(std::begin(rules), std::end(rules), [&](const Rule& rule) { return rule.Holds(text, device); });
    return found == std::end(rules) ? nullptr : found;
}

} // namespace

JudgedLine Judge(const QString& text) {
    JudgedLine line;
    line.Text = text;
    line.Device = database::SplitContribution(text);
    if (const Rule* rule = FirstThatHolds(malformed, text, line.Device)) {
        line.Judgement = Verdict::Malformed;
        line.Reason = QLatin1String(rule->Reason);
    } else if (const Rule* doubt = FirstThatHolds(suspicious, text, line.Device)) {
        line.Judgement = Verdict::Suspicious;
        line.Reason = QLatin1String(doubt->Reason);
    }
    return line;
}

std::vector<JudgedLine> ReadContributions(const QString& path, QString& error) {
    error.clear();
    const std::optional<QByteArray> bytes = ReadAtMost(path, largestFile + 1, error);
    if (!bytes) {
        return {};
    }
    if (bytes->size() > largestFile || bytes->contains('\0')) {
        error = QStringLiteral("%1: no file of contributions").arg(path);
        return {};
    }
    std::vector<JudgedLine> lines;
    int number = 0;
    for (QByteArray bare : bytes->split('\n')) {
        ++number;
        if (bare.endsWith('\r')) {
            bare.chop(1);
        }
        if (!bare.isEmpty()) {
            lines.push_back(Judge(base::FromAnsi(bare)));
            lines.back().Number = number;
        }
    }
    return lines;
}

QString StoredLine(const database::Contribution& device) {
    return database::ContributionLine(device.HardwareId, inventory::CleanText(device.Name),
                                      inventory::CleanText(device.Manufacturer));
}

QString DeviceKey(const database::Contribution& device) { return base::LowerCase(StoredLine(device)); }

} // namespace tool
