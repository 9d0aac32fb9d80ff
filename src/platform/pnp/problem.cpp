#include "pnp/problem.h"

#include <sstream>

namespace pnp {

namespace {

constexpr quint64 MemoryRegion = 0x200;
constexpr quint64 UnsetRegion = 0x20000000;
// The lines of "resource" that are the function's own regions; ROM and bridge windows follow.
constexpr int OwnRegions = 6;

bool IsStub(const QString& driver) {
    return driver == QStringLiteral("vfio-pci") || driver == QStringLiteral("pci-stub");
}

bool IsDisabled(const Node& node, const QString& driver) {
    if (IsStub(driver) || node.Word("authorized") == "0")
        return true;
    const std::string override = node.Word("driver_override");
    // An override that its driver has taken up is no fault, unless that driver is a stub.
    return !override.empty() && override != "(null)" && QString::fromStdString(override) != driver;
}

bool HasUnassignedRegion(const Node& node) {
    std::istringstream lines(node.Bytes("resource", 4096));
    std::string start;
    std::string end;
    std::string flags;
    for (int i = 0; i < OwnRegions && lines >> start >> end >> flags; ++i) {
        bool ok[3] = {};
        const quint64 first = QString::fromStdString(start).toULongLong(&ok[0], 16);
        const quint64 last = QString::fromStdString(end).toULongLong(&ok[1], 16);
        const quint64 kind = QString::fromStdString(flags).toULongLong(&ok[2], 16);
        if (!ok[0] || !ok[1] || !ok[2] || (kind & MemoryRegion) == 0)
            continue;
        if ((kind & UnsetRegion) != 0 || (first == 0 && last != 0))
            return true;
    }
    return false;
}

void TakeMissingDriver(Context& context, const std::string& modalias, Device& device) {
    device.problemCode = problem::NoDriver;
    if (!context.From().live || !context.Modules().Available())
        return;
    for (const QByteArray& module : context.Modules().Matching(modalias)) {
        const bool loaded = context.Files().Has("/module/" + module.toStdString());
        const bool blacklisted = context.Modules().Blacklisted(module);
        // The first module speaks for the device, unless a later one is loaded or kept out on purpose.
        if (device.problemCode == problem::NoDriver || loaded || blacklisted) {
            device.problemCode = loaded        ? problem::CannotStart
                                 : blacklisted ? problem::DriverBlacklisted
                                               : problem::DriverNotLoaded;
            device.fittingModule = QString::fromUtf8(module);
        }
        if (loaded)
            return;
    }
}

} // namespace

void TakeProblem(Context& context, const Node& node, const std::string& modalias, bool needsDriver, Device& device) {
    device.fittingModule.clear();
    device.problemCode = problem::None;
    if (IsDisabled(node, device.service))
        device.problemCode = problem::Disabled;
    else if (node.Word("waiting_for_supplier") == "1")
        device.problemCode = problem::WaitingForSupplier;
    else if (HasUnassignedRegion(node))
        device.problemCode = problem::NoResources;
    else if (node.Word("power/runtime_status") == "error")
        device.problemCode = problem::CannotStart;
    else if (device.service.isEmpty() && needsDriver)
        TakeMissingDriver(context, modalias, device);
}

} // namespace pnp
