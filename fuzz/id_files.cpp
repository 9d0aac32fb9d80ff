// ID files: as the scan reads them by need and as a database is built from them whole. The two must agree on what a
// plain line says.
#include "pnp/id_files.h"
#include "fuzz_support.h"
#include "quorvane-db/id_file.h"

#include <algorithm>

namespace {

bool IsId(const QString& text) {
    return text.size() == 4 && std::all_of(text.begin(), text.end(), [](QChar c) {
               return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F');
           });
}

void CheckLine(const tool::IdLine& line, bool subsystems) {
    fuzz::Require(IsId(line.Vendor) && IsId(line.Device), "IDs are four hexadecimal digits in upper case");
    fuzz::Require(line.SubVendor.isEmpty() == line.SubDevice.isEmpty(), "a subsystem has both of its IDs");
    fuzz::Require(line.SubVendor.isEmpty() || (subsystems && IsId(line.SubVendor) && IsId(line.SubDevice)),
                  "subsystems are read only where they are asked for");
    for (const QString& name : {line.VendorName, line.DeviceName, line.SubsystemName})
        fuzz::Require(name == name.simplified() && !name.contains(QChar(0)), "names are clean");
}

void ReadWhole(const QByteArray& text, bool subsystems) {
    tool::IdFile file(text, subsystems);
    int lines = 0;
    file.Read([&](const tool::IdLine& line) {
        CheckLine(line, subsystems);
        return ++lines % 3 != 0;
    });
    fuzz::Require(file.Skipped().Total() <= text.count('\n') + 1, "no line is skipped twice");
}

void LookUp(const QByteArray& text) {
    const QString path = fuzz::WriteFile(QStringLiteral("ids"), text);
    pnp::IdFile file(path);
    for (const quint16 vendor : {0x0000, 0x001C, 0x046D, 0x8086, 0xFFFF}) {
        const QString name = file.VendorName(vendor);
        fuzz::Require(name == name.trimmed(), "vendor names are trimmed");
        for (const quint16 device : {0x0000, 0x0001, 0xC52B, 0xFFFF})
            fuzz::Require(file.DeviceName(vendor, device) == file.DeviceName(vendor, device), "answers stay");
    }
    pnp::PnpVendorFile vendors(path);
    for (const char* letters : {"SAM", "ABC", "", "AB", "\t\t\t", "\n\n\n"}) {
        const QString name = vendors.VendorName(QLatin1String(letters));
        fuzz::Require(!name.contains(u'\n'), "a vendor's name is one line");
    }
}

void CheckRoundTrip(fuzz::Reader reader) {
    QByteArray text;
    QHash<quint16, QString> names;
    while (!reader.AtEnd() && names.size() < 16) {
        const quint16 id = reader.Word();
        const QString name = QStringLiteral("Name %1").arg(reader.Word());
        text += "\t" + QByteArray::number(id, 16).rightJustified(4, '0') + "  " + name.toUtf8() + "\n";
        if (!names.contains(id))
            names.insert(id, name);
    }
    text = "8086  Maker\n" + text;
    pnp::IdFile file(fuzz::WriteFile(QStringLiteral("made"), text));
    for (auto at = names.cbegin(); at != names.cend(); ++at)
        fuzz::Require(file.DeviceName(0x8086, at.key()) == at.value(),
                      "the scan finds each device, the first of twins");
    QHash<quint16, QString> read;
    tool::IdFile(text, true).Read([&](const tool::IdLine& line) {
        const quint16 id = line.Device.toUShort(nullptr, 16);
        if (!read.contains(id))
            read.insert(id, line.DeviceName);
        return true;
    });
    fuzz::Require(read == names, "the builder reads the same devices");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), qsizetype(size));
    ReadWhole(text, true);
    ReadWhole(text, false);
    LookUp(text);
    CheckRoundTrip(fuzz::Reader(data, size));
    return 0;
}
