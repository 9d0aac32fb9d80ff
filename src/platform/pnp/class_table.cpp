#include "pnp/class_table.h"

namespace pnp {

namespace {

using namespace class_guid;

constexpr char16_t Setup[] = u"setupapi.dll";

constexpr SetupClass Classes[] = {
    {Adapter1394, u"1394", u"IEEE 1394 host controllers", IconWay::Path, Setup, 30},
    {Battery, u"Battery", u"Batteries", IconWay::PropertyPages, u"batt.dll", 36},
    {Biometric, u"Biometric", u"Biometric devices", IconWay::Path, Setup, 39},
    {Bluetooth, u"Bluetooth", u"Bluetooth", IconWay::Path, u"fsquirt.exe", 301},
    {Camera, u"Camera", u"Cameras", IconWay::Path, Setup, 41},
    {Cdrom, u"CDROM", u"DVD/CD-ROM drives", IconWay::Path, Setup, 51},
    {ComputeAccelerator, u"ComputeAccelerator", u"Compute accelerators", IconWay::Path, Setup, 32},
    {DiskDrive, u"DiskDrive", u"Disk drives", IconWay::Path, Setup, 53},
    {Display, u"Display", u"Display adapters", IconWay::Path, Setup, 1},
    {Fdc, u"fdc", u"Floppy disk controllers", IconWay::IdOnly, Setup, 34},
    {FloppyDisk, u"FloppyDisk", u"Floppy disk drives", IconWay::Path, Setup, 55},
    {Hdc, u"hdc", u"IDE ATA/ATAPI controllers", IconWay::IdOnly, Setup, 9},
    {HidClass, u"HIDClass", u"Human Interface Devices", IconWay::Path, Setup, 24},
    {Image, u"Image", u"Imaging devices", IconWay::Path, Setup, 42},
    {Keyboard, u"Keyboard", u"Keyboards", IconWay::Path, Setup, 3},
    {Media, u"MEDIA", u"Sound, video and game controllers", IconWay::PropertyPages, u"mmsys.cpl", 4},
    {Modem, u"Modem", u"Modems", IconWay::IdOnly, Setup, 44},
    {Monitor, u"Monitor", u"Monitors", IconWay::Path, Setup, 35},
    {Mouse, u"Mouse", u"Mice and other pointing devices", IconWay::Path, Setup, 2},
    {Net, u"Net", u"Network adapters", IconWay::Path, Setup, 5},
    {OtherDevices, u"Unknown", u"Other devices", IconWay::IdOnly, Setup, 18},
    {Pcmcia, u"PCMCIA", u"PCMCIA adapters", IconWay::IdOnly, Setup, 31},
    {Ports, u"Ports", u"Ports (COM & LPT)", IconWay::PropertyPages, u"MsPorts.dll", 23},
    {Processor, u"Processor", u"Processors", IconWay::Path, Setup, 28},
    {ScsiAdapter, u"SCSIAdapter", u"Storage controllers", IconWay::Path, Setup, 10},
    {SdHost, u"SDHost", u"SD host adapters", IconWay::Path, Setup, 29},
    {SecurityDevices, u"SecurityDevices", u"Security devices", IconWay::Path, Setup, 38},
    {Sensor, u"Sensor", u"Sensors", IconWay::Path, Setup, 45},
    {SmartCardReader, u"SmartCardReader", u"Smart card readers", IconWay::Path, Setup, 40},
    {SoftwareDevice, u"SoftwareDevice", u"Software devices", IconWay::Path, Setup, 46},
    {System, u"System", u"System devices", IconWay::Path, Setup, 27},
    {TapeDrive, u"TapeDrive", u"Tape drives", IconWay::Path, Setup, 37},
    {Usb, u"USB", u"Universal Serial Bus controllers", IconWay::Path, Setup, 20},
};

} // namespace

std::span<const SetupClass> SetupClasses() { return Classes; }

} // namespace pnp
