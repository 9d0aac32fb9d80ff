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
    const QString start = QStringLiteral("SELECT * FROM hwids Where [hwids].[hwid] = '");
    EXPECT_EQ(MatchQuery(QStringLiteral(" o'ne ")), start + QStringLiteral(" o''ne '"));
    EXPECT_EQ(MatchQuery(QStringLiteral(" a \r\n\r\n  \r\no'b\r\n")),
              start + QStringLiteral("a' OR [hwids].[hwid] = 'o''b'"));
    EXPECT_EQ(MatchQuery(QStringLiteral("\r\nb")), QStringLiteral(" OR [hwids].[hwid] = 'b'"));
    EXPECT_EQ(MatchQuery(QString()), QString());
}

TEST_F(MatchingTest, EveryEntryOfEveryIdIsARow) {
    DatabaseBuilder builder;
    const QString exact = QStringLiteral("PCI\\VEN_8086&DEV_1&SUBSYS_1");
    builder.Add(exact, QStringLiteral("Board"), QStringLiteral("Maker"));
    builder.Add(exact, QStringLiteral("Chip"), QStringLiteral("Intel"));
    builder.Add(QStringLiteral("PCI\\VEN_8086&DEV_1"), QStringLiteral("Chip"), QStringLiteral("Intel"));
    builder.Add(QStringLiteral("a 100% \"quoted\" o'ne"), QStringLiteral("A, B\r\nC"), QString());
    builder.Add(QString(1000, u'i'), QStringLiteral("Long"), QString());
    WriteAndOpen(builder);

    EXPECT_THAT(Search(QStringLiteral("pci\\ven_8086&dev_1&subsys_1\r\nPCI\\VEN_8086&DEV_1\r\nPCI\\VEN_8086\r\n")),
                UnorderedElementsAre(QStringLiteral("Board/Maker/%1/027").arg(exact),
                                     QStringLiteral("Chip/Intel/%1/027").arg(exact),
                                     QStringLiteral("Chip/Intel/PCI\\VEN_8086&DEV_1/018")));
    EXPECT_THAT(Search(QStringLiteral("a 100% \"quoted\" o'ne")),
                ElementsAre(QStringLiteral("A, B\r\nC/Unknown/a 100% \"quoted\" o'ne/020")));
    EXPECT_THAT(Search(QString(1000, u'i')),
                ElementsAre(QStringLiteral("Long/Unknown/%1/1000").arg(QString(1000, u'i'))));
    EXPECT_THAT(Search(QStringLiteral("\r\nPCI\\VEN_8086&DEV_1")), ElementsAre());
    EXPECT_THAT(Search(QString()), ElementsAre());

    QString many = exact + QStringLiteral("\r\n");
    for (int i = 0; i < 1000; ++i) {
        many += QStringLiteral("none%1\r\n").arg(i);
    }
    EXPECT_EQ(Search(many).size(), 2U);
}

TEST_F(MatchingTest, BrokenInfoShowsEmptyCells) {
    DatabaseBuilder builder;
    builder.Add(QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("Maker"));
    WriteAndOpen(builder);
    SetInfo(QStringLiteral("ID"), QStringLiteral("1,99\r\nword,-1\r\n1\r\n99999999999999999999,1 OR 1=1\r\n"));
    EXPECT_THAT(Search(QStringLiteral("ID")), ElementsAre(QStringLiteral("Name//ID/002"), QStringLiteral("//ID/002"),
                                                          QStringLiteral("Name//ID/002"), QStringLiteral("//ID/002")));
    SetInfo(QStringLiteral("ID"), QString(QLatin1String("")));
    EXPECT_THAT(Search(QStringLiteral("ID")), ElementsAre());
    CloseDeviceDatabase();
    EXPECT_THAT(Search(QStringLiteral("ID")), ElementsAre());
}

TEST_F(MatchingTest, AllTiesOfTheGreatestLengthAreBest) {
    suite::ListItems rows;
    AddColumns(rows);
    for (const char* id : {"abc", "abcd", "x", "wxyz"}) {
        rows.Add(QLatin1String(id))->SetSubItems(HardwareIdColumn, QLatin1String(id));
    }
    std::vector<QString> best;
    MarkBestMatches(rows, [&](suite::ListItem& row) { best.push_back(row.Text()); });
    EXPECT_THAT(best, ElementsAre(QStringLiteral("abcd"), QStringLiteral("wxyz")));
    EXPECT_EQ(ResultsText(0), QStringLiteral("Results: No Matches"));
    EXPECT_EQ(ResultsText(1), QStringLiteral("Results: 1 Possible Matches"));
}

TEST_F(MatchingTest, TwoSearchesInterleaveEachWithItsOwnRows) {
    DatabaseBuilder builder;
    builder.Add(QStringLiteral("one"), QStringLiteral("One"), QStringLiteral("A"));
    builder.Add(QStringLiteral("two"), QStringLiteral("Two"), QStringLiteral("B"));
    builder.Add(QStringLiteral("three"), QStringLiteral("Three"), QStringLiteral("C"));
    WriteAndOpen(builder);
    std::vector<QString> inner;
    QTimer::singleShot(0, [&] { inner = Search(QStringLiteral("two")); });
    EXPECT_THAT(Search(QStringLiteral("one\r\nthree")),
                UnorderedElementsAre(QStringLiteral("One/A/one/003"), QStringLiteral("Three/C/three/005")));
    EXPECT_THAT(inner, ElementsAre(QStringLiteral("Two/B/two/003")));
}

TEST_F(MatchingTest, AReplacedDatabaseNeverMixesItsNamesIn) {
    DatabaseBuilder builder;
    builder.Add(QStringLiteral("one"), QStringLiteral("Old"), QStringLiteral("Old"));
    WriteAndOpen(builder);
    DatabaseBuilder newer;
    newer.Add(QStringLiteral("zero"), QStringLiteral("Wrong"), QStringLiteral("Wrong"));
    newer.Add(QStringLiteral("one"), QStringLiteral("New"), QStringLiteral("New"));
    QTimer::singleShot(0, [&] {
        QString error;
        EXPECT_TRUE(newer.Write(Path(), QString(), &error));
    });
    EXPECT_THAT(Search(QStringLiteral("one")), ElementsAre(QStringLiteral("New/New/one/003")));
}

TEST_F(MatchingTest, ClosingTheProgramEndsTheSearch) {
    DatabaseBuilder builder;
    for (const char* id : {"a", "b", "c"}) {
        builder.Add(QLatin1String(id), QLatin1String(id), QString());
    }
    WriteAndOpen(builder);
    QTimer::singleShot(0, [] { values::Program().ProgramClosing = true; });
    EXPECT_LE(Search(QStringLiteral("a\r\nb\r\nc")).size(), 1U);
}
