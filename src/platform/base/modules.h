// The libraries whose functions the program asks for by name. They are names of this layer: a library exports what the
// layer serves of it and nothing else. Handles are counted as the platform counts them; one handle stands for one
// library.
#pragma once

#include <QString>

namespace base {

using ModuleHandle = int; // 0 is no library

// The handle of a library that is loaded; does not count as a load.
ModuleHandle GetModuleHandleA(const QString& library);
// Loads a library, or counts one more load of it. 0 for a name that nobody serves.
ModuleHandle LoadLibraryA(const QString& library);
// Whether the library exports the function; names of functions are exact, those of libraries are not, and ".dll" may be
// left out.
bool GetProcAddress(ModuleHandle module, const QString& function);
// Takes one load back; false if there was none.
bool FreeLibrary(ModuleHandle module);

} // namespace base
