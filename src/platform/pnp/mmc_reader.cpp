// Memory cards of the MMC bus, and the functions of SDIO cards.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

// The host's own device; its number depends on the order of arrival.
std::string HostFolder(const std::string& path) {
    const std::size_t found = path.find("/mmc_host/");
    return found == std::string::npos ? ParentPath(path) : path.substr(0, found);
}

std::vector<std::string> ListMmc(const Context& context) { return ListEntries(context, "/bus/mmc/devices"); }

void ReadMmc(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    const std::string type = node.Exists() ? node.Word("type") : std::string("SDIO");
    // The functions of an input/output card are the devices, not the card.
    if (type == "SDIO")
        return;
    Device device;
    const quint32 revision = node.Hex("hwrev").value_or(0);
    const quint32 firmware = node.Hex("fwrev").value_or(0);
    const QString name = node.Text("name");
    const QString product = QStringLiteral("SD\\VID_%1&OID_%2&PID_%3")
                                .arg(Hex(node.Hex("manfid").value_or(0) & 0xFF, 2),
                                     Hex(node.Hex("oemid").value_or(0) & 0xFFFF, 4), PathText(name));
    const QString version = QStringLiteral("&REV_%1.%2").arg(revision & 0xF).arg(firmware & 0xF);
    const std::string host = HostFolder(path);
    const QString byPlace = product + version + QLatin1Char('\\') +
                            InstanceSuffix(TreeLevel(host) + 1, context.Stable(host), QStringLiteral("0"));
    const QString serial = SerialText(node.Text("serial"));
    device.instancePath = serial.isEmpty() ? byPlace : product + version + QLatin1Char('\\') + serial;
    device.alternativePath = byPlace;
    if (!name.isEmpty()) {
        device.hardwareIds.append(product + version);
        device.hardwareIds.append(product);
    }
    device.name = name.isEmpty() ? QStringLiteral("SD Storage Card") : name + QStringLiteral(" SD Storage Card");
    device.classGuid = QString::fromUtf16(class_guid::DiskDrive);
    context.TakeDriver(node, device);
    TakeProblem(context, node, node.Modalias(), true, device);
    devices.push_back(std::move(device));
}

struct FunctionRow {
    quint32 code;
    const char16_t* guid;
    const char16_t* name;
};

constexpr FunctionRow Functions[] = {
    {1, class_guid::Ports, u"SDIO UART"},
    {2, class_guid::Bluetooth, u"SDIO Bluetooth Adapter"},
    {3, class_guid::Bluetooth, u"SDIO Bluetooth Adapter"},
    {6, class_guid::Camera, u"SDIO Camera"},
    {7, class_guid::Net, u"SDIO Network Adapter"},
    {9, class_guid::Bluetooth, u"SDIO Bluetooth Adapter"},
};

std::vector<std::string> ListSdio(const Context& context) { return ListEntries(context, "/bus/sdio/devices"); }

void ReadSdio(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    const std::optional<quint32> vendor = node.Hex("vendor");
    const std::optional<quint32> product = node.Hex("device");
    // "mmc1:0001:2"
    const quint32 number = ParseDecimal(node.Name().substr(node.Name().rfind(':') + 1)).value_or(0);
    Device device;
    const QString card = QStringLiteral("SD\\VID_%1&PID_%2")
                             .arg(Hex(vendor.value_or(0) & 0xFFFF, 4), Hex(product.value_or(0) & 0xFFFF, 4));
    const QString function = QStringLiteral("&FN_") + QString::number(number);
    const std::string host = HostFolder(path);
    device.instancePath = card + function + QLatin1Char('\\') +
                          InstanceSuffix(TreeLevel(host) + 1, context.Stable(host), QString::number(number));
    if (vendor && product) {
        device.hardwareIds.append(card + function);
        device.hardwareIds.append(card);
    }
    const quint32 code = node.Hex("class").value_or(0);
    const char16_t* guid = node.Has("net") || node.Has("ieee80211") ? class_guid::Net : nullptr;
    device.name = QStringLiteral("SDIO Device");
    for (const FunctionRow& row : Functions) {
        if (row.code == code) {
            guid = guid == nullptr ? row.guid : guid;
            device.name = QString::fromUtf16(row.name);
        }
    }
    context.TakeDriver(node, device);
    if (guid == nullptr && !device.service.isEmpty())
        guid = class_guid::System;
    if (guid != nullptr)
        device.classGuid = QString::fromUtf16(guid);
    TakeProblem(context, node, node.Modalias(), true, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader MmcReader() { return {ListMmc, ReadMmc}; }
BusReader SdioReader() { return {ListSdio, ReadSdio}; }

} // namespace pnp
