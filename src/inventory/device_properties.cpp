#include "inventory/device_properties.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/yield.h"
#include "inventory/registry_routines.h"
#include "values/program_values.h"

#include <memory>

namespace inventory {

namespace {

const QString& EnumRoot() {
    static const QString root = QStringLiteral("SYSTEM\\CurrentControlSet\\Enum\\");
    return root;
}

const QString& ClassRoot() {
    static const QString root = QStringLiteral("SYSTEM\\CurrentControlSet\\Control\\Class\\");
    return root;
}

// The objects of the latest look-up stay until the next replaces them. A look-up holds its own reference: a handler
// that runs in one of its yields may look up something else.
struct LookUps {
    std::shared_ptr<RegistryRoutines> first;
    std::shared_ptr<RegistryRoutines> second;
};

LookUps& Shared() {
    static LookUps lookUps;
    return lookUps;
}

std::shared_ptr<RegistryRoutines> Fresh(std::shared_ptr<RegistryRoutines>& slot, const QString& subkey) {
    slot = std::make_shared<RegistryRoutines>();
    slot->SetKeyRoot(HKEY_LOCAL_MACHINE);
    slot->SetSubkey(subkey);
    return slot;
}

std::shared_ptr<RegistryRoutines> Fresh(const QString& subkey) { return Fresh(Shared().first, subkey); }

QString ReadText(const RegistryRoutines& registry, const QString& name, bool expand = false) {
    QString text = registry.GetRegistryValue(name, QString(), nullptr, expand).toString();
    base::Yield();
    return text;
}

// A resource id is always told as a negative index; what is no number counts as 0.
qint32 ResourceIndex(const QString& text) {
    const qint32 number = base::TextToInt(base::Trim(text)).value_or(0);
    return number > 0 ? -number : number;
}

QString UnknownClass(const QString& classGuid) { return QStringLiteral("Unknown (") + classGuid + QLatin1Char(')'); }

} // namespace

QString GetClassName(const QString& classGuid) {
    if (classGuid.isEmpty())
        return UnknownClass(classGuid);
    const std::shared_ptr<RegistryRoutines> registry = Fresh(ClassRoot() + classGuid);
    QString name = ReadText(*registry, QString());
    if (name.isEmpty())
        name = ReadText(*registry, QStringLiteral("Class"));
    return name.isEmpty() ? UnknownClass(classGuid) : name;
}

QString GetDriverVersion(const QString& deviceId) {
    if (deviceId.isEmpty())
        return {};
    const std::shared_ptr<RegistryRoutines> registry = Fresh(EnumRoot() + deviceId);
    const QString driver = ReadText(*registry, QStringLiteral("Driver"));
    if (driver.isEmpty())
        return QStringLiteral("Unknown");
    const std::shared_ptr<RegistryRoutines> driverKey = Fresh(Shared().second, ClassRoot() + driver);
    const QString version = ReadText(*driverKey, QStringLiteral("DriverVersion"));
    return version.isEmpty() ? QStringLiteral("Unknown") : version;
}

QString GetHardwareIds(const QString& deviceId) {
    if (deviceId.isEmpty())
        return QStringLiteral("Unknown");
    const std::shared_ptr<RegistryRoutines> registry = Fresh(EnumRoot() + deviceId);
    QString ids = ReadText(*registry, QStringLiteral("HardwareID"));
    ids.replace(QChar(u'\0'), QLatin1Char('|'));
    return ids.isEmpty() ? deviceId : ids;
}

QString GetClassIconFile(const QString& classGuid, qint32& iconIndex) {
    if (classGuid.isEmpty())
        return {};
    const std::shared_ptr<RegistryRoutines> registry = Fresh(ClassRoot() + classGuid);
    const QString path = base::CutAtNull(ReadText(*registry, QStringLiteral("IconPath"), true));
    if (!path.isEmpty()) {
        const QStringList parts = base::Split(path, QStringLiteral(","));
        iconIndex = parts.size() > 1 ? ResourceIndex(parts[1]) : 0;
        return parts[0];
    }
    const QString icon = base::CutAtNull(ReadText(*registry, QStringLiteral("Icon")));
    const QString pages = base::CutAtNull(ReadText(*registry, QStringLiteral("EnumPropPages32")));
    iconIndex = ResourceIndex(icon);
    QString file = pages.isEmpty() ? QString() : base::Split(pages, QStringLiteral(",")).first();
    if (file.isEmpty())
        file = QStringLiteral("setupapi.dll");
    return values::Program().SystemFolder + file;
}

} // namespace inventory
