// Files of saved machines: a tar archive, packed by xz, of a text with the facts and of the tree below "sys". What is
// read may come from anybody: it is never unpacked to a disk, and takes bounded memory and time.
#pragma once

#include "pnp/saved_machine.h"

#include <QString>
#include <string>

namespace list_tool {

// Either says in one line what failed; empty if nothing did. A file comes up whole or not at all.
std::string WriteMachine(const pnp::SavedMachine& machine, const std::string& path);
std::string ReadMachine(const std::string& path, pnp::SavedMachine& machine);

// The same from bytes, without the name of the file in the complaint.
std::string UnpackMachine(const std::string& archive, pnp::SavedMachine& machine);

} // namespace list_tool
