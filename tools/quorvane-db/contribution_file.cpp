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

// As the program takes a line apart: of four bars the first three part two fields, and the fourth belongs to the next.
bool HasThreeFields(const QString& text) { return base::Split(text, QStringLiteral("|||")).size() == 3; }

constexpr Rule malformed[] = {
    {[](const QString& text, const Device&) { return HasControlCharacter(text); }, "holds a control character"},
    {[](const QString& text, const Device&) { return !HasThreeFields(text); }, "has not three fields"},
    {[](const QString&, const Device& device) { return inventory::CleanText(device.HardwareId).isEmpty(); },
     "has no hardware ID"},
    {[](const QString&, const Device& device) { return device.HardwareId.size() > database::HardwareIdSize; },
     "hardware ID over 125 characters"},
    {[](const QString&, const Device& device) { return device.Name.size() > database::NameSize; },
     "name over 100 characters"},
    {[](const QString&, const Device& device) { return device.Manufacturer.size() > database::NameSize; },
     "manufacturer over 100 characters"},
};

// How IDs of whole classes of devices begin: under one of them every device of the class would be a match. With
// `Unless` in it an ID names a product all the same.
struct ClassId {
    const char* Start;
    const char* Unless = nullptr;
};

constexpr ClassId classIds[] = {
    {"usb\\class_"},
    {"usb\\devclass_"},
    {"usb\\composite"},
    {"usb\\root_hub"},
    {"usb\\vid_", "&pid_"},
    {"pci\\cc_"},
    {"pci\\ven_", "&dev_"},
    {"hid\\vid_", "&pid_"},
    {"hid_device"},
    {"*pnp"},
    {"acpi\\pnp"},
    {"acpi\\ven_pnp&"},
    {"acpi\\processor"},
    {"gen"}, // GenDisk, GenCdRom and their like
    {"scsi\\gen"},
    {"usbstor\\gen"},
    {"storage\\volume"},
    {"internal_ide_channel"},
    {"root\\"},
    {"swd\\"},
    {"umb\\"},
    {"uuid"},
    {"wpdbusenumroot\\"},
};

bool IsClassId(const QString& id) {
    const QString lower = base::LowerCase(id);
    return std::any_of(std::begin(classIds), std::end(classIds), [&](const ClassId& known) {
        return lower.startsWith(QLatin1String(known.Start)) &&
               (known.Unless == nullptr || !lower.contains(QLatin1String(known.Unless)));
    });
}

// "BUS\..." or "*XXX0000", without blanks or signs that no platform puts into an ID's first part.
bool LooksLikeId(const QString& id) {
    if (inventory::CleanText(id) != id) {
        return false;
    }
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

// Blanks and no-break spaces are no name.
bool IsUnknown(const QString& name) {
    const QString text = inventory::CleanText(name);
    return text.isEmpty() || text.startsWith(QLatin1String("unknown"), Qt::CaseInsensitive);
}

constexpr Rule suspicious[] = {
    {[](const QString&, const Device& device) { return IsClassId(device.HardwareId); },
     "ID of a whole class of devices"},
    {[](const QString&, const Device& device) { return !LooksLikeId(device.HardwareId); }, "is no hardware ID"},
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

QString ReadContributions(const QString& path, const std::function<void(const JudgedLine& line)>& use) {
    QString error;
    const std::optional<QByteArray> bytes = ReadAtMost(path, largestFile + 1, error);
    if (!bytes) {
        return error;
    }
    if (bytes->size() > largestFile || bytes->contains('\0')) {
        return QStringLiteral("%1: no file of contributions").arg(path);
    }
    int number = 0;
    for (qsizetype at = 0; at < bytes->size();) {
        const qsizetype found = bytes->indexOf('\n', at);
        const qsizetype end = found < 0 ? bytes->size() : found;
        const bool returned = end > at && bytes->at(end - 1) == '\r';
        const QByteArray bare = bytes->mid(at, end - at - (returned ? 1 : 0));
        at = end + 1;
        ++number;
        if (!bare.isEmpty()) {
            JudgedLine line = Judge(base::FromAnsi(bare));
            line.Number = number;
            use(line);
        }
    }
    return QString();
}

database::Contribution Stored(const database::Contribution& device) {
    const auto orUnknown = [](const QString& text) { return text.isEmpty() ? QStringLiteral("Unknown") : text; };
    return {device.HardwareId, orUnknown(inventory::CleanText(device.Name)),
            orUnknown(inventory::CleanText(device.Manufacturer))};
}

QString DeviceKey(const database::Contribution& stored) {
    return base::LowerCase(database::ContributionLine(stored.HardwareId, stored.Name, stored.Manufacturer));
}

} // namespace tool
