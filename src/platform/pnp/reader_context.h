// What the readers of one tree share: the tree's files, the ID files, what is known of modules and drivers.
#pragma once

#include "pnp/device.h"
#include "pnp/id_files.h"
#include "pnp/module_aliases.h"
#include "pnp/sources.h"
#include "pnp/sysfs.h"

#include <string>
#include <unordered_map>

namespace pnp {

class Context {
  public:
    explicit Context(const Sources& sources);
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    const Sources& From() const { return sources_; }
    const Sysfs& Files() const { return files_; }
    Node At(const std::string& path) const { return {files_, path}; }

    IdFile& PciIds() { return pciIds_; }
    IdFile& UsbIds() { return usbIds_; }
    PnpVendorFile& PnpIds() { return pnpIds_; }
    ModuleAliases& Modules() { return modules_; }

    // Fills in the driver bound to a folder and its version: that of its module, else the kernel's release (told by the
    // running kernel, or by the root hubs of a captured tree). Leaves the device alone without a driver link.
    void TakeDriver(const Node& node, Device& device);

    // StablePath, with buses of a USB controller counted from 0 instead of over the whole machine.
    std::string Stable(const std::string& path);

  private:
    QString KernelRelease();

    Sources sources_;
    Sysfs files_;
    IdFile pciIds_;
    IdFile usbIds_;
    PnpVendorFile pnpIds_;
    ModuleAliases modules_;
    bool releaseKnown_ = false;
    QString release_;
    // Versions of drivers by their folder; "usb#0" for the first bus of a controller, by its folder.
    std::unordered_map<std::string, QString> versions_;
    std::unordered_map<std::string, std::string> usbBuses_;
};

} // namespace pnp
