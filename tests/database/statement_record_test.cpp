// Every statement that reaches the store, as the store itself records it: whatever devices call themselves and whatever
// a database holds, the statements are the same, and no text of theirs is part of one.
#include "database/additions.h"
#include "database/matching.h"
#include "store_fixture.h"

#include <QFile>
#include <QSet>
#include <sqlite3.h>

using namespace database;

namespace {

QSet<QByteArray>& Recorded() {
    static QSet<QByteArray> statements;
    return statements;
}

int Record(unsigned, void*, void*, void* text) {
    Recorded().insert(static_cast<const char*>(text));
    return 0;
}

// The store calls it for each handle that it opens.
int Watch(sqlite3* handle, char**, const void*) {
    sqlite3_trace_v2(handle, SQLITE_TRACE_STMT, &Record, nullptr);
    return SQLITE_OK;
}

struct Device {
    QString Id;
    QString Name;
    QString Maker;
    QString Info; // of its row, as somebody wrote it
};

} // namespace

class StatementRecordTest : public StoreFixture {
  protected:
    StatementRecordTest() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(&Watch)); }
    ~StatementRecordTest() override { sqlite3_reset_auto_extension(); }

    // A device's whole way: in a delivered database, looked up alone and among others, contributed, looked up again,
    // and its row read as somebody else left it.
    QSet<QByteArray> StatementsFor(const Device& device) {
        Recorded().clear();
        QFile::remove(Path());
        DatabaseBuilder builder;
        builder.Add(device.Id, device.Name, device.Maker);
        WriteAndOpen(builder);
        ReadVersionAndCount();
        EXPECT_EQ(Search(device.Id), 1) << device.Id.toStdString();
        EXPECT_EQ(Search(device.Id + "\r\nUSB\\NONE\r\n" + device.Name), 1) << device.Id.toStdString();
        const QString line = device.Id + "2|||" + device.Name + "2|||" + device.Maker;
        EXPECT_FALSE(IsDeviceInDatabase(line));
        AddDeviceToDatabase(line);
        EXPECT_TRUE(IsDeviceInDatabase(line)) << line.toStdString();
        AddDeviceToDatabase(device.Id + "|||" + device.Name + "2|||" + device.Maker);
        EXPECT_EQ(Search(device.Id), 2) << device.Id.toStdString();
        SetInfo(device.Id, device.Info);
        Search(device.Id);
        CloseDeviceDatabase();
        return Recorded();
    }

    static int Search(const QString& ids) {
        suite::ListItems rows;
        AddColumns(rows);
        FindMatches(MatchQuery(ids), rows);
        return rows.Count();
    }
};

TEST_F(StatementRecordTest, NoDevicesTextIsEverPartOfAStatement) {
    const QString good = "1,1\r\n";
    const QSet<QByteArray> plain = StatementsFor({"USB\\A", "Name", "Maker", good});
    EXPECT_GE(plain.size(), 10);
    // Each holds "zqx", which no statement of ours does.
    for (const char16_t* text : {
             u"zqx'",
             u"'zqx",
             u"''zqx''",
             u"zqx'; DROP TABLE hwids; --",
             u"zqx' OR '1'='1",
             u"zqx') UNION SELECT * FROM mfgs --",
             u"zqx\"; DELETE FROM mfgs; --",
             u"[zqx]",
             u"zqx]; DROP TABLE mfgs",
             u"zqx --",
             u"zqx /*",
             u"zqx\\'",
             u"zqx%_*?#",
             u"zqx\u2019 OR \u02BC1\u02BC=\uFF071",
             u"zqx ? ?1 :a @b $c",
             u"'zqx' || (SELECT 1) || '",
             u"0x7A7178 zqx",
         }) {
        const QString hostile = QString::fromUtf16(text);
        const QSet<QByteArray> statements = StatementsFor({"USB\\" + hostile, hostile, hostile, good});
        EXPECT_EQ(statements, plain) << hostile.toStdString();
        for (const QByteArray& statement : statements) {
            EXPECT_FALSE(statement.contains("zqx")) << statement.constData();
        }
    }
}

// Numbers come out of a text column; what is none never reaches the store, not even bound.
TEST_F(StatementRecordTest, NoNumberOfARowIsAStatement) {
    const Device device{"USB\\A", "Name", "Maker", "1,1\r\n"};
    const QSet<QByteArray> plain = StatementsFor(device);
    for (const char* info :
         {"1 OR 1=1,2\r\n", "1;DROP TABLE mfgs,1\r\n", "(SELECT 1),1\r\n", "-1,0x1\r\n", "1e9,1.5\r\n", "'1','1'\r\n",
          "99999999999999999999999,1\r\n", "zqx,[ID]\r\n", ",\r\n", "1,1,1 OR 1\r\n"}) {
        Device broken = device;
        broken.Info = QLatin1String(info);
        EXPECT_TRUE(plain.contains(StatementsFor(broken))) << info;
    }
}
