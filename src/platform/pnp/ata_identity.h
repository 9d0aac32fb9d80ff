// What an ATA disk tells of itself. The kernel's inquiry shows "ATA" as the vendor, 16 characters of the model and the
// end of the firmware's name; the pages beside it, and on old kernels the link's own record, hold all of them.
#pragma once

#include "pnp/disk_ids.h"
#include "pnp/sysfs.h"

namespace pnp {

// The fields under which such a disk is known: model and firmware whole, and a vendor split off the model.
// `inquiry` is what the kernel shows, and is what remains where nothing else tells.
Inquiry AtaInquiry(const Node& disk, const Inquiry& inquiry);

} // namespace pnp
