// A device tree built out of the input and scanned. The input is text, a line each:
//   /devices/pci0000:00/0000:00:1f.2 @ bus/pci   a device folder, and a link to it in /bus/pci/devices
//   vendor = 0x8086                              an attribute, with a line end behind it; \xFF and \n for other bytes
//   driver -> /bus/pci/drivers/ahci              a link below the root
// Two scans of one tree must agree, and whatever the tree claims, no device breaks the form of its record.
#include "pnp/device_tree.h"
#include "fuzz_support.h"
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "pnp/sources.h"
#include "suite/list_items.h"

#include <QSet>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr size_t mostEntries = 80;

// The tree as it will be: everything stays below the root, since ".." never becomes part of a path.
struct Plan {
    std::set<std::string> folders;
    std::map<std::string, std::string> files;
    std::map<std::string, std::string> links;
    size_t Entries() const { return folders.size() + files.size() + links.size(); }
};

std::string SafePath(const QByteArray& path) {
    std::string safe;
    for (const QByteArray& component : path.split('/')) {
        if (!component.isEmpty() && component != "." && component != ".." && component.size() < 100)
            safe += '/' + component.toStdString();
    }
    return safe.size() < 1000 ? safe : std::string();
}

std::string Unescaped(const QByteArray& value) {
    std::string bytes;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value.at(i) == '\\' && i + 3 < value.size() && value.at(i + 1) == 'x') {
            bytes += QByteArray::fromHex(value.mid(i + 2, 2)).toStdString();
            i += 3;
        } else if (value.at(i) == '\\' && i + 1 < value.size() && value.at(i + 1) == 'n') {
            bytes += '\n';
            ++i;
        } else {
            bytes += value.at(i);
        }
    }
    return bytes;
}

Plan Parse(const QByteArray& text) {
    Plan plan;
    std::string device;
    for (QByteArray line : text.split('\n')) {
        line = line.trimmed();
        line.replace('\0', ' ');
        if (plan.Entries() >= mostEntries)
            break;
        if (line.startsWith('/')) {
            const qsizetype at = line.indexOf(" @ ");
            device = SafePath(at < 0 ? line : line.first(at));
            plan.folders.insert(device);
            const std::string shown = at < 0 ? std::string() : SafePath(line.sliced(at + 3));
            if (!shown.empty()) {
                const std::string folder = shown.starts_with("/bus") ? shown + "/devices" : shown;
                plan.links[folder + '/' + device.substr(device.rfind('/') + 1)] = device;
            }
        } else if (const qsizetype arrow = line.indexOf(" -> "); arrow > 0) {
            plan.links[device + SafePath(line.first(arrow))] = SafePath(line.sliced(arrow + 4));
        } else if (const qsizetype equals = line.indexOf(" = "); equals > 0) {
            plan.files[device + SafePath(line.first(equals))] = Unescaped(line.sliced(equals + 3)) + '\n';
        }
    }
    return plan;
}

// Links come last, so that nothing is ever written through one.
void Build(const Plan& plan, const std::string& root) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    fs::remove_all(root, ignored);
    fs::create_directories(root, ignored);
    for (const std::string& folder : plan.folders)
        fs::create_directories(root + folder, ignored);
    for (const auto& [path, bytes] : plan.files) {
        fs::create_directories(fs::path(root + path).parent_path(), ignored);
        std::ofstream(root + path, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
    }
    for (const auto& [path, target] : plan.links)
        fs::create_directories(fs::path(root + path).parent_path(), ignored);
    for (const auto& [path, target] : plan.links)
        fs::create_symlink(fs::path(root + target).lexically_relative(fs::path(root + path).parent_path()), root + path,
                           ignored);
}

std::vector<pnp::Device> Walk() {
    const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
    std::vector<pnp::Device> devices;
    for (std::size_t i = 0; const pnp::Device* device = tree->At(i); ++i) {
        fuzz::Require(tree->Find(device->instancePath.toLower()) == device,
                      "a device is found by its path in any case");
        devices.push_back(*device);
    }
    return devices;
}

bool IsClean(const QString& text) {
    return std::none_of(text.begin(), text.end(),
                        [](QChar c) { return c.category() == QChar::Other_Control && c != u'\t'; });
}

void Check(const std::vector<pnp::Device>& devices) {
    QSet<QString> paths;
    for (const pnp::Device& device : devices) {
        fuzz::Require(device.instancePath.count(u'\\') == 2 && IsClean(device.instancePath),
                      "an instance path has three parts");
        fuzz::Require(!paths.contains(device.instancePath.toUpper()), "an instance path is one device's alone");
        paths.insert(device.instancePath.toUpper());
        fuzz::Require(IsClean(device.name) && IsClean(device.manufacturer), "names are clean");
        fuzz::Require(device.classGuid.isEmpty() ||
                          (device.classGuid.size() == 38 && device.classGuid == device.classGuid.toUpper()),
                      "a class is a GUID in upper case");
        fuzz::Require(device.driverKey.isEmpty() || device.driverKey.startsWith(device.classGuid, Qt::CaseInsensitive),
                      "a driver's key lies below its class");
        for (const QString& id : device.hardwareIds)
            fuzz::Require(!id.isEmpty() && IsClean(id) && !id.contains(u'|'), "a hardware ID is one clean text");
    }
}

bool Same(const pnp::Device& left, const pnp::Device& right) {
    return left.instancePath == right.instancePath && left.name == right.name &&
           left.manufacturer == right.manufacturer && left.classGuid == right.classGuid &&
           left.problemCode == right.problemCode && left.hardwareIds == right.hardwareIds &&
           left.service == right.service && left.driverVersion == right.driverVersion &&
           left.driverKey == right.driverKey;
}

// The lists of the program, filled from the same tree.
void Scan(const std::vector<pnp::Device>& devices) {
    suite::ListItems lists[4];
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    inventory::DeviceScan(lists[0], lists[1], lists[2], lists[3], [](const QString&) {});
    const auto shown = std::count_if(devices.begin(), devices.end(), [](const pnp::Device& device) {
        constexpr const char* leftOut[] = {"root\\", "storage\\volume", "usb\\root_hub", "swd\\"};
        return std::none_of(std::begin(leftOut), std::end(leftOut), [&device](const char* start) {
            return device.instancePath.toLower().startsWith(QLatin1String(start));
        });
    });
    fuzz::Require(lists[0].Count() == shown, "the scan shows every device once");
    for (const suite::ListItems& list : lists)
        fuzz::Require(list.Count() <= lists[0].Count(), "no list holds more than all devices");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::NeedApplication();
    pnp::Sources sources;
    sources.deviceRoot = fuzz::Folder() + QStringLiteral("/sys");
    sources.processorInfo.clear();
    sources.idFolder = fuzz::Folder() + QStringLiteral("/ids");
    sources.live = false;
    pnp::SetSources(sources);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), qsizetype(size));
    Build(Parse(text), pnp::CurrentSources().deviceRoot.toStdString());
    const std::vector<pnp::Device> devices = Walk();
    Check(devices);
    const std::vector<pnp::Device> again = Walk();
    fuzz::Require(std::equal(devices.begin(), devices.end(), again.begin(), again.end(), Same),
                  "two walks over one tree see the same");
    Scan(devices);
    return 0;
}
