// The device inventory as the platform's scripting interface shows it: bind, query, walk forward, ask properties by
// name.
#pragma once

#include <QString>
#include <QVariant>
#include <memory>
#include <optional>

namespace pnp {

class DeviceTree;
struct Device;

// One device. A copy of its values: it outlives the walk and later snapshots.
class WmiObject {
  public:
    WmiObject() = default;
    explicit WmiObject(const Device& device);

    // DeviceID, Name, Manufacturer, ClassGuid (texts) and ConfigManagerErrorCode (a 32-bit number), in any case; null
    // where the device has no such value, invalid for a name that is no property.
    QVariant Property(const QString& name) const;

  private:
    QString deviceId_;
    QString name_;
    QString manufacturer_;
    QString classGuid_;
    quint32 errorCode_ = 0;
};

// A result that can be walked once, from the first device to the last, whose number nobody knows before.
class WmiObjectSet {
  public:
    WmiObjectSet() = default;
    WmiObjectSet(std::shared_ptr<DeviceTree> tree, bool workingOnly);

    // Null behind the last device. Reads the device's attributes now.
    std::optional<WmiObject> Next();

  private:
    std::shared_ptr<DeviceTree> tree_;
    bool workingOnly_ = false;
    std::size_t index_ = 0;
};

class WmiServices {
  public:
    // Return immediately, walk forward only.
    static constexpr int ForwardOnly = 48;

    // Serves "SELECT * FROM Win32_PnPEntity", with or without "WHERE ConfigManagerErrorCode = 0", in the language "WQL"
    // and with the flags above. Any other question has no answer.
    std::optional<WmiObjectSet> ExecQuery(const QString& query, const QString& language, int flags) const;

  private:
    friend std::optional<WmiServices> GetObject(const QString& moniker);
    explicit WmiServices(std::shared_ptr<DeviceTree> tree) : tree_(std::move(tree)) {}

    std::shared_ptr<DeviceTree> tree_;
};

// Binds to "winmgmts:\\.\root\CIMV2" and takes a new snapshot of the devices; nothing for any other name.
std::optional<WmiServices> GetObject(const QString& moniker);

} // namespace pnp
