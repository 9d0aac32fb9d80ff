#include "device_fixture.h"
#include "pnp/wmi.h"

#include <gtest/gtest.h>

namespace {

const QString Moniker = QStringLiteral("winmgmts:\\\\.\\root\\CIMV2");
const QString All = QStringLiteral("SELECT * FROM Win32_PnPEntity");

constexpr char Tree[] = R"(
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  class = 0xff0000
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  class = 0x020000
  driver -> /bus/pci/drivers/e1000
)";

int Count(pnp::WmiObjectSet set) {
    int count = 0;
    while (set.Next())
        ++count;
    return count;
}

} // namespace

TEST(Wmi, ServesTheTwoQueriesAndNoOther) {
    const DeviceFixture fixture(Tree);
    EXPECT_FALSE(pnp::GetObject(QStringLiteral("winmgmts:\\\\other\\root\\CIMV2")));
    const auto query = [](const QString& text, int flags = 48) {
        return pnp::GetObject(Moniker)->ExecQuery(text, QStringLiteral("WQL"), flags);
    };
    EXPECT_EQ(Count(query(All + QStringLiteral(" WHERE ConfigManagerErrorCode = 0")).value()), 1);
    EXPECT_FALSE(query(QStringLiteral("SELECT * FROM Win32_Processor")));
    EXPECT_FALSE(query(All + QStringLiteral(" WHERE ConfigManagerErrorCode = 28")));
    EXPECT_FALSE(query(All, 0));
    // What nothing is known of is null.
    std::optional<pnp::WmiObjectSet> set = query(All);
    const std::optional<pnp::WmiObject> first = set->Next();
    EXPECT_TRUE(first->Property(QStringLiteral("ClassGuid")).isNull());
    EXPECT_TRUE(first->Property(QStringLiteral("Manufacturer")).isNull());
    EXPECT_FALSE(first->Property(QStringLiteral("NoSuch")).isValid());
    EXPECT_EQ(first->Property(QStringLiteral("ConfigManagerErrorCode")).toString(), QStringLiteral("28"));
    EXPECT_EQ(set->Next()->Property(QStringLiteral("classguid")).toString(),
              QStringLiteral("{4D36E972-E325-11CE-BFC1-08002BE10318}"));
    // Walked to its end, a result stays at its end.
    EXPECT_FALSE(set->Next());
    EXPECT_FALSE(set->Next());
}

// A bind shows the devices of that moment to everyone; a walk under way goes on over its own.
TEST(Wmi, EachBindTakesANewSnapshot) {
    DeviceFixture fixture(Tree);
    std::optional<pnp::WmiObjectSet> old = pnp::GetObject(Moniker)->ExecQuery(All, QStringLiteral("WQL"), 48);
    ASSERT_TRUE(old->Next());
    fixture.Add("/devices/pci0000:00/0000:00:04.0 @ bus/pci\nclass = 0x020000\n");
    EXPECT_EQ(Count(pnp::GetObject(Moniker)->ExecQuery(All, QStringLiteral("WQL"), 48).value()), 3);
    EXPECT_EQ(Count(*old), 1);
}
