// Logical processors, from the identity that the kernel announces for all of them and the brand text beside it.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/machine_facts.h"
#include "pnp/problem.h"

#include <QFile>

namespace pnp {

namespace {

struct VendorRow {
    quint32 number;
    const char16_t* id;
    const char16_t* architecture;
    const char16_t* maker;
};

// The kernel's numbers for makers of x86 processors.
constexpr VendorRow Vendors[] = {
    {0, u"GenuineIntel", u"Intel64", u"Intel"},  {2, u"AuthenticAMD", u"AMD64", u"Advanced Micro Devices"},
    {5, u"CentaurHauls", u"VIA64", u"VIA"},      {9, u"HygonGenuine", u"AMD64", u"Hygon"},
    {10, u"__Shanghai__", u"VIA64", u"Zhaoxin"},
};

struct Identity {
    const VendorRow* vendor = nullptr;
    quint32 family = 0;
    quint32 model = 0;
    // Whether the processor knows 64 bits (feature 0x3D).
    bool wide = false;
};

// "cpu:type:x86,ven0000fam0006mod008E:feature:,0000,..."
std::optional<Identity> ReadIdentity(const Context& context) {
    const std::string alias = context.At("/devices/system/cpu").Bytes("modalias", 8192);
    const std::size_t found = alias.find("x86,ven");
    if (found == std::string::npos || alias.size() < found + 25)
        return std::nullopt;
    const std::optional<quint32> vendor = ParseHex(alias.substr(found + 7, 4));
    const std::optional<quint32> family = ParseHex(alias.substr(found + 14, 4));
    const std::optional<quint32> model = ParseHex(alias.substr(found + 21, 4));
    if (!vendor || !family || !model)
        return std::nullopt;
    Identity identity{nullptr, *family, *model, alias.find(",003D,") != std::string::npos};
    for (const VendorRow& row : Vendors) {
        if (row.number == *vendor)
            identity.vendor = &row;
    }
    return identity.vendor == nullptr ? std::nullopt : std::optional(identity);
}

// The first "model name" of the processor file.
QString ReadBrand(const Context& context) {
    QFile file(context.From().processorInfo);
    if (context.From().processorInfo.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line : file.read(8192).split('\n')) {
        if (line.startsWith("model name"))
            return CleanAttribute(line.mid(line.indexOf(':') + 1).toStdString());
    }
    return {};
}

QString BrandText(const Context& context) {
    const Sources& sources = context.From();
    const QString brand = sources.facts != nullptr ? sources.facts->processor : ReadBrand(context);
    if (sources.noted != nullptr)
        sources.noted->processor = brand;
    return brand;
}

std::vector<std::string> ListProcessors(const Context& context) {
    std::vector<std::string> paths;
    if (!context.Files().Has("/devices/system/cpu/modalias"))
        return paths;
    for (const std::string& name : context.Files().List("/devices/system/cpu")) {
        if (IsNumbered(name, "cpu"))
            paths.push_back("/devices/system/cpu/" + name);
    }
    return paths;
}

void ReadProcessor(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    const QString number = QString::number(ParseDecimal(node.Name().substr(3)).value_or(0));
    const std::optional<Identity> identity = ReadIdentity(context);
    const QString brand = BrandText(context);
    Device device;
    device.classGuid = QString::fromUtf16(class_guid::Processor);
    device.name = brand.isEmpty() ? QStringLiteral("Processor") : brand;
    if (identity) {
        const QString architecture =
            QString::fromUtf16(identity->vendor->id) + QStringLiteral("_-_") +
            (identity->wide ? QString::fromUtf16(identity->vendor->architecture) : QStringLiteral("x86"));
        const QString family = architecture + QStringLiteral("_Family_") + QString::number(identity->family);
        const QString model = family + QStringLiteral("_Model_") + QString::number(identity->model);
        for (const QString& id : {model, family, architecture}) {
            device.hardwareIds.append(QStringLiteral("ACPI\\") + id);
            device.hardwareIds.append(QLatin1Char('*') + id);
        }
        device.manufacturer = QString::fromUtf16(identity->vendor->maker);
        device.instancePath = QStringLiteral("ACPI\\") + model;
        if (!brand.isEmpty())
            device.instancePath += QStringLiteral("_-_") + PathText(brand);
        device.instancePath += QStringLiteral("\\_") + number;
    } else {
        device.instancePath = QStringLiteral("ACPI\\ACPI0007\\") + number;
    }
    context.TakeDriver(node, device);
    TakeProblem(context, node, {}, false, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader ProcessorReader() { return {ListProcessors, ReadProcessor}; }

} // namespace pnp
