#include "database/additions.h"
#include "database/contribution_line.h"
#include "store_fixture.h"

#include <QTimer>

using namespace database;
using testing::ElementsAre;

class AdditionsTest : public StoreFixture {
  protected:
    void SetUp() override {
        StoreFixture::SetUp();
        WriteAndOpen(DatabaseBuilder());
    }

    static QStringList Names() { return Column("SELECT * FROM devicenames", "devicename"); }
    static QStringList Manufacturers() { return Column("SELECT * FROM mfgs", "mfg"); }
    static QStringList Infos() { return Column("SELECT * FROM hwids", "info"); }

    static bool AddAndAsk(const QString& line) {
        AddDeviceToDatabase(line);
        return IsDeviceInDatabase(line);
    }
};

TEST(ContributionLine, HasThreeFieldsAndNoMore) {
    const Contribution device = SplitContribution("ID|||Na|me||||Maker|||rest");
    EXPECT_EQ(device.HardwareId, "ID");
    EXPECT_EQ(device.Name, "Na|me");
    EXPECT_EQ(device.Manufacturer, "|Maker");
    EXPECT_EQ(SplitContribution("ID").Manufacturer, QString());
    EXPECT_EQ(ContributionLine("a", "b", QString()), "a|||b|||");
}

TEST_F(AdditionsTest, WritesWhatIsMissingAndOnlyOnce) {
    const QString line = "USB\\VID_1234&PID_5678|||Bob's Adapter|||Maker";
    EXPECT_FALSE(IsDeviceInDatabase(line));
    EXPECT_TRUE(AddAndAsk(line));
    EXPECT_TRUE(AddAndAsk(line));
    EXPECT_TRUE(AddAndAsk("usb\\vid_1234&pid_5678|||BOB'S ADAPTER|||maker"));
    EXPECT_THAT(Infos(), ElementsAre("1,1\r\n"));

    EXPECT_TRUE(AddAndAsk("USB\\VID_1234&PID_5678|||Other name|||Maker"));
    EXPECT_THAT(Infos(), ElementsAre("1,1\r\n2,1\r\n"));
    EXPECT_TRUE(AddAndAsk("ID'2||||||"));
    EXPECT_THAT(Names(), ElementsAre("Bob's Adapter", "Other name", "Unknown"));
    EXPECT_THAT(Manufacturers(), ElementsAre("Maker", "Unknown"));
}

TEST_F(AdditionsTest, CleansNamesButAsksForThemAsTheyAre) {
    AddDeviceToDatabase("ID||| Two\t words |||Maker");
    EXPECT_THAT(Names(), ElementsAre("Two words"));
    EXPECT_FALSE(IsDeviceInDatabase("ID||| Two\t words |||Maker"));
    EXPECT_TRUE(IsDeviceInDatabase("ID|||Two words|||Maker"));
}

TEST_F(AdditionsTest, AnInsertThatFailsLeavesTheLastNumberInUse) {
    AddDeviceToDatabase("first|||Name|||Maker");
    AddDeviceToDatabase("second|||Second|||" + QString(101, u'm'));
    // The manufacturer is not there; the number of the row written last stands in its place.
    EXPECT_THAT(Infos(), ElementsAre("1,1\r\n", "2,2\r\n"));
    EXPECT_THAT(Manufacturers(), ElementsAre("Maker"));

    AddDeviceToDatabase(QString(126, u'i') + "|||Third|||Maker");
    EXPECT_EQ(Infos().size(), 2);
    EXPECT_EQ(Names().size(), 3);
    EXPECT_TRUE(AddAndAsk(QString(125, u'i') + "|||" + QString(100, u'n') + "|||Maker"));
}

TEST_F(AdditionsTest, FindsAPairAnywhereButKnowsOnlyWholeLines) {
    AddDeviceToDatabase("ID|||Name|||Maker");
    SetInfo("ID", "11,12\r\n");
    AddDeviceToDatabase("ID|||Name|||Maker");
    EXPECT_THAT(Infos(), ElementsAre("11,12\r\n"));
    EXPECT_FALSE(IsDeviceInDatabase("ID|||Name|||Maker"));

    SetInfo("ID", "1,1");
    EXPECT_FALSE(IsDeviceInDatabase("ID|||Name|||Maker"));
    SetInfo("ID", "\r\n1,1");
    EXPECT_TRUE(IsDeviceInDatabase("ID|||Name|||Maker"));
}

TEST_F(AdditionsTest, OtherScriptsAreKept) {
    const QString name = "\u041F\u0440\u0438\u0432\u043E\u0434 \u2122";
    EXPECT_TRUE(AddAndAsk("ID|||" + name + "|||Maker"));
    EXPECT_THAT(Names(), ElementsAre(name));
    // Equal in lower case, but not to the database's own comparison: two rows.
    EXPECT_TRUE(AddAndAsk("ID|||" + name.toUpper() + "|||Maker"));
    EXPECT_EQ(Names().size(), 2);
}

TEST_F(AdditionsTest, AnotherProgramsWritesAreNotLost) {
    AddDeviceToDatabase("ID|||Name|||Maker");
    // Between finding the names and writing the entry another program appends to the same row.
    bool appended = false;
    QTimer::singleShot(0, [&] {
        SetInfo("ID", "1,1\r\n7,7\r\n");
        appended = true;
    });
    AddDeviceToDatabase("ID|||Second|||Maker");
    EXPECT_TRUE(appended);
    EXPECT_THAT(Infos(), ElementsAre("1,1\r\n7,7\r\n2,1\r\n"));
}

TEST_F(AdditionsTest, AReplacedDatabaseGetsTheNumbersOfItsOwnRows) {
    DatabaseBuilder newer;
    for (const char* name : {"A", "B", "C"}) {
        newer.Add("other", QLatin1String(name), QLatin1String(name));
    }
    AddDeviceToDatabase("ID|||Name|||Maker");
    int yields = 0;
    std::function<void()> replace = [&] {
        // Not in the first yield, which comes before any number is read.
        if (++yields < 2) {
            QTimer::singleShot(0, replace);
            return;
        }
        QString error;
        EXPECT_TRUE(newer.Write(Path(), QString(), &error));
    };
    QTimer::singleShot(0, replace);
    const QString line = "ID|||Name|||Maker";
    AddDeviceToDatabase(line);
    EXPECT_TRUE(IsDeviceInDatabase(line));
    EXPECT_THAT(Column("SELECT * FROM hwids Where hwid = 'ID'", "info"), ElementsAre("4,4\r\n"));
}

// Another number in the place of one that could not be had would be another device's name.
TEST_F(AdditionsTest, WhatCannotBeWrittenIsTriedAgain) {
    AddDeviceToDatabase("ID|||Name|||Maker");
    const QString away = Path() + ".away";
    for (const int begin : {2, 3, 4}) { // the yield in which the file goes: before the name, the maker, the entry
        int yields = 0;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&] {
            const bool goes = ++yields == begin - 1;
            if (goes || yields == begin) {
                EXPECT_TRUE(goes ? QFile::rename(Path(), away) : QFile::rename(away, Path()));
            }
        });
        tick.start(0);
        const QString line = QStringLiteral("ID%1|||Name%1|||Maker%1").arg(begin);
        AddDeviceToDatabase(line);
        tick.stop();
        EXPECT_GE(yields, begin);
        EXPECT_TRUE(IsDeviceInDatabase(line));
    }
    EXPECT_THAT(Infos(), ElementsAre("1,1\r\n", "2,2\r\n", "3,3\r\n", "4,4\r\n"));
}

TEST_F(AdditionsTest, WithoutADatabaseNothingHappens) {
    CloseDeviceDatabase();
    EXPECT_FALSE(AddAndAsk("ID|||Name|||Maker"));
}
