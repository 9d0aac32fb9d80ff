// The setup classes that devices are put in: class GUID, short and friendly name, and the icon as the class key of the
// registry tells it. Fixed data; whoever draws or looks up class icons takes module and resource id from here.
#pragma once

#include <span>

namespace pnp {

// How a class key names its icon.
enum class IconWay {
    // "IconPath": file, comma, negative resource id.
    Path,
    // "Icon" holds the id, "EnumPropPages32" names the module and an entry.
    PropertyPages,
    // "Icon" alone; the module is setupapi.dll.
    IdOnly,
};

struct SetupClass {
    // In upper case, with braces.
    const char16_t* guid;
    const char16_t* name;
    const char16_t* friendlyName;
    IconWay iconWay;
    // File name in the system folder. Names that do not end in "dll" go the way of an extracted icon.
    const char16_t* iconModule;
    // Positive. No two classes share one, as icons are kept under their id alone.
    int iconResource;
};

std::span<const SetupClass> SetupClasses();

namespace class_guid {

inline constexpr char16_t Adapter1394[] = u"{6BDD1FC1-810F-11D0-BEC7-08002BE2092F}";
inline constexpr char16_t Battery[] = u"{72631E54-78A4-11D0-BCF7-00AA00B7B32A}";
inline constexpr char16_t Biometric[] = u"{53D29EF7-377C-4D14-864B-EB3A85769359}";
inline constexpr char16_t Bluetooth[] = u"{E0CBF06C-CD8B-4647-BB8A-263B43F0F974}";
inline constexpr char16_t Camera[] = u"{CA3E7AB9-B4C3-4AE6-8251-579EF933890F}";
inline constexpr char16_t Cdrom[] = u"{4D36E965-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t ComputeAccelerator[] = u"{F01A9D53-3FF6-48D2-9F97-C8A7004BE10C}";
inline constexpr char16_t DiskDrive[] = u"{4D36E967-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Display[] = u"{4D36E968-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Fdc[] = u"{4D36E969-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t FloppyDisk[] = u"{4D36E980-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Hdc[] = u"{4D36E96A-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t HidClass[] = u"{745A17A0-74D3-11D0-B6FE-00A0C90F57DA}";
inline constexpr char16_t Image[] = u"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}";
inline constexpr char16_t Keyboard[] = u"{4D36E96B-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Media[] = u"{4D36E96C-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Modem[] = u"{4D36E96D-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Monitor[] = u"{4D36E96E-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Mouse[] = u"{4D36E96F-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Net[] = u"{4D36E972-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t OtherDevices[] = u"{4D36E97E-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Pcmcia[] = u"{4D36E977-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Ports[] = u"{4D36E978-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t Processor[] = u"{50127DC3-0F36-415E-A6CC-4CB3BE910B65}";
inline constexpr char16_t ScsiAdapter[] = u"{4D36E97B-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t SdHost[] = u"{A0A588A4-C46F-4B37-B7EA-C82FE89870C6}";
inline constexpr char16_t SecurityDevices[] = u"{D94EE5D8-D189-4994-83D2-F68D7D41B0E6}";
inline constexpr char16_t Sensor[] = u"{5175D334-C371-4806-B3BA-71FD53C9258D}";
inline constexpr char16_t SmartCardReader[] = u"{50DD5230-BA8A-11D1-BF5D-0000F805F530}";
inline constexpr char16_t SoftwareDevice[] = u"{62F9C741-B25A-46CE-B54C-9BCCCE08B6F2}";
inline constexpr char16_t System[] = u"{4D36E97D-E325-11CE-BFC1-08002BE10318}";
inline constexpr char16_t TapeDrive[] = u"{6D807884-7D21-11CF-801C-08002BE10318}";
inline constexpr char16_t Usb[] = u"{36FC9E60-C465-11CF-8056-444553540000}";

} // namespace class_guid

} // namespace pnp
