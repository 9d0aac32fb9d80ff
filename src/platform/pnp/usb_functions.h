// Which interfaces of a composite USB device are one function.
#pragma once

#include "pnp/sysfs.h"

namespace pnp {

// The number of the interface by which the function of an interface is known: that of its first one. Interfaces that an
// association joins are one function; so are, without one, what a communications interface names as united with it, and
// a run of audio interfaces that a control interface begins.
quint32 FirstOfFunction(const Node& device, const Node& interface, quint32 number);

} // namespace pnp
