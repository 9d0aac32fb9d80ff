// What a PCI class code or a virtio type says about a function: setup class, whether it works without a driver, and
// whether it belongs to the standard equipment of a board.
#pragma once

#include <QString>

namespace pnp {

// The setup class of a 24-bit class code (class, subclass, interface); null for an undetermined function.
const char16_t* PciSetupClass(quint32 classCode);
// The setup class of a virtio device type (1 network, 2 block, ...); null for an unknown type.
const char16_t* VirtioSetupClass(quint32 type);
// Bridges, memory and system controllers work without a driver. Other system devices do so if their vendor makes the
// board's chipset.
bool PciNeedsDriver(quint32 classCode, quint32 vendor);
// Bridges, timers, interrupt controllers and the like.
bool IsStandardSystemFunction(quint32 classCode, quint32 vendor);
// A name for a function that the ID files do not know ("Ethernet Controller").
QString PciClassName(quint32 classCode);

inline const QString& StandardSystemDevices() {
    static const QString text = QStringLiteral("(Standard system devices)");
    return text;
}

} // namespace pnp
