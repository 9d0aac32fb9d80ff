// What of a machine is saved, and what of it is left out because it tells this one machine from all others.
#pragma once

#include "pnp/saved_machine.h"

#include <string>

namespace pnp {

// The machine with the attributes that are known to tell the kind of device alone; all others are left out, as are
// network interfaces by name. Addresses of networks and radios in names and texts become numbers counted from 1.
SavedMachine WithoutIdentity(const SavedMachine& machine);

// The parts of binary attributes that tell the kind of device. Whatever they are given, they read inside of it.
std::string EdidWithoutIdentity(const std::string& edid);
std::string Page83WithoutIdentity(const std::string& page);
std::string Page89WithoutIdentity(const std::string& page);

} // namespace pnp
