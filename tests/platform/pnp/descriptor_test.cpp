#include "pnp/edid.h"
#include "pnp/hid_descriptor.h"

#include <QByteArray>
#include <gtest/gtest.h>

namespace {

std::vector<pnp::HidUsage> Collections(const char* hex) {
    return pnp::TopLevelCollections(QByteArray::fromHex(hex).toStdString());
}

std::string Block(quint8 first, quint8 second) {
    std::string block("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8);
    block.resize(128, '\0');
    block[8] = char(first);
    block[9] = char(second);
    block[10] = char(0xF4);
    block[11] = 0x40;
    return block;
}

void Describe(std::string& block, std::size_t at, quint8 tag, const std::string& text) {
    block.replace(at, 18,
                  std::string(3, '\0') + char(tag) + std::string(1, '\0') + text + std::string(13 - text.size(), ' '));
}

} // namespace

TEST(HidDescriptor, FindsCollectionsOfTheTopLevelOnly) {
    // A mouse whose pointer lies in a physical collection below.
    EXPECT_EQ(Collections("05010902A1010901A100C0C0"), (std::vector<pnp::HidUsage>{{0x01, 0x02}}));
    // The page comes back from the stack; a usage of four bytes brings its own.
    EXPECT_EQ(Collections("0501A4050CB40906A101C00B01000C00A101C0"),
              (std::vector<pnp::HidUsage>{{0x01, 0x06}, {0x0C, 0x01}}));
    // A long item in front is skipped whole.
    EXPECT_EQ(Collections("FE03 11 A101A1 05010906A101C0"), (std::vector<pnp::HidUsage>{{0x01, 0x06}}));
}

TEST(HidDescriptor, EndsWhereTheBytesEnd) {
    EXPECT_TRUE(Collections("").empty());
    EXPECT_TRUE(Collections("0501090").empty());
    EXPECT_TRUE(Collections("FE").empty());
    EXPECT_TRUE(Collections("FEFF11").empty());
    EXPECT_TRUE(Collections("C0C0C0B4B4").empty());
    EXPECT_EQ(Collections("05010906A101 0B0100").size(), 1U);
    EXPECT_LE(pnp::TopLevelCollections(std::string(10000, char(0xA1))).size(), 64U);
}

TEST(Edid, TellsVendorProductAndName) {
    std::string block = Block(0x10, 0xAC);
    Describe(block, 54, 0xFC, "DELL U2415\n");
    Describe(block, 72, 0xFF, "XYZ123\n");
    const std::optional<pnp::Edid> edid = pnp::ParseEdid(block);
    ASSERT_TRUE(edid);
    EXPECT_EQ(edid->vendor, QStringLiteral("DEL"));
    EXPECT_EQ(edid->product, 0x40F4);
    EXPECT_EQ(edid->name, QStringLiteral("DELL U2415"));
}

TEST(Edid, RefusesWhatIsNone) {
    EXPECT_FALSE(pnp::ParseEdid(""));
    EXPECT_FALSE(pnp::ParseEdid(std::string(128, '\0')));
    EXPECT_FALSE(pnp::ParseEdid(Block(0x10, 0xAC).substr(0, 127)));
}

// No letters: the vendor field is empty or beyond Z. That costs the vendor, not the name.
TEST(Edid, AnImpossibleVendorCostsItself) {
    for (const auto& [first, second] : {std::pair<quint8, quint8>{0x00, 0x00}, {0x7F, 0xFF}}) {
        std::string block = Block(first, second);
        Describe(block, 54, 0xFC, "Beamer\n");
        const std::optional<pnp::Edid> edid = pnp::ParseEdid(block);
        ASSERT_TRUE(edid);
        EXPECT_EQ(edid->vendor, QString());
        EXPECT_EQ(edid->name, QStringLiteral("Beamer"));
    }
}
