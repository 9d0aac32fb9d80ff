// ACPI nodes and PnP devices. A PnP device and its ACPI node are one device, listed as the node.
#include "pnp/acpi_ids.h"
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/pci_class.h"
#include "pnp/problem.h"

#include <algorithm>

namespace pnp {

namespace {

constexpr quint32 StatusPresent = 1U << 0;
constexpr quint32 StatusEnabled = 1U << 1;
constexpr quint32 StatusFunctioning = 1U << 3;
// ACPI nodes lie two levels below the root, whatever their depth in the namespace.
constexpr int AcpiLevel = 3;

bool IsHiddenName(const std::string& name) { return name.starts_with("LNX") || name.starts_with("device:"); }

QString Identifier(const QString& text) {
    const QString id = text.trimmed().toUpper();
    return id == PathText(id) && id.size() <= 32 ? id : QString();
}

// "acpi:LEN0071:PNP0303:": the node's own identifier and those it is compatible with.
QStringList AliasIds(const std::string& alias) {
    QStringList ids;
    const std::string start = "acpi:";
    if (!alias.starts_with(start))
        return ids;
    for (const QString& part :
         QString::fromStdString(alias.substr(start.size())).split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        if (const QString id = Identifier(part); !id.isEmpty() && !id.startsWith(QStringLiteral("LNX")))
            ids.append(id);
    }
    return ids;
}

QStringList PnpIds(const Node& node) {
    QStringList ids;
    for (const QString& part : node.Text("id").split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (const QString id = Identifier(part); !id.isEmpty())
            ids.append(id);
    }
    return ids;
}

// The PnP device of a node to which nothing links it: of those that bear the node's identifier, the one that has as
// many before it as the node ("PNP0501:01").
std::string UnlinkedTwin(const Context& context, const std::string& name) {
    const std::size_t colon = name.find(':');
    quint32 before = colon == std::string::npos ? 0 : ParseHex(name.substr(colon + 1)).value_or(0);
    for (const std::string& entry : ListEntries(context, "/bus/pnp/devices")) {
        const std::string folder = context.Files().Resolve(entry);
        const Node node = context.At(folder);
        if (!node.Has("firmware_node") && PnpIds(node).value(0).toStdString() == name.substr(0, colon) && before-- == 0)
            return folder;
    }
    return {};
}

// The device folders that the kernel made for a node ("physical_node", "physical_node1", ...). Partial captures lack
// the links, but the devices bear the node's name.
std::vector<std::string> PhysicalNodes(const Context& context, const Node& node) {
    std::vector<std::string> folders;
    std::string name = "physical_node";
    for (int i = 1; node.Has(name); ++i) {
        if (std::string folder = node.Link(name); !folder.empty())
            folders.push_back(std::move(folder));
        name = "physical_node" + std::to_string(i);
    }
    if (!folders.empty())
        return folders;
    for (const char* place : {"/bus/platform/devices/", "/bus/i2c/devices/i2c-", "/bus/spi/devices/spi-"}) {
        if (std::string folder = context.Files().Resolve(place + node.Name()); !folder.empty())
            folders.push_back(std::move(folder));
    }
    // The running kernel links all of them.
    if (folders.empty() && !context.From().live) {
        if (std::string folder = UnlinkedTwin(context, node.Name()); !folder.empty())
            folders.push_back(std::move(folder));
    }
    return folders;
}

bool StandsElsewhere(const std::vector<std::string>& physical) {
    return std::any_of(physical.begin(), physical.end(), [](const std::string& folder) {
        return IsPciAddress(LastComponent(folder)) || ParentPath(folder) == "/devices/system/cpu";
    });
}

// A battery's or adapter's own strings stand in the power supply below it.
void TakePowerSupplyNames(const Node& node, Device& device) {
    for (const std::string& name : node.List("power_supply")) {
        const Node supply = node.Child("power_supply").Child(name);
        const QString model = supply.Text("model_name");
        if (!model.isEmpty())
            device.name = model;
        const QString maker = supply.Text("manufacturer");
        if (!maker.isEmpty())
            device.manufacturer = maker;
    }
}

struct StandardMaker {
    const char16_t* guid;
    const char16_t* text;
};

constexpr StandardMaker StandardMakerTexts[] = {
    {class_guid::Fdc, u"(Standard floppy disk controllers)"}, {class_guid::Keyboard, u"(Standard keyboards)"},
    {class_guid::Mouse, u"(Standard mouse types)"},           {class_guid::Ports, u"(Standard port types)"},
    {class_guid::Processor, u"(Standard processor types)"},
};

// Who stands for the makers of standard equipment of a class; null where nobody does.
const char16_t* StandardMakers(const QString& guid) {
    for (const StandardMaker& row : StandardMakerTexts) {
        if (guid == QString::fromUtf16(row.guid))
            return row.text;
    }
    return nullptr;
}

// Power engine plug-ins say so among what they are compatible with, whatever maker's identifier they bear.
bool IsPowerEngine(const QStringList& ids) { return ids.contains(QStringLiteral("PNP0D80")); }

void TakeClassAndNames(Context& context, const QStringList& ids, Device& device, bool& needsDriver) {
    const AcpiKind* kind = nullptr;
    for (const QString& id : ids) {
        kind = FindAcpiKind(id);
        if (kind != nullptr)
            break;
    }
    const bool standard = IsStandardAcpiId(ids.first());
    needsDriver = !IsPowerEngine(ids) && (kind == nullptr ? !standard : kind->needsDriver);
    const char16_t* guid = kind == nullptr ? nullptr : kind->guid;
    if (guid == nullptr && (standard || !device.service.isEmpty()))
        guid = class_guid::System;
    if (guid != nullptr)
        device.classGuid = QString::fromUtf16(guid);
    if (kind != nullptr)
        device.name = QString::fromUtf16(kind->name);
    else
        device.name = QStringLiteral("ACPI device ") + ids.first();

    if (!standard)
        device.manufacturer = AcpiMaker(ids.first(), context.PciIds(), context.UsbIds(), context.PnpIds());
    else if (const char16_t* makers = StandardMakers(device.classGuid))
        device.manufacturer = QString::fromUtf16(makers);
}

// Bridges, timers and their like; what has a problem shall not vanish among them.
void TakeStandardSystem(const QStringList& ids, Device& device) {
    if (IsStandardAcpiId(ids.first()) && device.problemCode == problem::None &&
        device.classGuid == QString::fromUtf16(class_guid::System))
        device.manufacturer = StandardSystemDevices();
}

void TakeIds(const QStringList& ids, const QString& revision, Device& device) {
    for (qsizetype i = 0; i < ids.size(); ++i) {
        for (const QString& id : AcpiHardwareIds(ids[i], i == 0 ? revision : QString())) {
            if (!device.hardwareIds.contains(id))
                device.hardwareIds.append(id);
        }
    }
}

QStringList NodeIds(const Node& node) {
    QStringList ids;
    if (const QString own = Identifier(node.Text("hid")); !own.isEmpty())
        ids.append(own);
    for (const QString& id : AliasIds(node.Modalias())) {
        if (!ids.contains(id))
            ids.append(id);
    }
    return ids;
}

std::vector<std::string> ListAcpi(const Context& context) {
    std::vector<std::string> nodes = ListEntries(context, "/bus/acpi/devices");
    std::erase_if(nodes, [](const std::string& path) { return IsHiddenName(LastComponent(path)); });
    return nodes;
}

// Where the kernel lists processors with their identity, their ACPI nodes are the same devices again.
bool ProcessorsAreKnown(const Context& context) { return context.Files().Has("/devices/system/cpu/modalias"); }

void ReadAcpi(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    const QStringList ids = NodeIds(node);
    if (ids.isEmpty() || IsHiddenName(ids.first().toStdString()))
        return;
    const quint32 status = node.Decimal("status").value_or(StatusPresent | StatusEnabled | StatusFunctioning);
    const std::vector<std::string> physical = PhysicalNodes(context, node);
    if ((status & StatusPresent) == 0 || StandsElsewhere(physical) ||
        (ids.first() == QStringLiteral("ACPI0007") && ProcessorsAreKnown(context)))
        return;

    Device device;
    const std::string name = node.Name();
    const std::size_t colon = name.rfind(':');
    const QString ordinal =
        PathText(CleanAttribute(colon == std::string::npos ? "0" : name.substr(colon + 1)).toUpper());
    const QString base = QStringLiteral("ACPI\\") + ids.first() + QLatin1Char('\\');
    const QString byPlace = base + InstanceSuffix(AcpiLevel, context.Stable(ParentPath(path)), ordinal);
    const QString uid = PathText(node.Text("uid"));
    device.instancePath = uid.isEmpty() ? byPlace : base + uid;
    device.alternativePath = byPlace;
    const std::optional<quint32> revision = node.Decimal("hrv");
    TakeIds(ids, revision ? QStringLiteral("&REV_") + Hex(*revision & 0xFFFF, 4) : QString(), device);

    context.TakeDriver(node, device);
    for (std::size_t i = 0; device.service.isEmpty() && i < physical.size(); ++i)
        context.TakeDriver(context.At(physical[i]), device);
    // The floppy driver has a device of its own making, and binds to that alone.
    if (device.service.isEmpty() && ids.contains(QStringLiteral("PNP0700")))
        context.TakeDriver(context.At("/devices/platform/floppy.0"), device);
    bool needsDriver = true;
    TakeClassAndNames(context, ids, device, needsDriver);
    if (const QString own = node.Text("description"); !own.isEmpty() && FindAcpiKind(ids.first()) == nullptr)
        device.name = own;
    TakePowerSupplyNames(node, device);
    for (const std::string& folder : physical)
        TakePowerSupplyNames(context.At(folder), device);

    TakeProblem(context, physical.empty() ? node : context.At(physical.front()), node.Modalias(), needsDriver, device);
    // Interrupt links, motherboard resources and their like read as disabled or failed on healthy machines: nobody sets
    // those bits for what needs no driver.
    if (needsDriver && (status & StatusEnabled) == 0)
        Overrule(device, problem::FirmwareDisabled);
    else if (needsDriver && (status & StatusFunctioning) == 0)
        Overrule(device, problem::Reported);
    TakeStandardSystem(ids, device);
    devices.push_back(std::move(device));
}

std::vector<std::string> ListPnp(const Context& context) { return ListEntries(context, "/bus/pnp/devices"); }

void ReadPnp(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    // The ACPI node stands for both, if it is there.
    if (const std::string firmware = node.Link("firmware_node"); !firmware.empty() && context.Files().Has(firmware))
        return;
    const QStringList ids = PnpIds(node);
    // Old kernels leave out that link for the root complex, partial captures leave out all.
    const bool isNodeAgain = !ids.isEmpty() && !node.Has("firmware_node") &&
                             context.Files().Has("/bus/acpi/devices/" + ids.first().toStdString() + ":00");
    if (ids.isEmpty() || isNodeAgain)
        return;
    Device device;
    device.instancePath = QStringLiteral("ACPI\\") + ids.first() + QLatin1Char('\\') +
                          InstanceSuffix(AcpiLevel, context.Stable(ParentPath(path)),
                                         PathText(CleanAttribute(node.Name().substr(node.Name().rfind(':') + 1))));
    TakeIds(ids, QString(), device);
    context.TakeDriver(node, device);
    bool needsDriver = true;
    TakeClassAndNames(context, ids, device, needsDriver);
    TakeProblem(context, node, node.Modalias(), needsDriver, device);
    TakeStandardSystem(ids, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader AcpiReader() { return {ListAcpi, ReadAcpi}; }
BusReader PnpReader() { return {ListPnp, ReadPnp}; }

} // namespace pnp
