// Codecs and amplifiers on SoundWire. No driver of theirs goes by the numbers alone, so they have a path and no
// hardware IDs.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

struct MakerRow {
    quint32 number;
    const char16_t* name;
};

// Numbers that the MIPI Alliance gives.
constexpr MakerRow Makers[] = {
    {0x0102, u"Texas Instruments"}, {0x0105, u"Intel"},    {0x019F, u"Maxim Integrated"},
    {0x01FA, u"Cirrus Logic"},      {0x0217, u"Qualcomm"}, {0x025D, u"Realtek"},
};

// The digits behind `key` in "sdw:m025Dp0711v02c01".
quint32 Field(const std::string& alias, char key, std::size_t digits) {
    const std::size_t found = alias.find(key, 4);
    return found == std::string::npos ? 0 : ParseHex(alias.substr(found + 1, digits)).value_or(0);
}

std::vector<std::string> ListSoundWire(const Context& context) {
    return ListEntries(context, "/bus/soundwire/devices");
}

void ReadSoundWire(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    const std::string alias = node.Modalias();
    // The firmware describes more than the board bears.
    if (!alias.starts_with("sdw:m") || node.Word("status") == "UNATTACHED")
        return;
    const quint32 maker = Field(alias, 'm', 4);
    Device device;
    const std::string controller = PciFolder(path).empty() ? ParentPath(path) : PciFolder(path);
    device.instancePath = QStringLiteral("SOUNDWIRE\\MAN_%1&PART_%2&VER_%3&CLASS_%4\\")
                              .arg(Hex(maker, 4), Hex(Field(alias, 'p', 4), 4), Hex(Field(alias, 'v', 2), 2),
                                   Hex(Field(alias, 'c', 2), 2)) +
                          InstanceSuffix(TreeLevel(controller) + 1, context.Stable(controller),
                                         PathText(CleanAttribute(node.Name()).remove(QLatin1Char(':')).toUpper()));
    device.name = QStringLiteral("SoundWire Audio Device");
    for (const MakerRow& row : Makers) {
        if (row.number == maker)
            device.manufacturer = QString::fromUtf16(row.name);
    }
    device.classGuid = QString::fromUtf16(class_guid::Media);
    context.TakeDriver(node, device);
    TakeProblem(context, node, alias, true, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader SoundWireReader() { return {ListSoundWire, ReadSoundWire}; }

} // namespace pnp
