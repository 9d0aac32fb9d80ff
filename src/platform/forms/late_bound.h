// Properties by name at run time, as a skin or a layout sets them: a name that an object lacks is passed over, and
// nothing is ever created. A dotted name walks through sub-objects.
#pragma once

#include <QByteArrayView>
#include <QObject>
#include <QVariant>

namespace forms {

enum class PropertyResult { Set, Absent, Refused };

PropertyResult SetProperty(QObject* object, QByteArrayView path, const QVariant& value);

// The value, or an invalid one if the object lacks the property.
QVariant GetProperty(const QObject* object, QByteArrayView path);

// Calls a slot or invokable without arguments, such as "ApplyBackGroundColor"; false if there is none.
bool CallByName(QObject* object, const char* name);

} // namespace forms
