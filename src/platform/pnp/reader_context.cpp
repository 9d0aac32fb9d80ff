#include "pnp/reader_context.h"

#include "pnp/identity.h"

#include <algorithm>

namespace pnp {

Context::Context(const Sources& sources)
    : sources_(sources), files_(sources), pciIds_(sources.idFolder + QStringLiteral("/pci.ids")),
      usbIds_(sources.idFolder + QStringLiteral("/usb.ids")), pnpIds_(sources.idFolder + QStringLiteral("/pnp.ids")),
      modules_(sources) {}

// Root hubs name their maker as "Linux 6.1.0-13-amd64 xhci-hcd", which is all that a captured tree tells of its kernel.
QString Context::KernelRelease() {
    if (releaseKnown_)
        return release_;
    releaseKnown_ = true;
    if (sources_.live) {
        release_ = sources_.kernelRelease;
        return release_;
    }
    for (const std::string& name : files_.List("/bus/usb/devices")) {
        if (!IsNumbered(name, "usb"))
            continue;
        const QStringList words = At("/bus/usb/devices/" + name).Text("manufacturer").split(QLatin1Char(' '));
        if (words.size() >= 2 && words[0] == QStringLiteral("Linux")) {
            release_ = words[1];
            break;
        }
    }
    return release_;
}

void Context::TakeDriver(const Node& node, Device& device) {
    const std::string link = node.Link("driver");
    std::string name = link.empty() ? node.LinkName("driver") : LastComponent(link);
    // Where a capture lacks the links.
    if (name.empty())
        name = node.Uevent("DRIVER");
    if (name.empty())
        return;
    device.service = CleanAttribute(name);
    const auto [known, isNew] = versions_.try_emplace(link.empty() ? name : link);
    QString& version = known->second;
    if (isNew && !link.empty())
        version = At(link).Text("module/version");
    if (isNew && version.isEmpty())
        version = KernelRelease();
    device.driverVersion = version;
}

std::string Context::Stable(const std::string& path) {
    const std::size_t begin = path.find("/usb");
    std::string stable = StablePath(path);
    if (begin == std::string::npos)
        return stable;
    const std::size_t end = std::min(path.find('/', begin + 1), path.size());
    const std::string bus = path.substr(begin + 1, end - begin - 1);
    if (!IsNumbered(bus, "usb"))
        return stable;
    // The buses of one controller keep their order, whatever other controllers are counted before them.
    const std::string controller = path.substr(0, begin);
    const auto [known, isNew] = usbBuses_.try_emplace(path.substr(0, end));
    if (isNew) {
        int rank = 0;
        for (const std::string& name : files_.List(controller)) {
            if (name == bus)
                break;
            rank += IsNumbered(name, "usb") ? 1 : 0;
        }
        known->second = "usb#" + std::to_string(rank);
    }
    std::string result = StablePath(controller) + "/" + known->second;
    for (const std::string& part : Components(path.substr(end))) {
        // "1-2.3:1.0" without the number of the bus.
        const std::size_t dash = part.find('-');
        const bool numbered = dash != std::string::npos && AllDigits(part.substr(0, dash));
        result += '/';
        result += numbered ? part.substr(dash) : LastComponent(StablePath("/" + part));
    }
    return result;
}

} // namespace pnp
