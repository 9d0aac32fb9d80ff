// A snapshot of the machine's devices. Binding lists the buses; a device's attributes are read when it comes up, so a
// snapshot costs next to nothing until it is walked. The current snapshot is what the inventory and the registry show;
// a new bind replaces it for both, while whoever still walks an older one keeps that one alive.
#pragma once

#include "pnp/device.h"

#include <QDateTime>
#include <QHash>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace pnp {

class Context;
struct Sources;

class DeviceTree {
  public:
    // Lists the buses below the sources' root. An unreadable root has no devices.
    explicit DeviceTree(const Sources& sources);
    ~DeviceTree();
    DeviceTree(const DeviceTree&) = delete;
    DeviceTree& operator=(const DeviceTree&) = delete;

    // The device of that number, read now if it was not before; null behind the last. Stays valid as long as the tree.
    const Device* At(std::size_t index);
    // The device of an instance path, in any case; reads devices on until it turns up. Null if there is none.
    const Device* Find(const QString& instancePath);
    // When the snapshot was taken, in UTC.
    const QDateTime& Taken() const { return taken_; }

  private:
    struct Entry {
        int reader;
        std::string path;
    };

    // Reads the next folder; false behind the last.
    bool ReadNext();
    void Add(Device device);

    std::unique_ptr<Context> context_;
    QDateTime taken_;
    std::vector<Entry> entries_;
    std::size_t next_ = 0;
    std::deque<Device> devices_;
    QHash<QString, std::size_t> byPath_;
    QHash<QString, int> driverKeys_;
};

// The current snapshot; taken at the first question.
std::shared_ptr<DeviceTree> CurrentTree();
// Takes a new snapshot from the current sources and makes it the current one.
std::shared_ptr<DeviceTree> BindTree();

} // namespace pnp
