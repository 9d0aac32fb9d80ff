// Databases of strangers: what is looked at when a file is opened, what when it is to take another's place.
#include "data/error.h"
#include "data/file_judge.h"
#include "database/additions.h"
#include "database/matching.h"
#include "database/schema.h"
#include "store_fixture.h"
#include "support/hold_up.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <QtEndian>
#include <functional>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace database;
using testing::HasSubstr;

namespace {

// The tables without one of them, for rows that make it themselves.
#define HWIDS "CREATE TABLE hwids (hwid TEXT COLLATE NOCASE, info TEXT);"
#define NAMES "CREATE TABLE devicenames (ID INTEGER PRIMARY KEY, devicename TEXT COLLATE NOCASE);"
#define MAKERS "CREATE TABLE mfgs (ID INTEGER PRIMARY KEY, mfg TEXT COLLATE NOCASE);"
#define VERSION "CREATE TABLE version (dbversion TEXT);"
#define TABLES HWIDS NAMES MAKERS VERSION
#define SCHEMA "PRAGMA writable_schema=ON;"

struct Hostile {
    const char* Statements;
    const char* AtStart; // what is said when it is opened; empty: it opens
    const char* Whole;   // what is said of the whole file; null: the same
};

constexpr char ok[] = "";
constexpr char notVersion[] = "not a device database (table version is not as it should be)";
constexpr char notHwids[] = "not a device database (table hwids is not as it should be)";
constexpr char notIndex[] = "not a device database (index hwids_hwid is not as it should be)";
constexpr char tooMuch[] = "not a device database (too much is defined in it)";
constexpr char unreadable[] = "Unrecognized database format";
constexpr char tooLong[] = "text that is too long";

constexpr Hostile byStatements[] = {
    // Good ones: of the first release, by other hands, and as other tools leave them.
    {TABLES "CREATE INDEX hwids_hwid ON hwids (hwid); CREATE INDEX mfgs_mfg ON mfgs (mfg);", ok, ok},
    {"create table \"version\"([dbversion] varchar(50) not null);" NAMES MAKERS
     "CREATE TABLE hwids (info, `hwid` TEXT\n COLLATE BINARY);INSERT INTO hwids VALUES(NULL, 'PCI\\X')",
     ok, ok},
    {"PRAGMA page_size=65536;" TABLES, ok, ok},
    {"PRAGMA journal_mode=WAL;" TABLES, ok, ok},
    {"PRAGMA user_version=7;PRAGMA auto_vacuum=FULL;" TABLES, ok, ok},
    // What freezes or fills the memory when it is read.
    {HWIDS NAMES MAKERS "CREATE TABLE version (x TEXT, dbversion TEXT AS (CASE WHEN instr(hex(zeroblob(30000000)), "
                        "hex(zeroblob(9))) THEN 'a' END));",
     notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion AS (hex(zeroblob(30000000))), x);", notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion TEXT CHECK (length(hex(zeroblob(30000000))) > 1));",
     notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion TEXT DEFAULT (hex(randomblob(9))));", notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion TEXT REFERENCES hwids (hwid));", notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion TEXT UNIQUE);", notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion TEXT /**/);", notVersion, nullptr},
    {HWIDS NAMES MAKERS "CREATE TABLE version (dbversion TEXT) STRICT;", notVersion, nullptr},
    {NAMES MAKERS VERSION "CREATE TABLE hwids (hwid TEXT PRIMARY KEY, info TEXT) WITHOUT ROWID;", "hwids", nullptr},
    {TABLES "CREATE INDEX hwids_hwid ON hwids (length(hwid));", notIndex, nullptr},
    {TABLES "CREATE INDEX hwids_hwid ON hwids (hwid) WHERE info IS NOT NULL;", notIndex, nullptr},
    {TABLES "CREATE UNIQUE INDEX hwids_hwid ON hwids (hwid);", notIndex, nullptr},
    {TABLES "CREATE INDEX hwids_hwid ON hwids (hwid DESC);", notIndex, nullptr},
    {TABLES "CREATE INDEX another ON hwids (hwid);", "unknown index another", nullptr},
    {TABLES "CREATE INDEX hwids_count ON hwids (1+(1+(1+(1+(1+(1+(1+(1+(1+(1+1))))))))));", unreadable, nullptr},
    // What the tables are not.
    {"CREATE TABLE x (a);", "not a device database (unknown table x)", nullptr},
    {HWIDS NAMES VERSION, "not a device database (no table mfgs)", nullptr},
    {NAMES MAKERS VERSION "CREATE VIEW hwids AS SELECT 'a' AS hwid, 'b' AS info;", "unknown view hwids", nullptr},
    {TABLES "CREATE TRIGGER t AFTER INSERT ON hwids BEGIN DELETE FROM hwids; END;", "unknown object t", nullptr},
    {TABLES "CREATE TABLE more (a);", "unknown table more", nullptr},
    {TABLES "CREATE TABLE more (a INTEGER PRIMARY KEY AUTOINCREMENT);", "unknown table", nullptr},
    {TABLES "INSERT INTO hwids VALUES('a','b');CREATE INDEX hwids_hwid ON hwids (hwid);ANALYZE;",
     "unknown table sqlite_stat1", nullptr},
    {HWIDS NAMES MAKERS "CREATE VIRTUAL TABLE version USING fts5(dbversion);", "not a device database", nullptr},
    {NAMES MAKERS VERSION "CREATE TABLE hwids (rowid TEXT, hwid TEXT, info TEXT);", notHwids, nullptr},
    {NAMES MAKERS VERSION "CREATE TABLE hwids (hwid TEXT);", notHwids, nullptr},
    {NAMES MAKERS VERSION "CREATE TABLE hwids (hwid TEXT, hwid2 TEXT);", notHwids, nullptr},
    {HWIDS MAKERS VERSION "CREATE TABLE devicenames (ID INTEGER, devicename TEXT);", "table devicenames", nullptr},
    {"PRAGMA encoding='UTF-16le';" TABLES, "its texts are UTF-16", nullptr},
    {"PRAGMA encoding='UTF-16be';" TABLES, "its texts are UTF-16", nullptr},
    {"PRAGMA application_id=1196444487;" TABLES, "made for another program", nullptr},
    // Definitions that no statement would have made.
    {TABLES SCHEMA "UPDATE sqlite_schema SET name = name || char(0) || 'x' WHERE name = 'version';",
     "not a device database", nullptr},
    {TABLES SCHEMA "UPDATE sqlite_schema SET sql = sql || char(0) || ', x)' WHERE name = 'version';", notVersion,
     nullptr},
    {TABLES SCHEMA "UPDATE sqlite_schema SET sql = replace(sql, ')', ' ' || hex(zeroblob(500000)) || ')');", tooMuch,
     nullptr},
    {TABLES SCHEMA "UPDATE sqlite_schema SET sql = replace(sql, ')', replace(hex(zeroblob(9000)), '0', ' ') || ')');",
     tooMuch, nullptr},
    {TABLES SCHEMA "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 20000) INSERT INTO "
                   "sqlite_schema SELECT 'table', 't' || i, 't' || i, 2, 'CREATE TABLE t' || i || ' (a)' FROM c;",
     tooMuch, nullptr},
    {TABLES SCHEMA "INSERT INTO sqlite_schema SELECT * FROM sqlite_schema WHERE name = 'version';", unreadable,
     nullptr},
    // Rows that are not plausible: such a file still opens, and its queries are held to their limits.
    {TABLES "INSERT INTO hwids VALUES('a', hex(zeroblob(5000000)));", ok, tooLong},
    {TABLES "INSERT INTO hwids VALUES('a', hex(zeroblob(40000)));", ok, "a text that is too long in hwids"},
    {TABLES "INSERT INTO hwids VALUES(zeroblob(9), 'b');", ok, "a value that is no text in hwids"},
    {TABLES "INSERT INTO hwids VALUES('a' || char(0), 'b');", ok, "a text with a zero in it in hwids"},
    {TABLES "INSERT INTO mfgs VALUES(9223372036854775807, 'b');", ok, "a number out of range in mfgs"},
    {TABLES "INSERT INTO version VALUES(hex(zeroblob(100)));", ok, "a text that is too long in version"},
    {TABLES
     "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 101) INSERT INTO version SELECT i "
     "FROM c;",
     ok, "too many rows in version"},
    {TABLES "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 100000) INSERT INTO hwids SELECT "
            "'PCI', '1,1' FROM c;",
     ok, "no index hwids_hwid"},
};

class HostileDatabase : public StoreFixture {
  protected:
    void Make(const char* statements) const {
        QFile::remove(Path());
        sqlite3* handle = nullptr;
        sqlite3_open(QFile::encodeName(Path()).constData(), &handle);
        sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        char* error = nullptr;
        EXPECT_EQ(sqlite3_exec(handle, statements, nullptr, nullptr, &error), SQLITE_OK) << error << statements;
        sqlite3_free(error);
        sqlite3_close(handle);
    }

    QByteArray Read() const {
        QFile file(Path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void Write(const QByteArray& bytes, const char* ending = "") const {
        QFile file(Path() + QLatin1String(ending));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    std::string AtStart() const {
        data::Error error;
        const bool opened = OpenDatabaseFile(Path(), &error);
        CloseDeviceDatabase();
        return opened ? std::string() : error.Description().toStdString();
    }
    std::string Whole() const { return data::JudgeDatabaseFile(Path(), Rules()).toStdString(); }

    void ExpectSaid(const char* atStart, const char* whole, const std::string& what) const {
        QElapsedTimer timer;
        timer.start();
        const std::string said = AtStart();
        EXPECT_LT(timer.elapsed(), 2000) << what;
        EXPECT_TRUE(*atStart == '\0' ? said.empty() : said.find(atStart) != std::string::npos) << said << "\n" << what;
        const std::string all = Whole();
        whole = whole == nullptr ? atStart : whole;
        EXPECT_TRUE(*whole == '\0' ? all.empty() : all.find(whole) != std::string::npos) << all << "\n" << what;
    }
};

} // namespace

TEST_F(HostileDatabase, IsRefusedByWhatItDefinesAndHolds) {
    for (const Hostile& hostile : byStatements) {
        Make(hostile.Statements);
        ExpectSaid(hostile.AtStart, hostile.Whole, hostile.Statements);
    }
}

TEST_F(HostileDatabase, IsRefusedByItsBytes) {
    const std::string rows =
        "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 400) INSERT INTO "
        "hwids SELECT 'PCI' || i, 'some text that fills a page, ' || i FROM c;";
    constexpr int page = 4096;
    struct Case {
        const char* What;
        const char* AtStart;
        const char* Whole;
        std::function<void(QByteArray&)> Change;
    };
    const auto byte = [](int at, int value) { return [=](QByteArray& bytes) { bytes[at] = char(value); }; };
    for (const Case& tried : {
             Case{"encrypted", unreadable, nullptr,
                  [](QByteArray& bytes) { bytes.replace(0, 100, QByteArray(100, 'e')); }},
             Case{"pages hold something else", "pages hold something else", nullptr, byte(20, 8)},
             Case{"a page size that is none", unreadable, nullptr, byte(16, 0x0F)},
             Case{"a later format", "not as it should be", nullptr,
                  [](QByteArray& bytes) { bytes.replace("info TEXT)", "info INTE)"); }},
             Case{"cut in the middle", "Unrecognized", nullptr, [](QByteArray& bytes) { bytes.truncate(3 * page); }},
             Case{"a damaged leaf", ok, "the database is damaged",
                  [](QByteArray& bytes) { bytes.replace(bytes.size() - page, page, QByteArray(page, '\xEE')); }},
             Case{"too large", ok, "larger than 48 MiB",
                  [](QByteArray& bytes) { bytes.append(QByteArray(49 << 20, '\0')); }},
         }) {
        Make((TABLES + rows).c_str());
        QByteArray bytes = Read();
        tried.Change(bytes);
        Write(bytes);
        ExpectSaid(tried.AtStart, tried.Whole, tried.What);
    }
}

TEST_F(HostileDatabase, IsRefusedByWhatLiesBesideIt) {
    Make(TABLES);
    ExpectSaid(ok, ok, "alone");
    Write("a log", "-wal");
    ExpectSaid("remove it", nullptr, "a log of another file");
    QFile::remove(Path() + "-wal");
    for (const char* ending : {"-journal", "-wal", "-shm"}) {
        const QString beside = Path() + QLatin1String(ending);
        ASSERT_EQ(::mkfifo(QFile::encodeName(beside).constData(), 0600), 0);
        ExpectSaid("not a file", nullptr, ending);
        // A new database brings the program back, and nothing of the old one reaches it.
        QString error;
        DatabaseBuilder builder;
        ASSERT_TRUE(builder.Write(Path(), "1.0.0", &error)) << error.toStdString();
        EXPECT_FALSE(QFile::exists(beside));
        ExpectSaid(ok, ok, ending);
    }
}

// One chain of pages that many rows name as theirs: 15 KB that read as gigabytes.
TEST_F(HostileDatabase, SharedPagesAndLongRowsDoNotFillTheMemory) {
    Make(TABLES
         "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 200) INSERT INTO hwids SELECT "
         "'PCI', hex(zeroblob(30000)) FROM c;");
    QByteArray bytes = Read();
    constexpr int page = 4096;
    QByteArray chain;
    int shared = 0;
    for (int start = page; start < bytes.size(); start += page) {
        constexpr char leafOfTable = 13;
        for (int at = start + 8; bytes.at(start) == leafOfTable && at < start + page - 4; ++at) {
            // The number of the next page stands behind the part of the text that the leaf keeps.
            if (bytes.at(at) == '0' && bytes.at(at + 1) == '\0') {
                chain = chain.isEmpty() ? bytes.mid(at + 1, 4) : chain;
                bytes.replace(at + 1, 4, chain);
                ++shared;
            }
        }
    }
    EXPECT_GT(shared, 100);
    Write(bytes);
    ExpectSaid(ok, "the database is damaged", "shared");

    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    const auto answer = [this] {
        data::Error error;
        data::Recordset rows;
        EXPECT_TRUE(OpenDatabaseFile(Path()));
        EXPECT_FALSE(data::Ran(
            [&] { rows.Open("SELECT * FROM hwids Where [hwids].[hwid] = 'PCI'", DatabaseConnection()); }, &error));
        return error.Description().toStdString();
    };
    EXPECT_THAT(answer(), HasSubstr("More rows"));
    // A walk of the whole table takes it in pages.
    data::Recordset walk;
    int walked = 0;
    for (walk.Open("SELECT * FROM hwids", DatabaseConnection()); !walk.Eof(); walk.MoveNext()) {
        ++walked;
    }
    EXPECT_EQ(walked, 200);
    Make(TABLES "INSERT INTO hwids VALUES('PCI', hex(zeroblob(5000000)));");
    EXPECT_THAT(answer(), HasSubstr("too big"));
    Make(TABLES "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 20001) INSERT INTO hwids "
                "SELECT 'PCI', '' FROM c;");
    EXPECT_THAT(answer(), HasSubstr("More rows"));
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024) << "KiB"; // a sanitizer keeps what was given back
}

// A table whose pages name one page below them hundreds of times each: 68 KB with more rows than anybody can walk. It
// does not come through an update, but somebody may have put it into the folder.
TEST_F(HostileDatabase, TablesWithoutEndAreLeftInTime) {
    Make(TABLES "INSERT INTO hwids VALUES('PCI\\X', '1,1'); INSERT INTO version VALUES('1.2.3');");
    QByteArray bytes = Read();
    constexpr int page = 4096;
    constexpr int cell = 5; // a page's number and a row's
    constexpr int cells = 500;
    constexpr int levels = 12;
    constexpr char inner = 5;
    const qsizetype root = page; // of the first table that was made
    const auto end = quint32(bytes.size() / page);
    bytes.append(QByteArray(qsizetype(levels - 1) * page, '\0') + bytes.mid(root, page));
    const auto put = [&bytes](qsizetype at, auto value) { qToBigEndian(value, bytes.data() + at); };
    for (int level = 0; level < levels; ++level) {
        const qsizetype at = level == 0 ? root : (end + level - 1) * qsizetype(page);
        const quint32 below = end + quint32(level) + 1;
        bytes.replace(at, page, QByteArray(page, '\0'));
        bytes[at] = inner;
        put(at + 3, quint16(cells));
        put(at + 5, quint16(page - cells * cell));
        put(at + 8, below);
        for (int i = 0; i < cells; ++i) {
            const int place = page - (i + 1) * cell;
            put(at + 12 + 2 * i, quint16(place));
            put(at + place, below);
            bytes[at + place + 4] = 1;
        }
    }
    put(28, quint32(bytes.size() / page));
    Write(bytes);
    ExpectSaid(ok, "the database is damaged", "without end");

    ASSERT_TRUE(OpenDatabaseFile(Path()));
    QElapsedTimer timer;
    timer.start();
    suite::ListItems rows;
    AddColumns(rows);
    FindMatches(MatchQuery("PCI\\Y\r\nPCI\\Z"), rows);
    EXPECT_EQ(rows.Count(), 0);
    EXPECT_FALSE(IsDeviceInDatabase("PCI\\X|||A|||B"));
    AddDeviceToDatabase("PCI\\X|||A|||B");
    EXPECT_LT(timer.elapsed(), 5'000) << "each statement of it ends";
    support::HoldUp holdUp;
    QTimer::singleShot(100, [] { values::Program().ProgramClosing = true; });
    timer.restart();
    values::Program().DatabaseDeviceCount = 7;
    ReadVersionAndCount();
    EXPECT_LT(timer.elapsed(), 2'000) << "ends with the program";
    EXPECT_LT(holdUp.Longest(), 400) << "and the window lives meanwhile";
    EXPECT_EQ(values::Program().DatabaseDeviceCount, 7);
}
