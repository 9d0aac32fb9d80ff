// quorvane-db build: a database out of the ID files of PCI and USB, each ID in the form under which a scan reports it.
#include "command.h"
#include "database/database_builder.h"
#include "database_file.h"
#include "id_file.h"
#include "input_file.h"
#include "options.h"

#include <QFileInfo>

namespace tool {

namespace {

constexpr qint64 largestFile = 64 << 20; // bytes; the real ones have about 1.5 MiB

// Where Debian's hwdata, pciutils and usbutils keep them.
QString DefaultIdFile(const QString& name) {
    for (const char* folder : {"/usr/share/hwdata/", "/usr/share/misc/"}) {
        QString path = QLatin1String(folder) + name;
        if (QFileInfo::exists(path)) {
            return path;
        }
    }
    return QLatin1String("/usr/share/hwdata/") + name;
}

bool AddPciLine(const IdLine& line, const IdFile& file, database::DatabaseBuilder& builder) {
    const QString device = QStringLiteral("PCI\\VEN_%1&DEV_%2").arg(line.Vendor, line.Device);
    if (line.SubDevice.isEmpty()) {
        return !builder.Contains(device) && builder.Add(device, line.DeviceName, line.VendorName);
    }
    const QString subsystem = QStringLiteral("%1&SUBSYS_%2%3").arg(device, line.SubDevice, line.SubVendor);
    if (builder.Contains(subsystem)) {
        return false;
    }
    // Known under two names: the board's own, by the board's maker, and the chip's, which is what a driver is found by.
    builder.Add(subsystem, line.SubsystemName, file.VendorName(line.SubVendor));
    builder.Add(subsystem, line.DeviceName, line.VendorName);
    return true;
}

bool AddUsbLine(const IdLine& line, const IdFile& /*file*/, database::DatabaseBuilder& builder) {
    const QString device = QStringLiteral("USB\\VID_%1&PID_%2").arg(line.Vendor, line.Device);
    return !builder.Contains(device) && builder.Add(device, line.DeviceName, line.VendorName);
}

void ReportSkipped(const QString& path, const SkippedLines& skipped) {
    if (skipped.Total() > 0) {
        Note(QStringLiteral("%1: %2 lines skipped (%3 duplicate, %4 over-long, %5 badly encoded, %6 broken)")
                 .arg(path)
                 .arg(skipped.Total())
                 .arg(skipped.Duplicate)
                 .arg(skipped.OverLong)
                 .arg(skipped.BadlyEncoded)
                 .arg(skipped.Broken));
    }
}

using AddLine = bool (*)(const IdLine&, const IdFile&, database::DatabaseBuilder&);

// Empty, or what is wrong with the file.
QString AddIdFile(const QString& path, bool subsystems, AddLine add, database::DatabaseBuilder& builder) {
    QString error;
    const std::optional<QByteArray> text = ReadAtMost(path, largestFile + 1, error);
    if (!text) {
        return error;
    }
    if (text->size() > largestFile) {
        return QStringLiteral("%1: too large for an ID file").arg(path);
    }
    IdFile ids(*text, subsystems);
    const bool any = ids.Read([&](const IdLine& line) { return add(line, ids, builder); });
    if (!any) {
        return QStringLiteral("%1: not an ID file").arg(path);
    }
    ReportSkipped(path, ids.Skipped());
    return QString();
}

} // namespace

int Build(const QStringList& arguments) {
    Options options(
        {QStringLiteral("output"), QStringLiteral("version"), QStringLiteral("pci-ids"), QStringLiteral("usb-ids")},
        {});
    const QString wrong = options.Read(arguments);
    const QString output = options.Value(QStringLiteral("output"));
    if (!wrong.isEmpty() || !options.Arguments().isEmpty() || output.isEmpty()) {
        return RefuseUsage(!wrong.isEmpty()   ? wrong
                           : output.isEmpty() ? QStringLiteral("build needs --output FILE")
                                              : QStringLiteral("build takes no arguments"));
    }
    const QString version = options.Value(QStringLiteral("version"), QStringLiteral("1.0.0"));
    if (version.size() > longestVersion) {
        return RefuseUsage(QStringLiteral("the version is longer than %1 characters").arg(longestVersion));
    }
    database::DatabaseBuilder builder;
    QString error = AddIdFile(options.Value(QStringLiteral("pci-ids"), DefaultIdFile(QStringLiteral("pci.ids"))), true,
                              AddPciLine, builder);
    if (error.isEmpty()) {
        error = AddIdFile(options.Value(QStringLiteral("usb-ids"), DefaultIdFile(QStringLiteral("usb.ids"))), false,
                          AddUsbLine, builder);
    }
    if (!error.isEmpty()) {
        return Fail(error);
    }
    if (!builder.Write(output, version, &error)) {
        return Fail(QStringLiteral("%1: %2").arg(output, error));
    }
    Print(QStringLiteral("%1: %2 hardware IDs, %3 device names, %4 manufacturers")
              .arg(output)
              .arg(builder.HardwareIdCount())
              .arg(builder.NameCount())
              .arg(builder.ManufacturerCount()));
    return Finish();
}

} // namespace tool
