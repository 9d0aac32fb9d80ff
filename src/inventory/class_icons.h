// The icons of setup classes, brought from their modules into the icon store that all lists share.
#pragma once

#include <QString>

namespace inventory {

// Stores the icon of a file under `iconKey`. A name that ends in "dll" is loaded as a module and asked for the resource
// id Abs(`iconIndex`), without a fallback; from any other file the icon is extracted, else the one of the same index in
// setupapi.dll. Leaves the store alone where there is no icon. Both numbers come by reference, as the operation has it,
// and stay as they are.
void AddClassIcon(qint32& iconKey, const QString& iconFile, qint32& iconIndex);

} // namespace inventory
