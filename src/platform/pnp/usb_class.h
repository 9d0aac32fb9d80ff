// What USB class codes, interfaces and the kernel objects below them say about a function.
#pragma once

#include "pnp/sysfs.h"

#include <QString>

namespace pnp {

struct UsbFunction {
    quint32 classCode = 0xFF;
    quint32 subclass = 0;
    quint32 protocol = 0;
    quint32 vendor = 0;
    // What the device or the ID files call it; used to tell fingerprint readers.
    QString name;
};

// The setup class of a function by its codes, else by what its driver made below `node`; null if undetermined.
const char16_t* UsbSetupClass(const UsbFunction& function, const Node& node);

// Printers, cameras, smart card and fingerprint readers are driven from user space and show no driver link.
bool UsbDrivenFromUserSpace(const UsbFunction& function);

// A name for a function that nothing names.
QString UsbClassName(const UsbFunction& function);

} // namespace pnp
