// Codecs of HD-audio controllers, from the hdaudio bus or, on kernels without it, from the sound class.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

std::vector<std::string> ListCodecs(const Context& context) {
    if (context.Files().Has("/bus/hdaudio/devices"))
        return ListEntries(context, "/bus/hdaudio/devices");
    std::vector<std::string> codecs;
    for (const std::string& path : ListEntries(context, "/class/sound")) {
        if (LastComponent(path).starts_with("hwC"))
            codecs.push_back(path);
    }
    return codecs;
}

// "hdaudioC0D2", "ehdaudio0D2" and "hwC0D2": the number behind the last D is the codec's address.
quint32 CodecAddress(const std::string& name) {
    const std::size_t found = name.rfind('D');
    return found == std::string::npos ? 0 : ParseDecimal(name.substr(found + 1)).value_or(0);
}

void ReadCodec(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    const std::string alias = node.Modalias();
    std::optional<quint32> vendor = node.Hex("vendor_id");
    std::optional<quint32> revision = node.Hex("revision_id");
    // "hdaudio:v10EC0257r00100001a01"
    if (!vendor && alias.starts_with("hdaudio:v") && alias.size() >= 26) {
        vendor = ParseHex(alias.substr(9, 8));
        revision = ParseHex(alias.substr(18, 8));
    }
    const std::optional<quint32> subsystem = node.Hex("subsystem_id");
    const bool modem = node.Hex("mfg").value_or(0) != 0 && node.Hex("afg").value_or(0) == 0;
    const quint32 group = modem ? node.Hex("mfg").value_or(1) : node.Hex("afg").value_or(1);

    Device device;
    const QString product = QStringLiteral("HDAUDIO\\FUNC_%1&VEN_%2&DEV_%3")
                                .arg(modem ? QStringLiteral("02") : QStringLiteral("01"),
                                     Hex(vendor.value_or(0) >> 16, 4), Hex(vendor.value_or(0) & 0xFFFF, 4));
    const QString board = QStringLiteral("&SUBSYS_") + Hex(subsystem.value_or(0), 8);
    // Major and minor version and the revision's first byte; the stepping is left out.
    const QString version = QStringLiteral("&REV_") + Hex(revision.value_or(0) >> 8 & 0xFFFF, 4);
    std::string controller = PciFolder(path);
    if (controller.empty())
        controller = ParentPath(path);
    device.instancePath = product + board + version + QLatin1Char('\\') +
                          InstanceSuffix(TreeLevel(controller) + 1, context.Stable(controller),
                                         Hex(CodecAddress(node.Name()) & 0xFF, 2) + Hex(group & 0xFF, 2));
    if (vendor) {
        if (subsystem && revision)
            device.hardwareIds.append(product + board + version);
        if (subsystem)
            device.hardwareIds.append(product + board);
        if (revision)
            device.hardwareIds.append(product + version);
        device.hardwareIds.append(product);
    }
    device.manufacturer = node.Text("vendor_name");
    if (device.manufacturer.isEmpty() && vendor)
        device.manufacturer = context.PciIds().VendorName(quint16(*vendor >> 16));
    const QString chip = node.Text("chip_name");
    device.name = chip.isEmpty() ? QStringLiteral("High Definition Audio Device") : chip;
    device.classGuid = QString::fromUtf16(class_guid::Media);
    // A codec of the sound class is driven by its controller's driver.
    const bool ownBus = path.find("/hwC") == std::string::npos;
    context.TakeDriver(ownBus ? node : node.Ancestor(controller), device);
    TakeProblem(context, node, alias, true, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader HdAudioReader() { return {ListCodecs, ReadCodec}; }

} // namespace pnp
