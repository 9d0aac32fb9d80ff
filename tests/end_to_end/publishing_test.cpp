// Publishing by quorvane-db, alone and beside everybody else: others that merge, pack and add, are killed, replace the
// database, or take their time.
#include "data/replace_file.h"
#include "database/additions.h"
#include "database/database_builder.h"
#include "database/store.h"
#include "net/engine_process.h"
#include "support/child.h"
#include "support/long_form.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>
#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {

using support::Child;

class PackTest : public testing::Test {
  protected:
    QString Path(const QString& name) const { return folder_.filePath(name); }

    void MakeDatabase(const QString& name, const QString& version) const {
        ASSERT_TRUE(data::CreateDatabaseFile(
            Path(name), {QStringLiteral("CREATE TABLE hwids (hwid TEXT, info TEXT)"),
                         QStringLiteral("CREATE TABLE devicenames (ID INTEGER PRIMARY KEY, devicename TEXT)"),
                         QStringLiteral("CREATE TABLE mfgs (ID INTEGER PRIMARY KEY, mfg TEXT)"),
                         QStringLiteral("CREATE TABLE version (dbversion TEXT)"),
                         QStringLiteral("INSERT INTO version VALUES ('%1')").arg(version)}));
    }

    QByteArray Read(const QString& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    int Pack(const QString& output, const QStringList& more = {}) {
        QProcess tool;
        tool.start(QCoreApplication::applicationDirPath() + QStringLiteral("/quorvane-db"),
                   QStringList{QStringLiteral("pack"), QStringLiteral("--output"), output} + more);
        EXPECT_TRUE(tool.waitForFinished());
        complaint_ = tool.readAllStandardError();
        return tool.exitCode();
    }

    QTemporaryDir folder_;
    QByteArray complaint_;
};

TEST_F(PackTest, VersionFilesHoldTheBareVersions) {
    MakeDatabase(QStringLiteral("any name.db"), QStringLiteral("2.6.0"));
    // What another one that was killed left there goes too.
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("a/b/.pack-AbCdEf/deeper")));
    ASSERT_EQ(Pack(Path(QStringLiteral("a/b")),
                   {Path(QStringLiteral("any name.db")), QStringLiteral("--program-version"), QStringLiteral("1.4.2")}),
              0)
        << complaint_.constData();
    EXPECT_EQ(Read(Path(QStringLiteral("a/b/database_v1.htm"))), "2.6.0");
    EXPECT_EQ(Read(Path(QStringLiteral("a/b/update.htm"))), "1.4.2");
    EXPECT_EQ(
        QDir(Path(QStringLiteral("a/b"))).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 3);
}

TEST_F(PackTest, WhatClientsWouldNotTakeIsRefused) {
    MakeDatabase(QStringLiteral("long.mdb"), QStringLiteral("2.6.01234567890"));
    MakeDatabase(QStringLiteral("good.mdb"), QStringLiteral("2.6.0"));
    const QString out = Path(QStringLiteral("out"));
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("long.mdb"))}), 1);
    EXPECT_TRUE(complaint_.contains("2.6.01234567890"));
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("good.mdb")), QStringLiteral("--program-version"),
                         QStringLiteral("10.20.3000")}),
              1);
    // A row that its index lacks: every page of it can be read.
    MakeDatabase(QStringLiteral("index.mdb"), QStringLiteral("2.6.0"));
    for (const char* change : {"CREATE INDEX hwids_hwid ON hwids (hwid); PRAGMA writable_schema=ON;"
                               "CREATE TABLE kept AS SELECT * FROM sqlite_schema WHERE name = 'hwids_hwid';"
                               "DELETE FROM sqlite_schema WHERE name = 'hwids_hwid';",
                               "INSERT INTO hwids VALUES ('ID', '1,1'); PRAGMA writable_schema=ON;"
                               "INSERT INTO sqlite_schema SELECT * FROM kept; DROP TABLE kept;"}) {
        ASSERT_EQ(QProcess::execute(QStringLiteral("sqlite3"),
                                    {QStringLiteral("-cmd"), QStringLiteral(".output /dev/null"),
                                     QStringLiteral("-cmd"), QStringLiteral(".dbconfig defensive off"),
                                     Path(QStringLiteral("index.mdb")), QLatin1String(change)}),
                  0);
    }
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("index.mdb"))}), 1);
    EXPECT_TRUE(complaint_.contains("damaged")) << complaint_.constData();
    EXPECT_FALSE(QFile::exists(out + QStringLiteral("/hwids.7z")));
}

class TogetherTest : public testing::Test {
  protected:
    using Tool = std::unique_ptr<QProcess>;

    void SetUp() override {
        database::DatabaseBuilder builder;
        for (int i = 0; i < 3000; ++i)
            builder.Add(QStringLiteral("PCI\\VEN_0001&DEV_%1").arg(i), QStringLiteral("Device %1").arg(i),
                        QStringLiteral("Maker %1").arg(i % 50));
        QString error;
        ASSERT_TRUE(builder.Write(Path("base.mdb"), QStringLiteral("1.0.0"), &error)) << qPrintable(error);
        Renew();
    }
    void TearDown() override { database::CloseDeviceDatabase(); }

    QString Path(const char* name) const { return folder_.filePath(QLatin1String(name)); }

    void Renew() const {
        QFile::remove(Path("hwids.mdb"));
        QFile::remove(Path("hwids.mdb-journal"));
        ASSERT_TRUE(QFile::copy(Path("base.mdb"), Path("hwids.mdb")));
    }

    // Of A every other one has an ID that is there already.
    static QByteArray Line(const char* whose, int number) {
        const bool isKnown = *whose == 'A' && number % 2 == 1;
        const QByteArray id = isKnown ? "PCI\\VEN_0001&DEV_" + QByteArray::number(number % 3000)
                                      : QByteArray("USB\\") + whose + QByteArray::number(number);
        return id + "|||" + whose + " device " + QByteArray::number(number / 2) + "|||Maker " +
               QByteArray::number(number % 70);
    }

    void WriteLines(const char* name, const char* whose, int count) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        for (int i = 0; i < count; ++i)
            file.write(Line(whose, i) + "\r\n");
    }

    // A program at its additions, until it is killed; a step for each that it counts as done.
    auto Adder(const char* whose) const {
        return [this, whose](const std::function<void()>& stepDone) {
            database::OpenDatabaseFile(Path("hwids.mdb"));
            for (int i = 0;; ++i) {
                database::AddDeviceToDatabase(QString::fromLatin1(Line(whose, i)));
                stepDone();
            }
        };
    }

    Tool Start(const QString& arguments) const {
        auto tool = std::make_unique<QProcess>();
        tool->setWorkingDirectory(folder_.path());
        tool->setStandardOutputFile(QProcess::nullDevice());
        tool->start(QCoreApplication::applicationDirPath() + QStringLiteral("/quorvane-db"),
                    QProcess::splitCommand(arguments));
        return tool;
    }

    static bool Ends(const Tool& tool) {
        const bool ended = tool->state() == QProcess::NotRunning || tool->waitForFinished(120'000);
        return ended && tool->exitStatus() == QProcess::NormalExit && tool->exitCode() == 0;
    }

    // The lines of a database that is whole, the version first among them.
    QSet<QByteArray> Lines(const char* database) const {
        QProcess check;
        check.start(QStringLiteral("sqlite3"), {Path(database), QStringLiteral("PRAGMA integrity_check")});
        EXPECT_TRUE(check.waitForFinished(60'000));
        EXPECT_EQ(check.readAll(), "ok\n");
        QProcess tool;
        tool.start(QCoreApplication::applicationDirPath() + QStringLiteral("/quorvane-db"),
                   {QStringLiteral("export"), Path(database)});
        EXPECT_TRUE(tool.waitForFinished(60'000));
        EXPECT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().constData();
        const QByteArrayList lines = tool.readAll().split('\n');
        const QSet<QByteArray> different(lines.begin(), lines.end());
        EXPECT_EQ(different.size(), lines.size()) << "nothing is there twice";
        return different;
    }

    // How many of the first `count` lines are there.
    static int Present(const QSet<QByteArray>& lines, const char* whose, int count) {
        int present = 0;
        for (int i = 0; i < count; ++i)
            present += lines.contains(Line(whose, i)) ? 1 : 0;
        return present;
    }

    QTemporaryDir folder_;
};

constexpr int merged = 400; // lines of each merge

TEST_F(TogetherTest, NobodyLosesARowAndEveryArchiveIsWhole) {
    WriteLines("a.txt", "A", merged);
    WriteLines("b.txt", "B", merged);
    for (int round = 0; round < support::Rounds(3, 200); ++round) {
        Renew();
        Child first(Adder("C"));
        Child second(Adder("D"));
        ASSERT_TRUE(first.WaitForStep() && second.WaitForStep());
        std::vector<Tool> tools;
        for (const char* command : {"pack --output served hwids.mdb", "merge --version 1.0.1 hwids.mdb a.txt",
                                    "merge --version 1.0.2 hwids.mdb b.txt", "pack --output served hwids.mdb"})
            tools.push_back(Start(QLatin1String(command)));
        for (const Tool& tool : tools)
            EXPECT_TRUE(Ends(tool)) << round << ' ' << tool->readAllStandardError().constData();
        first.Kill();
        second.Kill();
        const int byFirst = first.Finish();
        const int bySecond = second.Finish();
        const QSet<QByteArray> lines = Lines("hwids.mdb");
        EXPECT_EQ(Present(lines, "A", merged), merged) << round;
        EXPECT_EQ(Present(lines, "B", merged), merged) << round;
        EXPECT_EQ(Present(lines, "C", byFirst), byFirst) << round;
        EXPECT_EQ(Present(lines, "D", bySecond), bySecond) << round;
        ASSERT_EQ(
            QProcess::execute(net::FindEngine(), {QStringLiteral("x"), QStringLiteral("-y"), QStringLiteral("-bso0"),
                                                  QStringLiteral("-o") + Path("client"), Path("served/hwids.7z")}),
            0);
        QFile version(Path("served/database_v1.htm"));
        ASSERT_TRUE(version.open(QIODevice::ReadOnly));
        EXPECT_TRUE(Lines("client/hwids.mdb").contains("version|||" + version.readAll())) << round;
    }
}

TEST_F(TogetherTest, AKilledMergeAddsEverythingOrNothing) {
    WriteLines("a.txt", "A", merged);
    WriteLines("b.txt", "B", merged);
    std::minstd_rand random(17);
    for (int round = 0; round < support::Rounds(8, 200); ++round) {
        Renew();
        Child adder(Adder("C"));
        ASSERT_TRUE(adder.WaitForStep());
        const std::array<Tool, 2> merges{Start(QStringLiteral("merge hwids.mdb a.txt")),
                                         Start(QStringLiteral("merge hwids.mdb b.txt"))};
        QThread::usleep(random() % 250'000);
        const size_t killed = random() % 3;
        if (killed < merges.size())
            merges[killed]->kill();
        else
            adder.Kill();
        std::array<bool, 2> done{};
        for (size_t i = 0; i < merges.size(); ++i) {
            done[i] = Ends(merges[i]);
            EXPECT_TRUE(done[i] || i == killed) << round << ' ' << merges[i]->readAllStandardError().constData();
        }
        adder.Kill();
        const int added = adder.Finish();
        const QSet<QByteArray> lines = Lines("hwids.mdb");
        EXPECT_EQ(Present(lines, "C", added), added) << round;
        for (size_t i = 0; i < merges.size(); ++i) {
            const int present = Present(lines, i == 0 ? "A" : "B", merged);
            EXPECT_TRUE(present == merged || (present == 0 && !done[i])) << round << ' ' << present;
        }
        // A journal that had not begun to hold anything may lie there until the next write.
        QStringList files = QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden);
        files.removeAll(QStringLiteral("hwids.mdb-journal"));
        EXPECT_EQ(files.size(), 4) << round << ' ' << qPrintable(files.join(QLatin1Char(' ')));
    }
}

// One of many lines goes in portion by portion: a killed one leaves whole ones from the first on, and those who add
// meanwhile wait for no more than one of them.
TEST_F(TogetherTest, ALargeMergeLeavesWholePortionsAndLetsOthersIn) {
    constexpr int count = 45'000;
    constexpr int portion = 20'000;
    WriteLines("a.txt", "A", count);
    WriteLines("c.txt", "C", 400);
    std::minstd_rand random(18);
    qint64 whole = 0;
    qint64 longest = 0;
    for (int round = 0; round < support::Rounds(3, 60); ++round) {
        Renew();
        ASSERT_TRUE(database::OpenDatabaseFile(Path("hwids.mdb")));
        const Tool merge = Start(QStringLiteral("merge hwids.mdb a.txt c.txt"));
        // The first is left to its end; the portions begin in the second half of the time.
        const qint64 end = round == 0 ? 120'000 : whole / 2 + qint64(random()) % (whole / 2);
        QElapsedTimer clock;
        clock.start();
        int added = 0;
        Tool pack;
        for (; merge->state() != QProcess::NotRunning; ++added) {
            merge->waitForFinished(1);
            if (clock.elapsed() > end)
                merge->kill();
            if (clock.elapsed() > whole / 2 && (!pack || pack->state() == QProcess::NotRunning)) {
                EXPECT_TRUE(!pack || Ends(pack)) << pack->readAllStandardError().constData();
                pack = Start(QStringLiteral("pack --output served hwids.mdb"));
            }
            const qint64 before = clock.elapsed();
            database::AddDeviceToDatabase(QString::fromLatin1(Line("C", added)));
            longest = std::max(longest, clock.elapsed() - before);
        }
        whole = round == 0 ? clock.elapsed() : whole;
        EXPECT_TRUE(!pack || Ends(pack)) << pack->readAllStandardError().constData();
        QSet<QByteArray> lines = Lines("hwids.mdb");
        const int present = Present(lines, "A", count);
        EXPECT_TRUE(present == count || (present % portion == 0 && round > 0)) << present;
        EXPECT_EQ(Present(lines, "A", present), present) << "the first ones";
        EXPECT_EQ(Present(lines, "C", added), added);
        RecordProperty("lines that were in, round " + std::to_string(round), present);
        EXPECT_TRUE(Ends(Start(QStringLiteral("merge hwids.mdb a.txt c.txt"))));
        lines = Lines("hwids.mdb");
        EXPECT_EQ(Present(lines, "A", count), count) << "the same again adds the rest";
        EXPECT_EQ(Present(lines, "C", added), added);
    }
    EXPECT_LT(longest, 8'000); // milliseconds; after ten seconds an addition would give up
    RecordProperty("longest wait of an addition in ms", int(longest));
}

// A merge that waits for the reader of its report keeps nobody from adding, and nobody from an update.
TEST_F(TogetherTest, AReportThatIsReadSlowlyKeepsNobodyWaiting) {
    constexpr int count = 3000; // more than a pipe takes
    WriteLines("a.txt", "A", count);
    QProcess shell;
    shell.setWorkingDirectory(folder_.path());
    shell.start(QStringLiteral("sh"),
                {QStringLiteral("-c"), QCoreApplication::applicationDirPath() +
                                           QStringLiteral("/quorvane-db merge hwids.mdb a.txt | (read line; : >reading;"
                                                          " while [ ! -e go ]; do sleep 0.01; done; cat >report)")});
    QElapsedTimer clock;
    clock.start();
    while (!QFile::exists(Path("reading")) && clock.elapsed() < 60'000)
        QThread::msleep(5);
    ASSERT_TRUE(database::OpenDatabaseFile(Path("hwids.mdb")));
    const auto add = [&](int number) {
        clock.restart();
        database::AddDeviceToDatabase(QString::fromLatin1(Line("C", number)));
        EXPECT_LT(clock.elapsed(), 8'000);
    };
    add(1);
    EXPECT_EQ(Present(Lines("hwids.mdb"), "C", 2), 1);
    ASSERT_TRUE(QFile::copy(Path("base.mdb"), Path("new.mdb")));
    QString error;
    ASSERT_TRUE(data::ReplaceDatabaseFile(Path("new.mdb"), Path("hwids.mdb"), &error)) << qPrintable(error);
    add(2);
    QFile go(Path("go"));
    ASSERT_TRUE(go.open(QIODevice::WriteOnly));
    ASSERT_TRUE(shell.waitForFinished(60'000));
    const QSet<QByteArray> lines = Lines("hwids.mdb");
    EXPECT_EQ(Present(lines, "A", count), count);
    EXPECT_TRUE(lines.contains(Line("C", 2)));
    QFile report(Path("report"));
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    EXPECT_TRUE(report.readAll().endsWith("\n3000 added, 0 already known, 0 left out\n"));
}

} // namespace
