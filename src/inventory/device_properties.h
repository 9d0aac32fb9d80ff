// What the registry tells of a device and its class. Each look-up has its own fallback and never fails; each yields
// between its reads.
#pragma once

#include <QString>

namespace inventory {

// The class's friendly name, else its short name, else "Unknown (" + GUID + ")".
QString GetClassName(const QString& classGuid);

// The version of the device's driver; "Unknown" where there is none, empty for an empty instance path.
QString GetDriverVersion(const QString& deviceId);

// The hardware IDs, each with "|" behind it; the instance path where there are none, "Unknown" for an empty one.
QString GetHardwareIds(const QString& deviceId);

// The file that holds the class's icon, and in `iconIndex` its resource id as a negative number (0 where the registry
// names none). Empty, with `iconIndex` untouched, for an empty GUID.
QString GetClassIconFile(const QString& classGuid, qint32& iconIndex);

} // namespace inventory
