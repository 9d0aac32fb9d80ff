#include "pnp/edid.h"

#include "pnp/sysfs.h"

namespace pnp {

namespace {

constexpr std::size_t BlockSize = 128;
constexpr std::size_t FirstDescriptor = 54;
constexpr std::size_t DescriptorSize = 18;
constexpr std::size_t DescriptorText = 5;
constexpr unsigned char NameTag = 0xFC;

QString DescriptorString(const std::string& block, std::size_t at) {
    std::string text = block.substr(at + DescriptorText, DescriptorSize - DescriptorText);
    text = text.substr(0, text.find('\n'));
    return CleanAttribute(text);
}

} // namespace

std::optional<Edid> ParseEdid(const std::string& block) {
    const std::string header("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8);
    if (block.size() < BlockSize || !block.starts_with(header))
        return std::nullopt;
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(block[at]); };
    Edid edid;
    const int letters = byte(8) << 8 | byte(9);
    bool possible = true;
    for (const int shift : {10, 5, 0}) {
        const int letter = letters >> shift & 0x1F;
        possible = possible && letter >= 1 && letter <= 26;
        edid.vendor += QLatin1Char(char('A' + letter - 1));
    }
    if (!possible)
        edid.vendor.clear();
    edid.product = quint16(byte(10) | byte(11) << 8);
    for (std::size_t at = FirstDescriptor; at + DescriptorSize <= BlockSize - 2; at += DescriptorSize) {
        // Two zeros tell a descriptor from a timing.
        if (byte(at) == 0 && byte(at + 1) == 0 && byte(at + 3) == NameTag)
            edid.name = DescriptorString(block, at);
    }
    return edid;
}

} // namespace pnp
