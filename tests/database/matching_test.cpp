#include "database/matching.h"
#include "store_fixture.h"

#include <QTimer>

using namespace database;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class MatchingTest : public StoreFixture {
  protected:
    static std::vector<QString> Search(const QString& ids) {
        suite::ListItems rows;
        AddColumns(rows);
        FindMatches(MatchQuery(ids), rows);
        return Texts(rows);
    }

    static std::vector<QString> Texts(const suite::ListItems& rows) {
        std::vector<QString> texts;
        for (int i = 1; i <= rows.Count(); ++i) {
            const suite::ListItem& row = *rows.Item(i);
            texts.push_back(row.Text() + u'/' + row.CellText(1) + u'/' + row.CellText(2) + u'/' + row.CellText(3));
        }
        return texts;
    }
};

TEST(MatchQuery, IsBuiltAsTheIdsStand) {
    const QString start = "SELECT * FROM hwids Where [hwids].[hwid] = '";
    EXPECT_EQ(MatchQuery(" o'ne "), start + " o''ne '");
    EXPECT_EQ(MatchQuery(" a \r\n\r\n  \r\no'b\r\n"), start + "a' OR [hwids].[hwid] = 'o''b'");
    EXPECT_EQ(MatchQuery("\r\nb"), " OR [hwids].[hwid] = 'b'");
    EXPECT_EQ(MatchQuery(QString()), QString());
}

TEST_F(MatchingTest, EveryEntryOfEveryIdIsARow) {
    DatabaseBuilder builder;
    const QString exact = "PCI\\VEN_8086&DEV_1&SUBSYS_1";
    builder.Add(exact, "Board", "Maker");
    builder.Add(exact, "Chip", "Intel");
    builder.Add("PCI\\VEN_8086&DEV_1", "Chip", "Intel");
    builder.Add("a 100% \"quoted\" o'ne", "A, B\r\nC", QString());
    builder.Add(QString(1000, u'i'), "Long", QString());
    WriteAndOpen(builder);

    EXPECT_THAT(Search("pci\\ven_8086&dev_1&subsys_1\r\nPCI\\VEN_8086&DEV_1\r\nPCI\\VEN_8086\r\n"),
                UnorderedElementsAre(QStringLiteral("Board/Maker/%1/027").arg(exact),
                                     QStringLiteral("Chip/Intel/%1/027").arg(exact),
                                     "Chip/Intel/PCI\\VEN_8086&DEV_1/018"));
    EXPECT_THAT(Search("a 100% \"quoted\" o'ne"), ElementsAre("A, B\r\nC/Unknown/a 100% \"quoted\" o'ne/020"));
    EXPECT_THAT(Search(QString(1000, u'i')),
                ElementsAre(QStringLiteral("Long/Unknown/%1/1000").arg(QString(1000, u'i'))));
    EXPECT_THAT(Search("\r\nPCI\\VEN_8086&DEV_1"), ElementsAre());
    EXPECT_THAT(Search(QString()), ElementsAre());
}

TEST_F(MatchingTest, BrokenInfoShowsEmptyCells) {
    DatabaseBuilder builder;
    builder.Add("ID", "Name", "Maker");
    WriteAndOpen(builder);
    SetInfo("ID", "1,99\r\nword,-1\r\n1\r\n99999999999999999999,1 OR 1=1\r\n");
    EXPECT_THAT(Search("ID"), ElementsAre("Name//ID/002", "//ID/002", "Name//ID/002", "//ID/002"));
    SetInfo("ID", QString(QLatin1String("")));
    EXPECT_THAT(Search("ID"), ElementsAre());
    CloseDeviceDatabase();
    EXPECT_THAT(Search("ID"), ElementsAre());
}

TEST_F(MatchingTest, AllTiesOfTheGreatestLengthAreBest) {
    suite::ListItems rows;
    AddColumns(rows);
    for (const char* id : {"abc", "abcd", "x", "wxyz"}) {
        rows.Add(QLatin1String(id))->SetSubItems(HardwareIdColumn, QLatin1String(id));
    }
    std::vector<QString> best;
    MarkBestMatches(rows, [&](suite::ListItem& row) { best.push_back(row.Text()); });
    EXPECT_THAT(best, ElementsAre("abcd", "wxyz"));
    EXPECT_EQ(ResultsText(0), "Results: No Matches");
    EXPECT_EQ(ResultsText(1), "Results: 1 Possible Matches");
}

TEST_F(MatchingTest, AReplacedDatabaseNeverMixesItsNamesIn) {
    DatabaseBuilder builder;
    builder.Add("one", "Old", "Old");
    WriteAndOpen(builder);
    DatabaseBuilder newer;
    newer.Add("zero", "Wrong", "Wrong");
    newer.Add("one", "New", "New");
    QTimer::singleShot(0, [&] {
        QString error;
        EXPECT_TRUE(newer.Write(Path(), QString(), &error));
    });
    EXPECT_THAT(Search("one"), ElementsAre("New/New/one/003"));
}

TEST_F(MatchingTest, ClosingTheProgramEndsTheSearch) {
    DatabaseBuilder builder;
    for (const char* id : {"a", "b", "c"}) {
        builder.Add(QLatin1String(id), QLatin1String(id), QString());
    }
    WriteAndOpen(builder);
    QTimer::singleShot(0, [] { values::Program().ProgramClosing = true; });
    EXPECT_LE(Search("a\r\nb\r\nc").size(), 1U);
}
