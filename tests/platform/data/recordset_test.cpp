#include "base/yield.h"
#include "database_fixture.h"

#include <QTimer>

using namespace data;

class RecordsetTest : public DatabaseFixture {};

TEST_F(RecordsetTest, FindsWithoutRegardToCaseAndInAnyNumber) {
    const auto connection = Connect(Path());
    Insert(connection, QStringLiteral("PCI\\VEN_8086&DEV_2F34"), QStringLiteral("1,2\r\n"));
    Insert(connection, QStringLiteral("it's 100%"), QStringLiteral("3,4\r\n"));
    EXPECT_EQ(InfoOf(connection, QStringLiteral("pci\\ven_8086&dev_2f34")), QStringLiteral("1,2\r\n"));
    EXPECT_EQ(InfoOf(connection, QStringLiteral("it''s 100%")), QStringLiteral("3,4\r\n"));

    QString query = QStringLiteral("SELECT * FROM hwids Where [hwids].[hwid] = 'none'");
    for (int i = 0; i < 2000; ++i) {
        query += QStringLiteral(" OR [hwids].[hwid] = 'x%1'").arg(i);
    }
    query += QStringLiteral(" OR [hwids].[hwid] = 'it''s 100%'");
    EXPECT_EQ(Select(connection, query)->RecordCount(), 1);
}

TEST_F(RecordsetTest, WalksAWholeTableAcrossItsPages) {
    const auto connection = Connect(Path());
    constexpr int rowCount = 512; // a multiple of a page: the last page is empty
    connection->BeginTrans();
    for (int i = 0; i < rowCount; ++i) {
        Insert(connection, QStringLiteral("id%1").arg(i), QString());
    }
    connection->CommitTrans();

    const auto rows = Select(connection, QStringLiteral("SELECT * FROM hwids"));
    EXPECT_EQ(rows->RecordCount(), rowCount);
    int walked = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
        ASSERT_EQ(rows->Value(QStringLiteral("HWID")).toString(), QStringLiteral("id%1").arg(walked));
        ++walked;
    }
    EXPECT_EQ(walked, rowCount);
    EXPECT_EQ(NumberOf([&] { rows->MoveNext(); }), ErrorNoCurrentRecord);
    rows->MoveFirst();
    EXPECT_EQ(rows->Value(0).toString(), QStringLiteral("id0"));
}

TEST_F(RecordsetTest, OpenRowsLockNobodyOut) {
    const auto connection = Connect(Path());
    connection->BeginTrans();
    for (int i = 0; i < 600; ++i) {
        Insert(connection, QStringLiteral("id%1").arg(i), QString());
    }
    connection->CommitTrans();
    const auto whole = Select(connection, QStringLiteral("SELECT * FROM hwids"));
    const auto filtered = Select(connection, QStringLiteral("SELECT * FROM hwids Where hwid = 'id1'"));
    whole->MoveNext();

    const auto other = Connect(Path());
    Insert(other, QStringLiteral("from outside"), QString()); // would wait and fail if a statement were half-read
    EXPECT_EQ(Select(connection, QStringLiteral("SELECT * FROM hwids"))->RecordCount(), 601);
}

TEST_F(RecordsetTest, AHoldEndsBeforeEventsRunAndBeforeAWrite) {
    const auto connection = Connect(Path());
    const auto other = Connect(Path());
    ReadHold hold;
    hold.Hold(connection);
    EXPECT_EQ(InfoOf(connection, QStringLiteral("a")), QStringLiteral("(none)"));
    // Dispatched events are where another window, or this process' other work, writes. A hold that lasted would make it
    // wait for the whole busy time-out and fail.
    bool written = false;
    QTimer::singleShot(0, [&] { written = Ran([&] { Insert(other, QStringLiteral("a"), QStringLiteral("1")); }); });
    base::Yield([&] { hold.LetGo(); });
    EXPECT_TRUE(written);

    hold.Hold(connection);
    EXPECT_EQ(InfoOf(connection, QStringLiteral("a")), QStringLiteral("1"));
    Insert(connection, QStringLiteral("b"), QString());
    Insert(other, QStringLiteral("c"), QString());
    hold.Hold(nullptr);
    connection->Close();
    hold.Hold(connection);
}

TEST_F(RecordsetTest, AnswersEmptyClosedAndUnknownAsErrors) {
    const auto connection = Connect(Path());
    const auto empty = Select(connection, QStringLiteral("SELECT * FROM hwids Where hwid = ''"));
    EXPECT_TRUE(empty->Eof());
    EXPECT_EQ(empty->RecordCount(), 0);
    EXPECT_EQ(NumberOf([&] { empty->MoveFirst(); }), ErrorNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { empty->Value(QStringLiteral("info")); }), ErrorNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { empty->Value(QStringLiteral("colour")); }), ErrorItemNotFound);
    EXPECT_EQ(NumberOf([&] { Select(connection, QStringLiteral("SELECT * FROM missing")); }), ErrorInCommand);

    const auto rows = Select(connection, QStringLiteral("SELECT * FROM hwids"));
    EXPECT_EQ(NumberOf([&] { rows->Open(QStringLiteral("SELECT * FROM hwids"), connection); }), ErrorObjectOpen);
    connection->Close();
    EXPECT_EQ(rows->State(), adStateClosed);
    EXPECT_EQ(NumberOf([&] { rows->RecordCount(); }), ErrorObjectClosed);
    EXPECT_EQ(NumberOf([&] { connection->Close(); }), ErrorObjectClosed);
    EXPECT_EQ(NumberOf([&] { Select(connection, QStringLiteral("SELECT * FROM hwids")); }), ErrorInvalidConnection);
}

TEST_F(RecordsetTest, UpdatesTheRowItReadAndNoOther) {
    const auto connection = Connect(Path());
    Insert(connection, QStringLiteral("a"), QStringLiteral("1,1\r\n"));
    Insert(connection, QStringLiteral("b"), QStringLiteral("1,1\r\n"));
    const auto rows = Select(connection, QStringLiteral("SELECT * FROM hwids Where hwid = 'b'"));
    const auto late = Select(connection, QStringLiteral("SELECT * FROM hwids Where hwid = 'b'"));
    rows->SetValue(QStringLiteral("info"), QStringLiteral("1,1\r\n2,2\r\n"));
    EXPECT_EQ(rows->Value(QStringLiteral("info")).toString(), QStringLiteral("1,1\r\n2,2\r\n"));
    rows->Update();
    EXPECT_EQ(InfoOf(Connect(Path()), QStringLiteral("b")), QStringLiteral("1,1\r\n2,2\r\n"));
    EXPECT_EQ(InfoOf(connection, QStringLiteral("a")), QStringLiteral("1,1\r\n"));

    late->SetValue(QStringLiteral("info"), QStringLiteral("lost update"));
    EXPECT_EQ(NumberOf([&] { late->Update(); }), ErrorRowNotLocated);
    EXPECT_EQ(InfoOf(connection, QStringLiteral("b")), QStringLiteral("1,1\r\n2,2\r\n"));
}

TEST(MemoryRowset, KeepsRowsAndRefusesLongValues) {
    Recordset rows;
    rows.Fields().Append(QStringLiteral("Manufacturer"), adVarChar, 255);
    rows.Fields().Append(QStringLiteral("PNPDeviceID"), adVarChar, 255);
    EXPECT_EQ(NumberOf([&] { rows.AddNew(); }), ErrorObjectClosed);
    rows.Open();
    EXPECT_EQ(NumberOf([&] { rows.Fields().Append(QStringLiteral("Late"), adVarChar, 1); }), ErrorObjectOpen);
    EXPECT_EQ(NumberOf([&] { rows.MoveFirst(); }), ErrorNoCurrentRecord);

    rows.AddNew();
    rows.SetValue(QStringLiteral("manufacturer"), QStringLiteral("Acme"));
    EXPECT_EQ(NumberOf([&] { rows.SetValue(QStringLiteral("PNPDeviceID"), QString(256, u'x')); }), ErrorNotUpdatable);
    rows.Update();
    rows.AddNew();
    rows.SetValue(QStringLiteral("PNPDeviceID"), QString(255, u'y'));
    rows.AddNew(); // keeps the one before
    rows.Update();

    EXPECT_EQ(rows.RecordCount(), 3);
    rows.MoveFirst();
    EXPECT_EQ(rows.Value(QStringLiteral("Manufacturer")).toString(), QStringLiteral("Acme"));
    EXPECT_FALSE(rows.Value(QStringLiteral("PNPDeviceID")).isValid());
    rows.MoveNext();
    EXPECT_EQ(rows.Value(QStringLiteral("PNPDeviceID")).toString().size(), 255);
    rows.MoveNext();
    EXPECT_FALSE(rows.Value(QStringLiteral("PNPDeviceID")).isValid());
    rows.MoveNext();
    EXPECT_TRUE(rows.Eof());
    rows.Close();
    EXPECT_EQ(rows.State(), adStateClosed);
}
