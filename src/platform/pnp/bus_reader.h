// One reader a bus. Listing names the entries of the bus, and no more than that, so that it is quick; reading turns the
// device folder behind an entry into the devices in it (none, one, or several where one folder stands for several
// devices). Readers keep no state: all is in the context.
#pragma once

#include "pnp/device.h"
#include "pnp/reader_context.h"

#include <string>
#include <vector>

namespace pnp {

struct BusReader {
    std::vector<std::string> (*List)(const Context& context);
    void (*Read)(Context& context, const std::string& path, std::vector<Device>& devices);
};

BusReader ProcessorReader();
BusReader AcpiReader();
BusReader PnpReader();
BusReader PciReader();
BusReader UsbReader();
BusReader HidReader();
BusReader ScsiReader();
BusReader NvmeReader();
BusReader BlockReader();
BusReader FireWireReader();
BusReader SoundWireReader();
BusReader MmcReader();
BusReader SdioReader();
BusReader HdAudioReader();
BusReader MonitorReader();
BusReader ThunderboltReader();
BusReader NetReader();
BusReader PlatformReader();

// The entries of a bus or class folder, in order.
std::vector<std::string> ListEntries(const Context& context, const std::string& folder);

} // namespace pnp
