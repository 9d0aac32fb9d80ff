#include "database/device_info.h"
#include "store_fixture.h"

#include <QDir>

using namespace database;
using testing::ElementsAre;

namespace {

std::vector<std::pair<QString, QString>> Decoded(const QString& info) {
    std::vector<std::pair<QString, QString>> entries;
    for (const InfoEntry& entry : DecodeInfo(info)) {
        entries.emplace_back(entry.NameId, entry.ManufacturerId);
    }
    return entries;
}

std::pair<QString, QString> Entry(const char* name, const char* manufacturer) {
    return {QLatin1String(name), QLatin1String(manufacturer)};
}

} // namespace

TEST(DeviceInfo, DecodesEntriesAsTheyStand) {
    EXPECT_THAT(Decoded(QString()), ElementsAre());
    EXPECT_THAT(Decoded("12,34"), ElementsAre(Entry("12", "34")));
    EXPECT_THAT(Decoded("12,34\r\n"), ElementsAre(Entry("12", "34")));
    EXPECT_THAT(Decoded("812,44\r\n \r\n903,45,9\r\nx"),
                ElementsAre(Entry("812", "44"), Entry("903", "45"), Entry("x", "")));
    EXPECT_THAT(Decoded("  "), ElementsAre(Entry("  ", "")));
    EXPECT_THAT(Decoded("1,2\n3,4"), ElementsAre(Entry("1", "2\n3")));
}

TEST(DeviceInfo, OnlyDigitsAreANumber) {
    EXPECT_TRUE(IsDecimal("0812"));
    EXPECT_TRUE(IsDecimal(" 12 "));
    for (const char* text : {"", " ", "-1", "+1", "1.5", "&H1", "1 2", "1\t", "1 OR 1=1", "\xd9\xa1"}) {
        EXPECT_FALSE(IsDecimal(QString::fromUtf8(text))) << text;
    }
}

class StoreTest : public StoreFixture {
  protected:
    QString FatalMessage() {
        QString message;
        int ends = 0;
        SetFatalHandlers([&](const QString& text) { message = text; }, [&] { ++ends; });
        EXPECT_FALSE(OpenDeviceDatabase());
        EXPECT_EQ(ends, 1);
        return message;
    }
};

TEST_F(StoreTest, AMissingDatabaseIsFatalInSevenLines) {
    const QStringList lines = FatalMessage().split("\r\n");
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines[0], "ERROR: -2147467259");
    EXPECT_EQ(lines[1], QStringLiteral("Could not find file '%1'.").arg(Path()));
    EXPECT_EQ(lines[2], QString());
    EXPECT_EQ(lines[3], "Looks like the program had trouble opening the database with ADO!");
    EXPECT_TRUE(lines[4].startsWith("Please check for help or report this error at "));
    EXPECT_TRUE(lines[4].endsWith("/forums/"));
    EXPECT_EQ(lines[5], QString());
    EXPECT_EQ(lines[6], "The Program Will Now Close.");

    ASSERT_TRUE(QDir(Folder.path()).mkdir("hwids.mdb"));
    EXPECT_FALSE(FatalMessage().isEmpty());
}

TEST_F(StoreTest, EndsTheProcessWhereNothingElseIsSet) {
    EXPECT_EXIT(OpenDeviceDatabase(), testing::ExitedWithCode(1), "ERROR: -2147467259");
}

TEST_F(StoreTest, ReadsVersionAndCountAndKeepsThemWhenItCannot) {
    DatabaseBuilder builder;
    for (int i = 0; i < 1234; ++i) {
        builder.Add(QStringLiteral("PCI\\%1").arg(i), QString(), QString());
    }
    WriteAndOpen(builder);
    ReadVersionAndCount();
    EXPECT_EQ(DatabaseVersionCaption(), "Database Version: 2.3.4");
    EXPECT_EQ(DeviceCountCaption(), "Devices In Database: 1,234");

    Run("DELETE FROM version");
    Run("DELETE FROM hwids");
    ReadVersionAndCount();
    EXPECT_EQ(DatabaseVersionCaption(), "Database Version: 2.3.4");
    EXPECT_EQ(DeviceCountCaption(), "Devices In Database: ");

    values::Program().DatabaseDeviceCount = 7;
    CloseDeviceDatabase();
    ReadVersionAndCount();
    EXPECT_EQ(DeviceCountCaption(), "Devices In Database: 7");
    EXPECT_EQ(DatabaseConnection(), nullptr);
    EXPECT_EQ(RecordsetSlot(Slot::Hwids), nullptr);
}

TEST_F(StoreTest, NumbersBecomeTextsAndAnythingElseNothing) {
    DatabaseBuilder builder;
    builder.Add("ID", "Bob's", "Maker");
    WriteAndOpen(builder);
    EXPECT_EQ(DeviceNameById("1"), "Bob's");
    EXPECT_EQ(ManufacturerById("01"), "Maker");
    for (const char* id : {"2", "0", "1 OR 1=1", "'1'", "", "4294967297", "99999999999999999999", "[ID]", "1;"}) {
        EXPECT_EQ(DeviceNameById(QLatin1String(id)), QString()) << id;
    }
    CloseDeviceDatabase();
    EXPECT_EQ(DeviceNameById("1"), QString());
}

TEST_F(StoreTest, TheBuilderMergesCutsAndNames) {
    DatabaseBuilder builder;
    const QString longId = QString(300, u'x');
    EXPECT_TRUE(builder.Add(longId, QString(150, u'n'), QString()));
    EXPECT_FALSE(builder.Add(longId.toUpper(), QString(120, u'N'), "unknown"));
    EXPECT_TRUE(builder.Add(longId, "Other", QString()));
    WriteAndOpen(builder);
    EXPECT_THAT(Column("SELECT * FROM hwids", "hwid"), ElementsAre(longId));
    EXPECT_THAT(Column("SELECT * FROM hwids", "info"), ElementsAre("1,1\r\n2,1\r\n"));
    EXPECT_EQ(DeviceNameById("1"), QString(100, u'n'));
    EXPECT_EQ(ManufacturerById("1"), "Unknown");

    QString error;
    EXPECT_FALSE(builder.Write(Folder.filePath("none/hwids.mdb"), QString(), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_THAT(QDir(Folder.path()).entryList(QDir::Files), ElementsAre("hwids.mdb"));
}
