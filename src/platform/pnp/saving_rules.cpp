#include "pnp/saving_rules.h"

#include "pnp/sysfs.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <sstream>

namespace pnp {

namespace {

// Texts in place of addresses, the same for the same address, so that names stay apart.
class AddressMask {
  public:
    std::string Masked(const std::string& text) {
        std::string masked;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t length = AddressAt(text, at);
            masked += length == 0 ? text.substr(at, 1) : Stand(text.substr(at, length));
            at += std::max<std::size_t>(length, 1);
        }
        return masked;
    }

  private:
    static bool IsHex(const std::string& text, std::size_t at) {
        return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
    }

    // The length of "00:1f:20:ab:cd:ef", or with "-" or "_", when it stands by itself; 0 for anything else.
    static std::size_t AddressAt(const std::string& text, std::size_t at) {
        constexpr std::size_t length = 17;
        if (at + length > text.size() || (at > 0 && IsHex(text, at - 1)) || IsHex(text, at + length))
            return 0;
        const char separator = text[at + 2];
        if (separator != ':' && separator != '-' && separator != '_')
            return 0;
        for (std::size_t i = 0; i < length; ++i) {
            if (i % 3 == 2 ? text[at + i] != separator : !IsHex(text, at + i))
                return 0;
        }
        return length;
    }

    std::string Stand(const std::string& address) {
        const auto number = numbers_.try_emplace(address, numbers_.size() + 1).first->second;
        const QString digits = QString::number(qulonglong(number), 16).rightJustified(12, QLatin1Char('0'));
        std::string stand;
        for (int i = 0; i < 12; i += 2)
            stand += (i == 0 ? "" : address.substr(2, 1)) + digits.mid(i, 2).toStdString();
        return stand;
    }

    std::map<std::string, std::size_t> numbers_;
};

// Lines of "uevent" that readers ask for. HID_UNIQ and HID_PHYS hold addresses and serial numbers.
constexpr const char* UeventKeys[] = {"DEVTYPE", "DRIVER",  "HID_ID",    "HID_NAME",      "INTERFACE", "MODALIAS",
                                      "PCI_ID",  "PRODUCT", "PCI_CLASS", "PCI_SUBSYS_ID", "TYPE"};

std::string Uevent(const std::string& text) {
    std::string kept;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        const std::string key = line.substr(0, line.find('='));
        if (std::find(std::begin(UeventKeys), std::end(UeventKeys), key) != std::end(UeventKeys))
            kept += line + "\n";
        begin = end + 1;
    }
    return kept;
}

std::string Text(const std::string& text) { return text; }

// Bytes that hold no identity; a text's addresses are masked.
struct Attribute {
    const char* name;
    // What is kept of the contents; null to leave them out.
    std::string (*kept)(const std::string& contents);
    bool isText = true;
};

// Every attribute that a reader asks for; one without contents is left out on purpose.
constexpr Attribute Attributes[] = {
    {"afg", Text},
    {"authorized", Text},
    {"bConfigurationValue", Text},
    {"bDeviceClass", Text},
    {"bDeviceProtocol", Text},
    {"bDeviceSubClass", Text},
    {"bInterfaceClass", Text},
    {"bInterfaceNumber", Text},
    {"bInterfaceProtocol", Text},
    {"bInterfaceSubClass", Text},
    {"bNumInterfaces", Text},
    {"bcdDevice", Text},
    {"chip_name", Text},
    {"class", Text},
    // The part that all functions have is asked for; a serial number stands behind it, if there is one.
    {"config", Text, false},
    {"connect_type", Text},
    {"description", Text},
    // Numbers of texts, not the texts.
    {"descriptors", Text, false},
    {"device", Text},
    {"device_name", Text},
    {"driver_override", Text},
    {"edid", EdidWithoutIdentity, false},
    {"firmware_rev", Text},
    {"fwrev", Text},
    {"guid", nullptr},
    {"hid", Text},
    {"hrv", Text},
    {"hwrev", Text},
    {"iad_bFirstInterface", Text},
    {"id", Text},
    {"idProduct", Text},
    {"idVendor", Text},
    {"interface", Text},
    {"is_local", Text},
    {"manfid", Text},
    {"manufacturer", Text},
    {"mfg", Text},
    {"modalias", Text},
    {"model", Text},
    {"model_name", Text},
    {"name", Text},
    {"oemid", Text},
    {"product", Text},
    {"report_descriptor", Text, false},
    {"resource", Text},
    {"rev", Text},
    {"revision", Text},
    {"revision_id", Text},
    {"runtime_status", Text},
    {"serial", nullptr},
    {"specifier_id", Text},
    {"state", Text},
    {"status", Text},
    {"subsystem_device", Text},
    {"subsystem_id", Text},
    {"subsystem_vendor", Text},
    {"type", Text},
    {"uevent", Uevent},
    {"uid", Text},
    {"unique_id", nullptr},
    {"vendor", Text},
    {"vendor_id", Text},
    {"vendor_name", Text},
    {"version", Text},
    {"vpd_pg83", Page83WithoutIdentity, false},
    {"vpd_pg89", Page89WithoutIdentity, false},
    {"waiting_for_supplier", Text},
};

const Attribute* FindAttribute(const std::string& name) {
    const auto found = std::find_if(std::begin(Attributes), std::end(Attributes),
                                    [&name](const Attribute& attribute) { return name == attribute.name; });
    return found == std::end(Attributes) ? nullptr : found;
}

// Names of interfaces are the user's own, or made of the card's address ("wlx001122334455"). No list shows them.
bool IsInterface(const std::string& path) { return path.find("/net/") != std::string::npos; }

// What an ATA disk tells of itself as words in hexadecimal, of which only the model and its firmware are kept.
std::string IdentityWords(const std::string& text) {
    constexpr int firmware = 23;
    constexpr int modelEnd = 47;
    std::istringstream words(text);
    std::string kept;
    std::string word;
    for (int i = 0; words >> word; ++i)
        kept += i >= firmware && i < modelEnd ? word.substr(0, 4) + " " : "0000 ";
    return kept;
}

std::string Contents(const std::string& path, const std::string& bytes, AddressMask& mask) {
    const Attribute* const attribute = FindAttribute(LastComponent(path));
    if (attribute == nullptr || attribute->kept == nullptr)
        return {};
    // One name for two things: the numbers of a PnP device, and all that an ATA disk tells.
    const std::string kept =
        path.find("/ata_device/") == std::string::npos ? attribute->kept(bytes) : IdentityWords(bytes);
    return attribute->isText ? mask.Masked(kept) : kept;
}

unsigned char Byte(const std::string& bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

constexpr std::size_t EdidBlock = 128;
constexpr std::size_t EdidSerial = 12;
constexpr std::size_t EdidExtensions = 126;
constexpr std::size_t FirstDescriptor = 54;
constexpr std::size_t DescriptorSize = 18;
constexpr unsigned char SerialTag = 0xFF;

} // namespace

// The first block alone: those behind it say nothing that a reader asks for, and may repeat the number.
std::string EdidWithoutIdentity(const std::string& edid) {
    if (edid.size() < EdidBlock)
        return edid.substr(0, EdidSerial);
    std::string block = edid.substr(0, EdidBlock);
    std::fill_n(block.begin() + EdidSerial, 4, '\0');
    for (std::size_t at = FirstDescriptor; at + DescriptorSize <= EdidExtensions; at += DescriptorSize) {
        if (Byte(block, at) == 0 && Byte(block, at + 1) == 0 && Byte(block, at + 3) == SerialTag)
            std::fill_n(block.begin() + std::ptrdiff_t(at) + 4, DescriptorSize - 4, '\0');
    }
    block[EdidExtensions] = '\0';
    // The bytes of a block add up to 0.
    const unsigned sum = std::accumulate(block.begin(), block.end() - 1, 0U,
                                         [](unsigned total, char c) { return total + static_cast<unsigned char>(c); });
    block.back() = char(0x100 - (sum & 0xFF));
    return block;
}

// A list of names that the drive goes by, each a number of its own. That of an ATA drive is "ATA" in 8 characters, the
// model in 40, the serial number in 20.
std::string Page83WithoutIdentity(const std::string& page) {
    constexpr std::size_t head = 4;
    constexpr std::size_t model = 8 + 40;
    constexpr unsigned char vendorType = 1;
    std::string kept = page;
    for (std::size_t at = head; at < kept.size();) {
        const std::size_t begin = std::min(at + head, kept.size());
        const std::size_t length = begin == at + head ? Byte(kept, at + 3) : 0;
        const std::size_t end = std::min(begin + length, kept.size());
        const bool ata =
            begin == at + head && (Byte(kept, at + 1) & 0x0F) == vendorType && kept.compare(begin, 8, "ATA     ") == 0;
        std::fill(kept.begin() + std::ptrdiff_t(std::min(begin + (ata ? model : 0), end)),
                  kept.begin() + std::ptrdiff_t(end), ata ? ' ' : '\0');
        at = std::max(end, begin);
    }
    return kept;
}

// What the drive tells of itself (512 bytes behind 60), of which only the model and its firmware are kept.
std::string Page89WithoutIdentity(const std::string& page) {
    constexpr std::size_t identity = 60;
    constexpr std::size_t firmware = identity + 46;
    constexpr std::size_t modelEnd = identity + 94;
    std::string kept(page.size(), '\0');
    std::copy_n(page.begin(), std::min(identity, page.size()), kept.begin());
    for (std::size_t at = firmware; at < std::min(modelEnd, page.size()); ++at)
        kept[at] = page[at];
    return kept;
}

SavedMachine WithoutIdentity(const SavedMachine& machine) {
    AddressMask mask;
    const auto kept = std::make_shared<SavedTree>();
    machine.tree->ForEach([&](const std::string& path, const SavedTree::Entry& entry) {
        const std::string place = mask.Masked(path);
        if (IsInterface(path))
            return;
        switch (entry.kind) {
        case SavedTree::Kind::Folder:
            kept->AddFolder(place);
            break;
        case SavedTree::Kind::File:
            kept->AddFile(place, Contents(path, entry.bytes, mask));
            break;
        case SavedTree::Kind::Link:
            kept->AddLink(place, mask.Masked(entry.bytes));
            break;
        }
    });
    SavedMachine result{machine.facts, kept};
    result.facts.modules.clear();
    for (const auto& [modalias, modules] : machine.facts.modules)
        result.facts.modules[mask.Masked(modalias)] = modules;
    return result;
}

} // namespace pnp
