#include "pnp/device_tree.h"

#include "base/clock.h"
#include "pnp/bus_reader.h"

namespace pnp {

namespace {

// In the order in which devices come up.
const std::vector<BusReader>& Readers() {
    static const std::vector<BusReader> readers = {
        ProcessorReader(), AcpiReader(),    PnpReader(),     PciReader(),         UsbReader(),  HidReader(),
        ScsiReader(),      NvmeReader(),    BlockReader(),   MmcReader(),         SdioReader(), FireWireReader(),
        SoundWireReader(), HdAudioReader(), MonitorReader(), ThunderboltReader(), NetReader(),  PlatformReader(),
    };
    return readers;
}

// "/bus/pci/devices/0000:00:1f.2", "/class/net/lo", "/devices/system/cpu/cpu0": the folder that lists the entry.
QString BusOf(const std::string& entry) {
    const std::string folder = ParentPath(entry);
    const std::string name = LastComponent(folder);
    return QString::fromStdString(name == "devices" ? LastComponent(ParentPath(folder)) : name);
}

std::shared_ptr<DeviceTree>& Held() {
    static std::shared_ptr<DeviceTree> held;
    return held;
}

} // namespace

std::vector<std::string> ListEntries(const Context& context, const std::string& folder) {
    std::vector<std::string> entries = context.Files().List(folder);
    for (std::string& entry : entries)
        entry.insert(0, folder + "/");
    return entries;
}

DeviceTree::DeviceTree(const Sources& sources)
    : context_(std::make_unique<Context>(sources)), taken_(base::Now().toUTC()) {
    for (std::size_t i = 0; i < Readers().size(); ++i) {
        for (std::string& path : Readers()[i].List(*context_))
            entries_.push_back({int(i), std::move(path)});
    }
}

DeviceTree::~DeviceTree() = default;

bool DeviceTree::ReadNext() {
    if (next_ >= entries_.size())
        return false;
    const Entry entry = std::move(entries_[next_++]);
    const std::string folder = context_->Files().Resolve(entry.path);
    if (folder.empty())
        return true;
    std::vector<Device> devices;
    Readers()[std::size_t(entry.reader)].Read(*context_, folder, devices);
    for (Device& device : devices) {
        device.bus = BusOf(entry.path);
        if (device.address.isEmpty())
            device.address = CleanAttribute(LastComponent(folder));
        Add(std::move(device));
    }
    return true;
}

// Two devices never share a path: the second takes the one of its place and, if need be, a count.
void DeviceTree::Add(Device device) {
    if (byPath_.contains(device.instancePath.toLower()) && !device.alternativePath.isEmpty())
        device.instancePath = device.alternativePath;
    const QString path = device.instancePath;
    for (int i = 1; byPath_.contains(device.instancePath.toLower()); ++i)
        device.instancePath = path + QLatin1Char('&') + QString::number(i);
    if (!device.service.isEmpty() && !device.classGuid.isEmpty()) {
        const int number = driverKeys_[device.classGuid]++;
        device.driverKey =
            device.classGuid + QLatin1Char('\\') + QString::number(number).rightJustified(4, QLatin1Char('0'));
    }
    byPath_.insert(device.instancePath.toLower(), devices_.size());
    devices_.push_back(std::move(device));
}

const Device* DeviceTree::At(std::size_t index) {
    while (index >= devices_.size()) {
        if (!ReadNext())
            return nullptr;
    }
    return &devices_[index];
}

const Device* DeviceTree::Find(const QString& instancePath) {
    const QString key = instancePath.toLower();
    for (;;) {
        const auto found = byPath_.constFind(key);
        if (found != byPath_.constEnd())
            return &devices_[*found];
        if (!ReadNext())
            return nullptr;
    }
}

std::shared_ptr<DeviceTree> CurrentTree() { return Held() ? Held() : BindTree(); }

std::shared_ptr<DeviceTree> BindTree() {
    Held() = std::make_shared<DeviceTree>(CurrentSources());
    return Held();
}

} // namespace pnp
