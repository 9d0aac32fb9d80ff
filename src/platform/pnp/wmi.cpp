#include "pnp/wmi.h"

#include "pnp/device.h"
#include "pnp/device_tree.h"

namespace pnp {

namespace {

bool Same(const QString& a, const char16_t* b) { return a.compare(QStringView(b), Qt::CaseInsensitive) == 0; }

QVariant TextOrNull(const QString& text) {
    return text.isEmpty() ? QVariant(QMetaType(QMetaType::QString)) : QVariant(text);
}

} // namespace

WmiObject::WmiObject(const Device& device)
    : deviceId_(device.instancePath), name_(device.name), manufacturer_(device.manufacturer),
      classGuid_(device.classGuid), errorCode_(device.problemCode) {}

QVariant WmiObject::Property(const QString& name) const {
    if (Same(name, u"DeviceID"))
        return TextOrNull(deviceId_);
    if (Same(name, u"Name"))
        return TextOrNull(name_);
    if (Same(name, u"Manufacturer"))
        return TextOrNull(manufacturer_);
    if (Same(name, u"ClassGuid"))
        return TextOrNull(classGuid_);
    if (Same(name, u"ConfigManagerErrorCode"))
        return QVariant(errorCode_);
    return {};
}

WmiObjectSet::WmiObjectSet(std::shared_ptr<DeviceTree> tree, bool workingOnly)
    : tree_(std::move(tree)), workingOnly_(workingOnly) {}

std::optional<WmiObject> WmiObjectSet::Next() {
    while (tree_ != nullptr) {
        const Device* device = tree_->At(index_);
        if (device == nullptr)
            break;
        ++index_;
        if (!workingOnly_ || device->problemCode == 0)
            return WmiObject(*device);
    }
    tree_.reset();
    return std::nullopt;
}

std::optional<WmiObjectSet> WmiServices::ExecQuery(const QString& query, const QString& language, int flags) const {
    if (!Same(language, u"WQL") || flags != ForwardOnly)
        return std::nullopt;
    const QString text = query.simplified();
    if (Same(text, u"SELECT * FROM Win32_PnPEntity"))
        return WmiObjectSet(tree_, false);
    if (Same(text, u"SELECT * FROM Win32_PnPEntity WHERE ConfigManagerErrorCode = 0"))
        return WmiObjectSet(tree_, true);
    return std::nullopt;
}

std::optional<WmiServices> GetObject(const QString& moniker) {
    if (!Same(moniker, u"winmgmts:\\\\.\\root\\CIMV2"))
        return std::nullopt;
    return WmiServices(BindTree());
}

} // namespace pnp
