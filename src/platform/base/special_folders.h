// The platform's special folders by their numbers. The system's folders have the platform's names, to which only the
// icon modules answer; the user's are those of the desktop.
#pragma once

#include <QString>

namespace base {

constexpr int csidlDesktop = 0;
constexpr int csidlPersonal = 5;
constexpr int csidlAppData = 26;
constexpr int csidlLocalAppData = 28;
constexpr int csidlWindows = 36;
constexpr int csidlSystem = 37;
constexpr int csidlProfile = 40;
constexpr int csidlFlagCreate = 0x8000; // added to a number: make the folder if it is missing

// Result codes: 0 is success, 1 a folder that does not exist, anything negative an unknown number or a path too long.
constexpr qint32 folderMissing = 1;
constexpr qint32 folderUnknown = qint32(0x80070057);

// SHGetFolderPathW for the user at the keyboard. `path` gets at most `capacity` - 1 characters, without a trailing
// separator, and is empty unless the result is 0.
qint32 SHGetFolderPathW(int folder, int capacity, QString& path);

} // namespace base
