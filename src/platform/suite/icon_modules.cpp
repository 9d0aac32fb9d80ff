#include "suite/icon_modules.h"

#include <array>

namespace suite {

namespace {

struct Resource {
    quint16 module;
    quint16 id;
    Glyph glyph;
};

constexpr std::array modules = {
    u"setupapi.dll", u"batt.dll", u"fsquirt.exe", u"mmsys.cpl", u"MsPorts.dll",
};

// By module, counted from 1, then by id. No id stands for two things: the store files icons by their number alone.
constexpr std::array resources = {
    Resource{1, 1, Glyph::Display},
    Resource{1, 2, Glyph::Mouse},
    Resource{1, 3, Glyph::Keyboard},
    Resource{1, 5, Glyph::Network},
    Resource{1, 9, Glyph::StorageController},
    Resource{1, 10, Glyph::StorageController},
    Resource{1, 18, Glyph::Unknown},
    Resource{1, 20, Glyph::Usb},
    Resource{1, 24, Glyph::Hid},
    Resource{1, 27, Glyph::System},
    Resource{1, 28, Glyph::Processor},
    Resource{1, 29, Glyph::MemoryCard},
    Resource{1, 30, Glyph::FireWire},
    Resource{1, 31, Glyph::MemoryCard},
    Resource{1, 32, Glyph::Chip},
    Resource{1, 33, Glyph::Computer},
    Resource{1, 34, Glyph::Floppy},
    Resource{1, 35, Glyph::Monitor},
    Resource{1, 37, Glyph::Tape},
    Resource{1, 38, Glyph::Security},
    Resource{1, 39, Glyph::Biometric},
    Resource{1, 40, Glyph::SmartCard},
    Resource{1, 41, Glyph::Camera},
    Resource{1, 42, Glyph::Imaging},
    Resource{1, 44, Glyph::Modem},
    Resource{1, 45, Glyph::Sensor},
    Resource{1, 46, Glyph::Software},
    Resource{1, 47, Glyph::Printer},
    Resource{1, 48, Glyph::Firmware},
    Resource{1, 49, Glyph::Memory},
    Resource{1, 50, Glyph::Portable},
    Resource{1, 51, Glyph::Optical},
    Resource{1, 52, Glyph::Volume},
    Resource{1, 53, Glyph::Disk},
    Resource{1, 54, Glyph::Wireless},
    Resource{1, 55, Glyph::Floppy},
    Resource{2, 36, Glyph::Battery},
    Resource{3, 301, Glyph::Bluetooth},
    Resource{4, 4, Glyph::Sound},
    Resource{5, 23, Glyph::Ports},
};

constexpr QStringView systemFolder = u"C:\\Windows\\System32\\";

const Resource* Find(ModuleHandle module, qint32 id) {
    for (const Resource& resource : resources) {
        if (resource.module == module && resource.id == id)
            return &resource;
    }
    return nullptr;
}

IconHandle HandleOf(const Resource& resource) { return {resource.module, resource.id}; }

} // namespace

ModuleHandle LoadLibraryA(const QString& path) {
    QStringView name = path;
    if (name.startsWith(systemFolder, Qt::CaseInsensitive))
        name = name.mid(systemFolder.size());
    for (size_t i = 0; i < modules.size(); ++i) {
        if (name.compare(QStringView(modules[i]), Qt::CaseInsensitive) == 0)
            return ModuleHandle(i) + 1;
    }
    return 0;
}

bool FreeLibrary(ModuleHandle module) { return module >= 1 && module <= modules.size(); }

quint32 ExtractIconExA(const QString& path, qint32 index, IconHandle* large, IconHandle* small, quint32 count) {
    const ModuleHandle module = LoadLibraryA(path);
    if (module == 0)
        return 0;
    const std::vector<qint32> ids = IconsOfModule(module);
    if (index == -1 && !large && !small)
        return quint32(ids.size());
    quint32 given = 0;
    const auto give = [&](qint32 id) {
        const IconHandle icon = IconOfModule(module, id);
        if (icon.IsNull() || given == count)
            return;
        if (large)
            large[given] = icon;
        if (small)
            small[given] = icon;
        ++given;
    };
    if (index < 0) {
        if (index >= -0xFFFF)
            give(-index);
        return given;
    }
    for (size_t i = size_t(index); i < ids.size() && given < count; ++i)
        give(ids[i]);
    return given;
}

bool DestroyIcon(const IconHandle& icon) { return !icon.IsNull(); }

IconHandle IconOfModule(ModuleHandle module, qint32 resource) {
    const Resource* found = Find(module, resource);
    return found ? HandleOf(*found) : IconHandle();
}

std::vector<qint32> IconsOfModule(ModuleHandle module) {
    std::vector<qint32> ids;
    for (const Resource& resource : resources) {
        if (resource.module == module)
            ids.push_back(resource.id);
    }
    return ids;
}

Glyph GlyphOf(const IconHandle& icon) {
    const Resource* found = Find(icon.Module, icon.Resource);
    return found ? found->glyph : Glyph::None;
}

} // namespace suite
