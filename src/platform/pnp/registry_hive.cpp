#include "pnp/registry_hive.h"

#include "base/clock.h"
#include "pnp/class_table.h"
#include "pnp/device_tree.h"
#include "pnp/registry_calls.h"

#include <QDateTime>

namespace pnp {

namespace {

constexpr quint32 FirstRoot = 0x80000000;
constexpr quint32 LocalMachine = 0x80000002;
constexpr quint32 LastRoot = 0x80000005;

constexpr quint32 TypeText = 1;
constexpr quint32 TypeWord = 4;
constexpr quint32 TypeMultiText = 7;

const QString EnumPath = QStringLiteral("SYSTEM\\CurrentControlSet\\Enum");
const QString ClassPath = QStringLiteral("SYSTEM\\CurrentControlSet\\Control\\Class");

// The bytes of a text with its terminator, as values of text types hold it.
QByteArray WideBytes(const QString& text) {
    return {reinterpret_cast<const char*>(text.utf16()), (text.size() + 1) * qsizetype(sizeof(char16_t))};
}

quint64 FileTimeOf(const QDateTime& time) { return quint64(FileTimeBefore1970 + time.toMSecsSinceEpoch()) * 10000; }

// What follows `folder` and a backslash in `path`; null where the path does not begin so.
QString Below(const QString& folder, const QString& path) {
    return path.size() > folder.size() && path[folder.size()] == QLatin1Char('\\') &&
                   path.startsWith(folder, Qt::CaseInsensitive)
               ? path.mid(folder.size() + 1)
               : QString();
}

void SetValue(RegistryKey& key, const QString& name, quint32 type, const QByteArray& data) {
    key.values[name] = {name, type, data};
}

void SetText(RegistryKey& key, const QString& name, const QString& text) {
    if (!text.isEmpty())
        SetValue(key, name, TypeText, WideBytes(text));
}

void SetTexts(RegistryKey& key, const QString& name, const QStringList& texts) {
    if (texts.isEmpty())
        return;
    QByteArray data;
    for (const QString& text : texts)
        data += WideBytes(text);
    SetValue(key, name, TypeMultiText, data + WideBytes(QString()));
}

std::shared_ptr<RegistryKey> Child(RegistryKey& parent, QStringView name) {
    const auto found = parent.children.find(name);
    return found == parent.children.end() ? nullptr : found->second;
}

std::shared_ptr<RegistryKey> MakeChild(RegistryKey& parent, const QString& name, quint64 time) {
    auto child = std::make_shared<RegistryKey>();
    child->name = name;
    child->lastWrite = time;
    parent.children.emplace(name, child);
    ++parent.version;
    return child;
}

// The key below `key`, made with all that is missing on the way.
std::shared_ptr<RegistryKey> MakePath(std::shared_ptr<RegistryKey> key, const QString& path) {
    for (const QString& part : path.split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
        std::shared_ptr<RegistryKey> child = Child(*key, part);
        if (child == nullptr) {
            child = MakeChild(*key, part, FileTimeNow());
            key->lastWrite = child->lastWrite;
        }
        key = std::move(child);
    }
    return key;
}

void RemoveDeviceKeys(RegistryKey& key) {
    for (auto child = key.children.begin(); child != key.children.end();) {
        if (child->second->fromDevices) {
            child = key.children.erase(child);
            ++key.version;
        } else {
            RemoveDeviceKeys(*child->second);
            ++child;
        }
    }
}

QString IconLocation(const SetupClass& entry) {
    return QStringLiteral("%SystemRoot%\\System32\\") + QString::fromUtf16(entry.iconModule) + QStringLiteral(",-") +
           QString::number(entry.iconResource);
}

} // namespace

quint64 FileTimeNow() { return FileTimeOf(base::Now().toUTC()); }

RegistryHive::RegistryHive() {
    for (quint32 root = FirstRoot; root <= LastRoot; ++root)
        roots_[root] = std::make_shared<RegistryKey>();
    AddClasses();
}

std::shared_ptr<RegistryKey> RegistryHive::Root(quint32 root) const {
    const auto found = roots_.find(root);
    return found == roots_.end() ? nullptr : found->second;
}

void RegistryHive::AddClasses() {
    Ensure(EnumPath);
    for (const SetupClass& entry : SetupClasses()) {
        RegistryKey& key = *Ensure(ClassPath + QLatin1Char('\\') + QString::fromUtf16(entry.guid));
        SetText(key, QString(), QString::fromUtf16(entry.friendlyName));
        SetText(key, QStringLiteral("Class"), QString::fromUtf16(entry.name));
        const QString id = QLatin1Char('-') + QString::number(entry.iconResource);
        switch (entry.iconWay) {
        case IconWay::Path:
            SetTexts(key, QStringLiteral("IconPath"), {IconLocation(entry)});
            break;
        case IconWay::PropertyPages:
            SetText(key, QStringLiteral("EnumPropPages32"),
                    QString::fromUtf16(entry.iconModule) + QStringLiteral(",") + QString::fromUtf16(entry.name) +
                        QStringLiteral("PropPageProvider"));
            SetText(key, QStringLiteral("Icon"), id);
            break;
        case IconWay::IdOnly:
            SetText(key, QStringLiteral("Icon"), id);
            break;
        }
    }
}

std::shared_ptr<RegistryKey> RegistryHive::Ensure(const QString& path) { return MakePath(roots_[LocalMachine], path); }

// Keys of an older snapshot go; handles that are still open keep theirs.
void RegistryHive::FollowSnapshot() {
    std::shared_ptr<DeviceTree> current = CurrentTree();
    if (current == snapshot_)
        return;
    if (snapshot_ != nullptr)
        RemoveDeviceKeys(*roots_[LocalMachine]);
    snapshot_ = std::move(current);
    devicesAdded_ = 0;
}

void RegistryHive::AddDevice(const Device& device) {
    const quint64 time = FileTimeOf(snapshot_->Taken());
    std::shared_ptr<RegistryKey> key = Ensure(EnumPath);
    bool added = false;
    for (const QString& part : device.instancePath.split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
        std::shared_ptr<RegistryKey> child = Child(*key, part);
        added = child == nullptr;
        if (added) {
            child = MakeChild(*key, part, time);
            child->fromDevices = true;
        }
        key = child;
    }
    if (!added)
        return;
    SetTexts(*key, QStringLiteral("HardwareID"), device.hardwareIds);
    SetText(*key, QStringLiteral("DeviceDesc"), device.name);
    SetText(*key, QStringLiteral("Mfg"), device.manufacturer);
    SetText(*key, QStringLiteral("ClassGUID"), device.classGuid);
    SetText(*key, QStringLiteral("Service"), device.service);
    SetText(*key, QStringLiteral("Driver"), device.driverKey);
    const quint32 problem = device.problemCode;
    SetValue(*key, QStringLiteral("Problem"), TypeWord,
             QByteArray(reinterpret_cast<const char*>(&problem), sizeof problem));
    if (device.driverKey.isEmpty())
        return;
    const std::shared_ptr<RegistryKey> driver = Ensure(ClassPath + QLatin1Char('\\') + device.driverKey);
    driver->fromDevices = true;
    driver->lastWrite = time;
    SetText(*driver, QStringLiteral("DriverDesc"), device.name);
    SetText(*driver, QStringLiteral("DriverVersion"), device.driverVersion);
    SetText(*driver, QStringLiteral("ProviderName"), device.service);
}

void RegistryHive::ReadAllDevices(quint32 root, const QString& path) {
    const bool concerned = path.compare(EnumPath, Qt::CaseInsensitive) == 0 || !Below(EnumPath, path).isNull() ||
                           !Below(ClassPath, path).isNull();
    if (root != LocalMachine || !concerned)
        return;
    FollowSnapshot();
    while (const Device* device = snapshot_->At(devicesAdded_)) {
        AddDevice(*device);
        ++devicesAdded_;
    }
}

std::shared_ptr<RegistryKey> RegistryHive::Open(quint32 root, const QString& path) {
    std::shared_ptr<RegistryKey> start = Root(root);
    if (start == nullptr)
        return nullptr;
    const QString instance = root == LocalMachine ? Below(EnumPath, path) : QString();
    const QString classKey = root == LocalMachine ? Below(ClassPath, path) : QString();
    const bool ofDevice = !instance.isNull() || classKey.contains(QLatin1Char('\\'));
    if (ofDevice)
        FollowSnapshot();
    const auto walk = [&]() -> std::shared_ptr<RegistryKey> {
        std::shared_ptr<RegistryKey> key = start;
        for (const QStringView part : QStringView(path).split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
            key = Child(*key, part);
            if (key == nullptr)
                return nullptr;
        }
        return key;
    };
    std::shared_ptr<RegistryKey> found = walk();
    if (found != nullptr || !ofDevice)
        return found;
    if (instance.count(QLatin1Char('\\')) == 2) {
        const Device* device = snapshot_->Find(instance);
        if (device == nullptr)
            return nullptr;
        AddDevice(*device);
    } else {
        ReadAllDevices(root, path);
    }
    return walk();
}

std::shared_ptr<RegistryKey> RegistryHive::Create(quint32 root, const QString& path, bool& existed) {
    std::shared_ptr<RegistryKey> key = Open(root, path);
    existed = key != nullptr;
    if (existed)
        return key;
    key = Root(root);
    return key == nullptr ? nullptr : MakePath(std::move(key), path);
}

bool RegistryHive::Delete(quint32 root, const QString& path, bool& found) {
    const std::shared_ptr<RegistryKey> key = Open(root, path);
    const qsizetype slash = path.lastIndexOf(QLatin1Char('\\'));
    const std::shared_ptr<RegistryKey> parent = Open(root, slash < 0 ? QString() : path.left(slash));
    found = key != nullptr && parent != nullptr && key != parent;
    if (!found || !key->children.empty())
        return false;
    parent->children.erase(parent->children.find(QStringView(key->name)));
    ++parent->version;
    parent->lastWrite = FileTimeNow();
    return true;
}

RegistryHive& Hive() {
    static RegistryHive hive;
    return hive;
}

} // namespace pnp
