// Building blocks of instance paths and hardware IDs.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace pnp {

// A number in upper-case hexadecimal with at least `digits` digits.
QString Hex(quint32 value, int digits);

// A stable 32-bit hash (FNV-1a), the same on each machine and at each start.
quint32 StableHash(const std::string& text);

// "level&hash&0&location", the instance of a device that has no unique number of its own.
QString InstanceSuffix(int level, const std::string& parent, const QString& location);

// The tree level of a device folder: 3 for a PCI function on the root bus, one more for each bridge, root hub and hub
// port on the way.
int TreeLevel(const std::string& path);

// The path without the numbers that the kernel counts up as devices come: HID instances, I2C adapters, SCSI hosts.
std::string StablePath(const std::string& path);

// Whether a path component is the prefix with a number behind it, as "host7" is for "host".
bool IsNumbered(std::string_view component, std::string_view prefix);
// Whether a path component is the address of a PCI function ("0000:00:1f.2").
bool IsPciAddress(const std::string& component);
// Whether a path component is a hub port ("1-2.3") or an interface on it ("1-2.3:1.0").
bool IsUsbPlace(const std::string& component);
// The folder of the innermost PCI function on the path; empty if there is none.
std::string PciFolder(const std::string& path);

// A device's own text as a part of an ID, cut and filled up with "_" to `width` characters. Blanks, commas and what is
// not printable become "_", all other punctuation stays.
QString IdField(const QString& text, int width);
// The same for an instance path: blanks in front count, those behind do not, and nothing is filled up.
QString PathField(const QString& text, int width);
// A device's own text as a part of an instance path: what may not stand there becomes "_", ends are trimmed.
QString PathText(const QString& text);
// A serial number fit for an instance path; empty where it holds anything but printable ASCII, or more than 120
// characters, or nothing that tells devices apart.
QString SerialText(const QString& text);

} // namespace pnp
