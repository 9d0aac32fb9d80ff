// Additions to the device database: whether a contributed device is fully known, and writing one that is not. Both take
// a contribution line, run on the user-interface thread, yield between their steps and report no failure: a step that
// fails is skipped. They walk recordsets of their own, so a search in another window disturbs neither.
#pragma once

#include <QString>

namespace database {

// Whether the database holds the name, the manufacturer, the ID and, under the ID, exactly this pair of them. Reads
// only. Texts compare in lower case. False as well where the database cannot be read.
bool IsDeviceInDatabase(const QString& line);

// Writes what of it is missing; each row is durable before the next step. A value that is longer than its column takes
// is not written, and the number used in its place is the connection's last one.
void AddDeviceToDatabase(const QString& line);

} // namespace database
