#include "base/modules.h"

#include <algorithm>
#include <array>

namespace base {

namespace {

struct Library {
    const char* Name;
    int StartLoads; // what every process of the platform has loaded from its start
    std::array<const char*, 8> Functions;
};

constexpr Library libraries[] = {
    {"kernel32",
     1,
     {"GetPrivateProfileStringW", "WritePrivateProfileStringW", "DeleteFileW", "IsWow64Process",
      "ExpandEnvironmentStringsW", "LoadLibraryA", "FreeLibrary", "GetProcAddress"}},
    {"user32", 1, {"GetSystemMetrics", "SystemParametersInfoA", "SetLayeredWindowAttributes"}},
    {"advapi32",
     1,
     {"RegOpenKeyExW", "RegQueryValueExW", "RegEnumKeyExW", "RegEnumValueW", "RegCloseKey", "RegDeleteKeyExW",
      "RegSetValueExW", "RegCreateKeyExW"}},
    {"shell32", 1, {"SHGetFolderPathW", "SHCreateDirectoryExW", "ShellExecuteA", "ExtractIconExA"}},
    {"oleaut32", 1, {"OleTranslateColor", "OleCreatePictureIndirect"}},
    {"shfolder", 0, {"SHGetFolderPathW"}},
};
constexpr int libraryCount = int(std::size(libraries));

std::array<int, libraryCount>& Loads() {
    static std::array<int, libraryCount> loads = [] {
        std::array<int, libraryCount> start{};
        for (int i = 0; i < libraryCount; ++i)
            start[size_t(i)] = libraries[i].StartLoads;
        return start;
    }();
    return loads;
}

ModuleHandle HandleOf(const QString& library) {
    QString name = library.toLower();
    if (name.endsWith(QStringLiteral(".dll")))
        name.chop(4);
    for (int i = 0; i < libraryCount; ++i)
        if (name == QLatin1StringView(libraries[i].Name))
            return i + 1;
    return 0;
}

bool IsLoaded(ModuleHandle module) { return module >= 1 && module <= libraryCount && Loads()[size_t(module - 1)] > 0; }

} // namespace

ModuleHandle GetModuleHandleA(const QString& library) {
    const ModuleHandle module = HandleOf(library);
    return IsLoaded(module) ? module : 0;
}

ModuleHandle LoadLibraryA(const QString& library) {
    const ModuleHandle module = HandleOf(library);
    if (module != 0)
        ++Loads()[size_t(module - 1)];
    return module;
}

bool GetProcAddress(ModuleHandle module, const QString& function) {
    if (!IsLoaded(module))
        return false;
    return std::ranges::any_of(libraries[module - 1].Functions,
                               [&](const char* name) { return name && function == QLatin1StringView(name); });
}

bool FreeLibrary(ModuleHandle module) {
    if (!IsLoaded(module))
        return false;
    --Loads()[size_t(module - 1)];
    return true;
}

} // namespace base
