// HID report descriptors: any bytes, and descriptors made of usages that must come out again.
#include "pnp/hid_descriptor.h"
#include "fuzz_support.h"

#include <algorithm>

namespace {

void CheckRoundTrip(fuzz::Reader reader) {
    std::string descriptor;
    std::vector<pnp::HidUsage> usages;
    const auto word = [&](quint16 value) {
        descriptor += char(value);
        descriptor += char(value >> 8);
    };
    while (!reader.AtEnd() && usages.size() < 64) {
        const pnp::HidUsage usage{reader.Word(), reader.Word()};
        usages.push_back(usage);
        if (reader.Byte() % 2 == 0) {
            descriptor += '\x06'; // usage page and usage, two bytes each
            word(usage.page);
            descriptor += '\x0A';
            word(usage.usage);
        } else {
            descriptor += '\x0B'; // usage with a page of its own
            word(usage.usage);
            word(usage.page);
        }
        descriptor += "\xA1\x01";             // application collection
        descriptor += "\xFE\x02\x10\xA1\x01"; // a long item, which is skipped
        descriptor += "\xA1\x02\xC0\xC0";     // a logical one inside
    }
    fuzz::Require(pnp::TopLevelCollections(descriptor) == usages, "usages come out as they went in");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string descriptor(reinterpret_cast<const char*>(data), size);
    const std::vector<pnp::HidUsage> whole = pnp::TopLevelCollections(descriptor);
    fuzz::Require(whole.size() <= 64, "at most 64 collections");
    const std::vector<pnp::HidUsage> part = pnp::TopLevelCollections(descriptor.substr(0, size * 2 / 3));
    fuzz::Require(part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin()),
                  "a cut descriptor gives the collections before the cut");
    CheckRoundTrip(fuzz::Reader(data, size));
    return 0;
}
