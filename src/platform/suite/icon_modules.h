// The modules with icon resources, which answer to names below C:\Windows\System32\ and to bare names. They are icon
// sets of our own, compiled in; each icon is a glyph that icon_glyphs draws at the size wanted. Handles are plain
// values: nothing is held open, and releasing one only tells whether it was good.
#pragma once

#include <QString>
#include <QtGlobal>
#include <vector>

namespace suite {

// What an icon shows. One glyph for each common setup class.
enum class Glyph {
    None,
    Unknown,
    Computer,
    Processor,
    System,
    Chip,
    Memory,
    Display,
    Monitor,
    Disk,
    Volume,
    Optical,
    Floppy,
    StorageController,
    Keyboard,
    Mouse,
    Hid,
    Sound,
    Network,
    Wireless,
    Bluetooth,
    Modem,
    Usb,
    Ports,
    Printer,
    Camera,
    Imaging,
    Battery,
    Security,
    SmartCard,
    Sensor,
    Biometric,
    Portable,
    Tape,
    FireWire,
    MemoryCard,
    Firmware,
    Software,
};

// An icon: a resource of a module by the module's place in the table. Null as made.
struct IconHandle {
    quint16 Module = 0;
    quint16 Resource = 0;
    bool IsNull() const { return Module == 0; }
    friend bool operator==(const IconHandle&, const IconHandle&) = default;
};

using ModuleHandle = quint32;

// The handle of a module; 0 where there is none of this name. The case of the name does not count.
ModuleHandle LoadLibraryA(const QString& path);
bool FreeLibrary(ModuleHandle module);

// Up to `count` icons of the file into the arrays, either of which may be null; returns how many. A negative index is a
// resource id and gives that one; others count the file's icons from 0. With -1 and both arrays null: the number of
// icons.
quint32 ExtractIconExA(const QString& path, qint32 index, IconHandle* large, IconHandle* small, quint32 count);
bool DestroyIcon(const IconHandle& icon);

// The icon of a resource id; null where the module lacks it.
IconHandle IconOfModule(ModuleHandle module, qint32 resource);
// The resource ids that a module holds, ascending.
std::vector<qint32> IconsOfModule(ModuleHandle module);
Glyph GlyphOf(const IconHandle& icon);

} // namespace suite
