// Reader of whole ID files (pci.ids, usb.ids) for building a database: every vendor, device and, of PCI, subsystem.
// A line that cannot be used costs that line alone and is counted.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <functional>

namespace tool {

// Lines that were passed over, by reason.
struct SkippedLines {
    int Duplicate = 0;
    int OverLong = 0;
    int BadlyEncoded = 0;
    int Broken = 0;
    int Total() const { return Duplicate + OverLong + BadlyEncoded + Broken; }
};

// One usable line below a vendor. IDs are four hexadecimal digits in upper case; names may be empty.
struct IdLine {
    QString Vendor;
    QString VendorName;
    QString Device;
    QString DeviceName;
    // Of a subsystem; empty for a device's own line.
    QString SubVendor;
    QString SubDevice;
    QString SubsystemName;
};

class IdFile {
  public:
    // Keeps no copy of the text, which must live as long. `subsystems`: lines behind two tabs are subsystems; otherwise
    // they are left out.
    IdFile(const QByteArray& text, bool subsystems);

    // Calls `use` for each usable line in order; it returns false for a duplicate. True if there was any vendor.
    bool Read(const std::function<bool(const IdLine& line)>& use);
    const SkippedLines& Skipped() const { return skipped_; }

    // The name of a vendor of the whole file, empty where unknown.
    QString VendorName(const QString& vendor) const { return vendorNames_.value(vendor); }

  private:
    void CollectVendors();

    const QByteArray& text_;
    bool subsystems_;
    SkippedLines skipped_;
    QHash<QString, QString> vendorNames_;
};

} // namespace tool
