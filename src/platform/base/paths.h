// Paths as the program writes them (backslashes, names without regard to case) and the native paths behind them.
#pragma once

#include <QString>

namespace base {

// The native form of a path of the program: slashes for backslashes and doubled ones, but not in the name of its own
// folder; the last component is spelled as an existing file that differs only in case (an exact match wins).
QString NativePath(const QString& path);

// Whether a file (not a folder) stands at this path of the program.
bool FileExists(const QString& path);

// DeleteFileW: true if the file was there and is gone now. Never removes a folder.
bool DeleteFileW(const QString& path);

// SHCreateDirectoryExW: creates the folder and its parents with the user's own mask. True if it exists afterwards.
bool SHCreateDirectoryExW(const QString& path);

// The program's folder, native, without a trailing slash. The executable's folder if the user may write there;
// otherwise `quorvane` below the user's data folder (XDG data home), created and filled with the installed data files
// the first time: whole or, where that fails, not at all. The result is fixed for the process; tests set it.
QString ProgramFolder();

// The file of this name that the program would open, native: the one in its folder or, before its first start, the one
// that it would be filled with. Nothing is made. Empty where there is neither.
QString FindProgramFile(const QString& name);

void SetProgramFolder(const QString& folder);

} // namespace base
