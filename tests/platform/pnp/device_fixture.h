// A made-up sysfs tree in a temporary folder, written from a short text, and made the process' device root. The
// system's own root comes back when the fixture goes.
//
//   /devices/pci0000:00/0000:00:1f.2 @ bus/pci     a device folder, and a link to it in /bus/pci/devices
//   /devices/virtual/net/lo @ class/net            the same in /class/net
//     vendor = 0x8086                              an attribute, with a line end behind it
//     driver -> /bus/pci/drivers/ahci              a relative link; its target need not be there
//     edid : 00 FF "text"*9 ~"etxt" @128           an attribute of bytes: in hexadecimal, as text, nine times, as text
//                                                  whose pairs of characters are exchanged, NULs up to a size
#pragma once

#include "pnp/device.h"
#include "pnp/sources.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <vector>

class DeviceFixture {
  public:
    explicit DeviceFixture(const QByteArray& text = {});
    ~DeviceFixture();
    DeviceFixture(const DeviceFixture&) = delete;
    DeviceFixture& operator=(const DeviceFixture&) = delete;

    void Add(const QByteArray& text);
    // Bytes as they are, without a line end. The folder is made.
    void Write(const QString& path, const QByteArray& bytes);
    void Link(const QString& path, const QString& target);
    void Remove(const QString& path);
    QString Root() const { return folder_.filePath(QStringLiteral("sys")); }
    // A folder beside the tree, for ID files and the like.
    QString Beside(const QString& name) const { return folder_.filePath(name); }

    // A new snapshot, read to its end.
    std::vector<pnp::Device> Devices() const;
    // The only device whose instance path begins so; fails the test and gives an empty one if there is not just one.
    pnp::Device Only(const QString& start) const;

  private:
    QTemporaryDir folder_;
    pnp::Sources before_;
};

// The bytes of such a line.
QByteArray FixtureBytes(const QString& text);
// The IDs with " | " between them.
QString Joined(const QStringList& ids);

// For readable failures.
inline std::string Plain(const QString& text) { return text.toStdString(); }
