// The keys behind the registry calls: a tree in memory. Class keys are there from the start; a device's Enum key and
// its driver's key come from the current snapshot of the devices when somebody asks for them, and go with that
// snapshot.
#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <memory>

namespace pnp {

class DeviceTree;
struct Device;

// Names differ without regard to case.
struct NameLess {
    using is_transparent = void;
    bool operator()(QStringView a, QStringView b) const { return a.compare(b, Qt::CaseInsensitive) < 0; }
};

struct RegistryValue {
    QString name;
    quint32 type = 0;
    QByteArray data;
};

struct RegistryKey {
    // As it was first written.
    QString name;
    std::map<QString, std::shared_ptr<RegistryKey>, NameLess> children;
    std::map<QString, RegistryValue, NameLess> values;
    // 100 nanoseconds since 1601, UTC.
    quint64 lastWrite = 0;
    // Counts what was added and removed, so that an enumeration knows when its place is stale.
    quint64 version = 0;
    // Made from a snapshot, gone with the next.
    bool fromDevices = false;
};

class RegistryHive {
  public:
    RegistryHive();

    // The root of HKEY_CLASSES_ROOT to HKEY_CURRENT_CONFIG (0x80000000 to 0x80000005); null for other numbers.
    std::shared_ptr<RegistryKey> Root(quint32 root) const;
    // The key of a path below a root; null if there is none.
    std::shared_ptr<RegistryKey> Open(quint32 root, const QString& path);
    // The same, made with all that is missing on the way; null for a root that there is not.
    std::shared_ptr<RegistryKey> Create(quint32 root, const QString& path, bool& existed);
    // A key with children stays: false. False, too, for one that is not there (`found` tells).
    bool Delete(quint32 root, const QString& path, bool& found);
    // Makes every device's keys, for whoever enumerates them.
    void ReadAllDevices(quint32 root, const QString& path);

  private:
    void FollowSnapshot();
    void AddClasses();
    void AddDevice(const Device& device);
    // Below HKEY_LOCAL_MACHINE.
    std::shared_ptr<RegistryKey> Ensure(const QString& path);

    std::map<quint32, std::shared_ptr<RegistryKey>> roots_;
    std::shared_ptr<DeviceTree> snapshot_;
    std::size_t devicesAdded_ = 0;
};

// The one of the process.
RegistryHive& Hive();

// 100 nanoseconds since 1601, UTC, by the program's clock.
quint64 FileTimeNow();

} // namespace pnp
