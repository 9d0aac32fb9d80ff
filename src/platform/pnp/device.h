// One device as Plug and Play knows it. The same record serves the inventory objects and the registry keys.
#pragma once

#include <QString>
#include <QStringList>

namespace pnp {

struct Device {
    // Bus, device and instance, parted by backslashes; unique within a tree, without regard to case.
    QString instancePath;
    // The path to take when another device claims the same instance path; empty for none.
    QString alternativePath;
    // Empty where nothing is known.
    QString name;
    QString manufacturer;
    // Upper case; empty for a device that is in no class.
    QString classGuid;
    quint32 problemCode = 0;
    // From most to least specific; only IDs that name a product, and the few generic ones of disks and HID.
    QStringList hardwareIds;
    // The bound driver's name, empty without one, and its version.
    QString service;
    QString driverVersion;
    // With the codes 10, 31 and 32: the module that fits, "-" written as "_".
    QString fittingModule;
    // Where it stands, by the kernel's names: "pci" and "0000:00:1f.2", "usb" and "1-2.3:1.0". No serial number is in
    // it. The records of a folder that stands for several devices share one place, unless the reader gives an address.
    QString bus;
    QString address;
    // Class-relative key of the driver, such as {guid}\0001; given by the tree to devices with a driver and a class.
    QString driverKey;
};

} // namespace pnp
