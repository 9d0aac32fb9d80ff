#include "base/yield.h"
#include "database_fixture.h"

#include <QTimer>

using namespace data;

class RecordsetTest : public DatabaseFixture {};

TEST_F(RecordsetTest, FindsWithoutRegardToCaseAndInAnyNumber) {
    const auto connection = Connect(Path());
    Insert(connection, "PCI\\VEN_8086&DEV_2F34", "1,2\r\n");
    Insert(connection, "it's 100%", "3,4\r\n");
    EXPECT_EQ(InfoOf(connection, "pci\\ven_8086&dev_2f34"), "1,2\r\n");
    EXPECT_EQ(InfoOf(connection, "it''s 100%"), "3,4\r\n");

    QString query = "SELECT * FROM hwids Where [hwids].[hwid] = 'none'";
    for (int i = 0; i < 2000; ++i) {
        query += QStringLiteral(" OR [hwids].[hwid] = 'x%1'").arg(i);
    }
    query += " OR [hwids].[hwid] = 'it''s 100%'";
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

    const auto rows = Select(connection, "SELECT * FROM hwids");
    EXPECT_EQ(rows->RecordCount(), rowCount);
    int walked = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
        ASSERT_EQ(rows->Value("HWID").toString(), QStringLiteral("id%1").arg(walked));
        ++walked;
    }
    EXPECT_EQ(walked, rowCount);
    EXPECT_EQ(NumberOf([&] { rows->MoveNext(); }), ErrorNoCurrentRecord);
    rows->MoveFirst();
    EXPECT_EQ(rows->Value(0).toString(), "id0");
}

TEST_F(RecordsetTest, OpenRowsLockNobodyOut) {
    const auto connection = Connect(Path());
    connection->BeginTrans();
    for (int i = 0; i < 600; ++i) {
        Insert(connection, QStringLiteral("id%1").arg(i), QString());
    }
    connection->CommitTrans();
    const auto whole = Select(connection, "SELECT * FROM hwids");
    const auto filtered = Select(connection, "SELECT * FROM hwids Where hwid = 'id1'");
    whole->MoveNext();

    const auto other = Connect(Path());
    Insert(other, "from outside", QString()); // would wait and fail if a statement were half-read
    EXPECT_EQ(Select(connection, "SELECT * FROM hwids")->RecordCount(), 601);
}

TEST_F(RecordsetTest, AHoldEndsBeforeEventsRunAndBeforeAWrite) {
    const auto connection = Connect(Path());
    const auto other = Connect(Path());
    ReadHold hold;
    hold.Hold(connection);
    EXPECT_EQ(InfoOf(connection, "a"), "(none)");
    // Dispatched events are where another window, or this process' other work, writes. A hold that lasted would make it
    // wait for the whole busy time-out and fail.
    bool written = false;
    QTimer::singleShot(0, [&] { written = Ran([&] { Insert(other, "a", "1"); }); });
    base::Yield([&] { hold.LetGo(); });
    EXPECT_TRUE(written);

    hold.Hold(connection);
    EXPECT_EQ(InfoOf(connection, "a"), "1");
    Insert(connection, "b", QString());
    Insert(other, "c", QString());
    hold.Hold(nullptr);
    connection->Close();
    hold.Hold(connection);
}

TEST_F(RecordsetTest, AnswersEmptyClosedAndUnknownAsErrors) {
    const auto connection = Connect(Path());
    const auto empty = Select(connection, "SELECT * FROM hwids Where hwid = ''");
    EXPECT_TRUE(empty->Eof());
    EXPECT_EQ(empty->RecordCount(), 0);
    EXPECT_EQ(NumberOf([&] { empty->MoveFirst(); }), ErrorNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { empty->Value("info"); }), ErrorNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { empty->Value("colour"); }), ErrorItemNotFound);
    // Nothing but the program's own tables, and no function.
    for (const char* query : {"SELECT * FROM missing", "SELECT * FROM sqlite_schema", "SELECT hex(hwid) FROM hwids"}) {
        EXPECT_NE(NumberOf([&] { Select(connection, query); }), 0) << query;
    }

    const auto rows = Select(connection, "SELECT * FROM hwids");
    EXPECT_EQ(NumberOf([&] { rows->Open("SELECT * FROM hwids", connection); }), ErrorObjectOpen);
    connection->Close();
    EXPECT_EQ(rows->State(), adStateClosed);
    EXPECT_EQ(NumberOf([&] { rows->RecordCount(); }), ErrorObjectClosed);
    EXPECT_EQ(NumberOf([&] { connection->Close(); }), ErrorObjectClosed);
    EXPECT_EQ(NumberOf([&] { Select(connection, "SELECT * FROM hwids"); }), ErrorInvalidConnection);
}

TEST_F(RecordsetTest, UpdatesTheRowItReadAndNoOther) {
    const auto connection = Connect(Path());
    Insert(connection, "a", "1,1\r\n");
    Insert(connection, "b", "1,1\r\n");
    const auto rows = Select(connection, "SELECT * FROM hwids Where hwid = 'b'");
    const auto late = Select(connection, "SELECT * FROM hwids Where hwid = 'b'");
    rows->SetValue("info", "1,1\r\n2,2\r\n");
    EXPECT_EQ(rows->Value("info").toString(), "1,1\r\n2,2\r\n");
    rows->Update();
    EXPECT_EQ(InfoOf(Connect(Path()), "b"), "1,1\r\n2,2\r\n");
    EXPECT_EQ(InfoOf(connection, "a"), "1,1\r\n");

    late->SetValue("info", "lost update");
    EXPECT_EQ(NumberOf([&] { late->Update(); }), ErrorRowNotLocated);
    EXPECT_EQ(InfoOf(connection, "b"), "1,1\r\n2,2\r\n");
}

TEST(MemoryRowset, KeepsRowsAndRefusesLongValues) {
    Recordset rows;
    rows.Fields().Append("Manufacturer", adVarChar, 255);
    rows.Fields().Append("PNPDeviceID", adVarChar, 255);
    EXPECT_EQ(NumberOf([&] { rows.AddNew(); }), ErrorObjectClosed);
    rows.Open();
    EXPECT_EQ(NumberOf([&] { rows.Fields().Append("Late", adVarChar, 1); }), ErrorObjectOpen);
    EXPECT_EQ(NumberOf([&] { rows.MoveFirst(); }), ErrorNoCurrentRecord);

    rows.AddNew();
    rows.SetValue("manufacturer", "Acme");
    EXPECT_EQ(NumberOf([&] { rows.SetValue("PNPDeviceID", QString(256, u'x')); }), ErrorNotUpdatable);
    rows.Update();
    rows.AddNew();
    rows.SetValue("PNPDeviceID", QString(255, u'y'));
    rows.AddNew(); // keeps the one before
    rows.Update();

    EXPECT_EQ(rows.RecordCount(), 3);
    rows.MoveFirst();
    EXPECT_EQ(rows.Value("Manufacturer").toString(), "Acme");
    EXPECT_FALSE(rows.Value("PNPDeviceID").isValid());
    rows.MoveNext();
    EXPECT_EQ(rows.Value("PNPDeviceID").toString().size(), 255);
    rows.MoveNext();
    EXPECT_FALSE(rows.Value("PNPDeviceID").isValid());
    rows.MoveNext();
    EXPECT_TRUE(rows.Eof());
    rows.Close();
    EXPECT_EQ(rows.State(), adStateClosed);
}
