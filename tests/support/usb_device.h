// The commonest made-up device, as the text of a device tree.
#pragma once

#include <QByteArray>

namespace support {

inline const QByteArray usbDriver = "  driver -> /bus/usb/drivers/usb\n";

// A USB device without functions on a port of its own, listed under its product's name with the IDs
// USB\VID_1234&PID_<product> and, with a `bcdDevice` among `more`, the one of its revision. `more` are further lines of
// the tree; without the driver's the device has none.
inline QByteArray UsbDevice(int port, const QByteArray& product, const QByteArray& name, const QByteArray& maker,
                            const QByteArray& more = usbDriver) {
    return "/devices/pci0000:00/0000:00:14.0/usb1/1-" + QByteArray::number(port) +
           " @ bus/usb\n  idVendor = 1234\n  idProduct = " + product + "\n  bDeviceClass = 09\n  product = " + name +
           "\n  manufacturer = " + maker + "\n" + more;
}

} // namespace support
