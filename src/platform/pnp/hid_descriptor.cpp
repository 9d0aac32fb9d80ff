#include "pnp/hid_descriptor.h"

namespace pnp {

namespace {

constexpr std::size_t MostCollections = 64;
constexpr std::size_t DeepestStack = 16;

constexpr quint8 LongItem = 0xFE;
// Tag and type of the items that matter, without the two bits of the size.
constexpr quint8 Collection = 0xA0;
constexpr quint8 EndCollection = 0xC0;
constexpr quint8 UsagePage = 0x04;
constexpr quint8 Push = 0xA4;
constexpr quint8 Pop = 0xB4;
constexpr quint8 Usage = 0x08;
constexpr quint8 MainTypeMask = 0x0C;
constexpr quint32 Application = 1;

} // namespace

std::vector<HidUsage> TopLevelCollections(const std::string& descriptor) {
    std::vector<HidUsage> collections;
    std::vector<quint16> pages;
    quint16 page = 0;
    HidUsage usage;
    bool haveUsage = false;
    int depth = 0;
    const auto byte = [&](std::size_t at) { return quint32(static_cast<unsigned char>(descriptor[at])); };
    for (std::size_t at = 0; at < descriptor.size();) {
        const quint32 head = byte(at);
        if (head == LongItem) {
            if (at + 1 >= descriptor.size())
                break;
            at += 3 + byte(at + 1);
            continue;
        }
        const std::size_t size = (head & 3) == 3 ? 4 : head & 3;
        if (at + 1 + size > descriptor.size())
            break;
        quint32 value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value |= byte(at + 1 + i) << (8 * i);
        at += 1 + size;
        const quint8 item = quint8(head & 0xFC);
        if (item == UsagePage) {
            page = quint16(value);
        } else if (item == Push && pages.size() < DeepestStack) {
            pages.push_back(page);
        } else if (item == Pop && !pages.empty()) {
            page = pages.back();
            pages.pop_back();
        } else if (item == Usage && !haveUsage) {
            // Four bytes carry a page of their own.
            usage = size == 4 ? HidUsage{quint16(value >> 16), quint16(value)} : HidUsage{page, quint16(value)};
            haveUsage = true;
        } else if (item == Collection) {
            if (depth == 0 && value == Application && collections.size() < MostCollections)
                collections.push_back(haveUsage ? usage : HidUsage{page, 0});
            ++depth;
        } else if (item == EndCollection && depth > 0) {
            --depth;
        }
        // Usages count up to the next main item.
        if ((item & MainTypeMask) == 0)
            haveUsage = false;
    }
    return collections;
}

} // namespace pnp
