#include "pnp/usb_class.h"

#include "pnp/class_table.h"

#include <algorithm>

namespace pnp {

namespace {

using namespace class_guid;

constexpr int Any = -1;

struct FunctionRow {
    int classCode;
    int subclass;
    int protocol;
    const char16_t* guid;
    const char16_t* name;
};

// The first fitting row decides.
constexpr FunctionRow Rows[] = {
    {0x01, Any, Any, Media, u"USB Audio Device"},
    {0x02, 0x02, Any, Ports, u"USB Serial Device"},
    {0x02, Any, Any, Net, u"USB Communications Device"},
    {0x03, Any, Any, HidClass, u"USB Input Device"},
    {0x06, Any, Any, Image, u"Still Image Device"},
    {0x07, Any, Any, Usb, u"USB Printing Support"},
    {0x08, Any, Any, Usb, u"USB Mass Storage Device"},
    {0x09, Any, Any, Usb, u"Generic USB Hub"},
    {0x0b, Any, Any, SmartCardReader, u"Smart Card Reader"},
    {0x0e, Any, Any, Camera, u"USB Video Device"},
    {0x10, Any, Any, Media, u"USB Audio/Video Device"},
    {0xe0, 0x01, 0x01, Bluetooth, u"Bluetooth Adapter"},
    {0xe0, 0x01, 0x03, Net, u"Remote NDIS Device"},
};

const FunctionRow* FindRow(const UsbFunction& function) {
    const auto fits = [](int wanted, quint32 value) { return wanted == Any || quint32(wanted) == value; };
    for (const FunctionRow& row : Rows) {
        if (fits(row.classCode, function.classCode) && fits(row.subclass, function.subclass) &&
            fits(row.protocol, function.protocol))
            return &row;
    }
    return nullptr;
}

struct ChildRow {
    const char* name;
    const char16_t* guid;
};

// Folders that drivers make below an interface.
constexpr ChildRow Children[] = {
    {"net", Net},   {"bluetooth", Bluetooth}, {"ieee80211", Net},  {"sound", Media}, {"video4linux", Camera},
    {"tty", Ports}, {"ttyUSB", Ports},        {"input", HidClass}, {"host", Usb},    {"drm", Display},
    {"dvb", Media}};

// Vendors that make fingerprint readers with vendor-specific interfaces and little else.
constexpr quint32 FingerprintVendors[] = {0x08FF, 0x138A, 0x147E, 0x1C7A, 0x27C6, 0x10A5, 0x06CB, 0x2808, 0x04F3};

bool IsFingerprintReader(const UsbFunction& function) {
    if (function.classCode != 0xFF)
        return false;
    return std::find(std::begin(FingerprintVendors), std::end(FingerprintVendors), function.vendor) !=
               std::end(FingerprintVendors) ||
           function.name.contains(QStringLiteral("fingerprint"), Qt::CaseInsensitive) ||
           function.name.contains(QStringLiteral("biometric"), Qt::CaseInsensitive);
}

} // namespace

const char16_t* UsbSetupClass(const UsbFunction& function, const Node& node) {
    if (const FunctionRow* row = FindRow(function))
        return row->guid;
    for (const std::string& name : node.List()) {
        for (const ChildRow& child : Children) {
            if (name.starts_with(child.name))
                return child.guid;
        }
    }
    return IsFingerprintReader(function) ? Biometric : nullptr;
}

bool UsbDrivenFromUserSpace(const UsbFunction& function) {
    return function.classCode == 0x06 || function.classCode == 0x07 || function.classCode == 0x0b ||
           IsFingerprintReader(function);
}

QString UsbClassName(const UsbFunction& function) {
    const FunctionRow* row = FindRow(function);
    return row == nullptr ? QStringLiteral("USB Device") : QString::fromUtf16(row->name);
}

} // namespace pnp
