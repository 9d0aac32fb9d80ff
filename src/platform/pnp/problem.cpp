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

quint32 WithoutDriver(Context& context, const std::string& modalias) {
    if (!context.From().live || !context.Modules().Available())
        return problem::NoDriver;
    const QByteArrayList modules = context.Modules().Matching(modalias);
    if (modules.isEmpty())
        return problem::NoDriver;
    bool blacklisted = false;
    for (const QByteArray& module : modules) {
        if (context.Files().Has("/module/" + module.toStdString()))
            return problem::CannotStart;
        blacklisted = blacklisted || context.Modules().Blacklisted(module);
    }
    return blacklisted ? problem::DriverBlacklisted : problem::DriverNotLoaded;
}

} // namespace

quint32 ProblemOf(Context& context, const Node& node, const ProblemFacts& facts) {
    if (IsDisabled(node, facts.driver))
        return problem::Disabled;
    if (node.Word("waiting_for_supplier") == "1")
        return problem::WaitingForSupplier;
    if (HasUnassignedRegion(node))
        return problem::NoResources;
    if (node.Word("power/runtime_status") == "error")
        return problem::CannotStart;
    if (!facts.driver.isEmpty() || !facts.needsDriver)
        return problem::None;
    return WithoutDriver(context, facts.modalias);
}

} // namespace pnp
