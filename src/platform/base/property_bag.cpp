#include "base/property_bag.h"

namespace base {

QVariant PropertyBag::ReadProperty(const QString& key, const QVariant& fallback) const {
    const auto found = values_.constFind(key.toLower());
    if (found == values_.constEnd())
        return fallback;
    QVariant value = *found;
    if (fallback.isValid() && !value.convert(fallback.metaType()))
        return fallback;
    return value;
}

void PropertyBag::WriteProperty(const QString& key, const QVariant& value, const QVariant& fallback) {
    if (value == fallback)
        values_.remove(key.toLower());
    else
        values_.insert(key.toLower(), value);
}

bool PropertyBag::Contains(const QString& key) const { return values_.contains(key.toLower()); }

} // namespace base
