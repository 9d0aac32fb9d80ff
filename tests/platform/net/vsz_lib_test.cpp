#include "net/vsz_lib.h"

#include "base/yield.h"
#include "net/crc32.h"
#include "net/engine_process.h"
#include "support/hold_up.h"
#include "support/long_form.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

class VszLibTest : public testing::Test {
  protected:
    VszLibTest() {
        QDir(root_.path()).mkdir("in");
        QDir(root_.path()).mkdir("out");
        Write("out/hwids.mdb", "the old database");
    }
    ~VszLibTest() override { net::SetEngineFolders({}); }

    QString Path(const QString& name) const { return root_.filePath(name); }

    void Write(const QString& name, const QByteArray& content) {
        QDir().mkpath(QFileInfo(Path(name)).path());
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray Read(const QString& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    // Packs what stands below in/ into hwids.7z.
    void Pack(const QStringList& options = {}) {
        QFile::remove(Path("hwids.7z"));
        QProcess packer;
        packer.setWorkingDirectory(Path("in"));
        packer.start(net::FindEngine(), QStringList{"a", "-bd", "-snl"} + options + QStringList{"../hwids.7z", "."});
        ASSERT_TRUE(packer.waitForFinished() && packer.exitCode() == 0) << packer.readAll().constData();
    }

    // Replaces a name inside an archive packed with -mhc=off by one of the same length, and mends the checksums.
    void PatchName(const QString& from, const QString& to) {
        QByteArray archive = Read("hwids.7z");
        const auto wide = [](const QString& text) {
            return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        };
        const qsizetype at = archive.indexOf(wide(from));
        ASSERT_GT(at, 0);
        archive.replace(at, from.size() * 2, wide(to));
        const auto offset = qFromLittleEndian<qint64>(archive.constData() + 12);
        const auto size = qFromLittleEndian<qint64>(archive.constData() + 20);
        qToLittleEndian(net::Crc32(0, archive.constData() + 32 + offset, size), archive.data() + 28);
        qToLittleEndian(net::Crc32(0, archive.constData() + 12, 20), archive.data() + 8);
        Write("hwids.7z", archive);
    }

    bool Open() {
        bool loaded = false;
        zip_.LoadEngine(Path("out\\7za.dll"), loaded);
        return zip_.OpenArchive(Path("hwids.7z"));
    }

    bool Extract() { return zip_.ExtractAll(Path("out")); }

    // Everything is as it was, and nothing was left behind.
    void ExpectUntouched() const {
        EXPECT_EQ(Read("out/hwids.mdb"), "the old database");
        EXPECT_EQ(QDir(Path("out")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList{"hwids.mdb"});
        EXPECT_FALSE(QFile::exists(Path("evil.txt")));
    }

    // An engine of the test's own: `l` prints `listing`, `x` runs `script`.
    void FakeEngine(const QByteArray& listing, const QByteArray& script) {
        Write("engine/listing", listing);
        FakeEngine("if [ \"$1\" = l ]; then rm '" + Path("engine/pid").toUtf8() + "'; cat '" +
                   Path("engine/listing").toUtf8() + "'; exit; fi\n" + script);
    }

    // One that runs `script` whatever it is asked, and tells its process.
    void FakeEngine(const QByteArray& script) {
        Write("engine/7za", "#!/bin/sh\necho $$ > '" + Path("engine/pid").toUtf8() + "'\n" + script + "\n");
        QFile::setPermissions(Path("engine/7za"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        net::SetEngineFolders({Path("engine")});
        Write("hwids.7z", "anything");
    }

    bool EngineIsGone() const {
        const QByteArray id = Read("engine/pid").trimmed();
        return !id.isEmpty() && !QFile::exists("/proc/" + QString::fromLatin1(id));
    }

    QTemporaryDir root_;
    net::VszLib zip_;
};

TEST_F(VszLibTest, UnpacksAWholeArchiveAndReportsProgress) {
    const QByteArray database = QByteArray("new database ").repeated(200'000);
    Write("in/HWIDS.mdb", database);
    Write("in/color_presets/Night.ini", "[colors]");
    Write("in/a\u00FC.txt", "text");
    Write("in/empty.md", "");
    Pack();
    double current = 0;
    double total = 0;
    QObject::connect(&zip_, &net::VszLib::Progress, [&](int, double now, double all, bool&) {
        EXPECT_GE(now, current);
        current = now;
        total = all;
        base::Yield();
    });
    ASSERT_TRUE(Open());
    ASSERT_TRUE(Extract());
    EXPECT_EQ(total, double(database.size() + 12));
    EXPECT_EQ(current, total);
    // The old file's spelling stays: one name is one file.
    EXPECT_EQ(Read("out/hwids.mdb"), database);
    EXPECT_EQ(Read("out/color_presets/Night.ini"), "[colors]");
    EXPECT_EQ(Read("out/a\u00FC.txt"), "text");
    EXPECT_EQ(Read("out/empty.md"), "");
    EXPECT_EQ(QDir(Path("out")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 4);
}

TEST_F(VszLibTest, WhatIsNoArchiveIsNotOpened) {
    EXPECT_FALSE(Open()) << "missing";
    Write("hwids.7z", "");
    EXPECT_FALSE(Open());
    Write("hwids.7z", "<html>404</html>");
    EXPECT_FALSE(Open());
    Write("in/hwids.mdb", "new");
    Pack({"-tzip"});
    EXPECT_FALSE(Open()) << "a zip";
    Pack({"-psecret", "-mhe=on"});
    EXPECT_FALSE(Open()) << "names encrypted";
    Pack();
    QByteArray archive = Read("hwids.7z");
    Write("hwids.7z", archive.chopped(1));
    EXPECT_FALSE(Open()) << "truncated";
    Write("hwids.7z", archive.first(20));
    EXPECT_FALSE(Open());
    EXPECT_FALSE(Extract());
    ExpectUntouched();
}

TEST_F(VszLibTest, DamagedOrEncryptedContentsChangeNothing) {
    Write("in/a.txt", "first");
    Write("in/hwids.mdb", QByteArray(50'000, 'n') + "end");
    Pack({"-mhc=off", "-m0=copy"});
    QByteArray archive = Read("hwids.7z");
    archive[archive.indexOf("nnnn") + 40'000] = 'N';
    Write("hwids.7z", archive);
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Extract()) << "wrong checksum";
    ExpectUntouched();
    Pack({"-psecret"});
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Extract()) << "encrypted";
    ExpectUntouched();
}

TEST_F(VszLibTest, HostileEntriesRefuseTheWholeArchive) {
    for (const char16_t* name : {u"../evil.txt", u"/tmp_il.txt", u"Hwids.mdb_x", u"platform.so", u"HWIDS.mdb"}) {
        const QString to = QString::fromUtf16(name);
        QDir(Path("in")).removeRecursively();
        Write("in/hwids.mdb", "new");
        const QString from = QString(to.size() - 4, QChar(u'z')) + ".txt";
        Write("in/" + from, "evil");
        Pack({"-mhc=off"});
        PatchName(from, to);
        ASSERT_TRUE(Open()) << qPrintable(to);
        EXPECT_FALSE(Extract()) << qPrintable(to);
        ExpectUntouched();
    }
    QDir(Path("in")).removeRecursively();
    Write("in/hwids.mdb", "new");
    QFile::link("/etc/passwd", Path("in/link.txt"));
    Pack();
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Extract()) << "a link";
    ExpectUntouched();
    QDir(Path("in")).removeRecursively();
    QDir(root_.path()).mkdir("in");
    Pack();
    Open();
    EXPECT_FALSE(Extract()) << "nothing inside";
    ExpectUntouched();
}

TEST_F(VszLibTest, NothingIsWrittenThroughALinkInTheFolder) {
    Write("in/color_presets/x.ini", "x");
    Pack();
    QDir(root_.path()).mkdir("elsewhere");
    QFile::link(Path("elsewhere"), Path("out/color_presets"));
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Extract());
    EXPECT_TRUE(QDir(Path("elsewhere")).isEmpty());
}

TEST_F(VszLibTest, ABombIsRefusedBeforeTheEngineRuns) {
    FakeEngine("Path = hwids.mdb\nSize = 1099511627776000\nCRC = 00000000\n\n", "cat /dev/zero");
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Extract());
    EXPECT_FALSE(QFile::exists(Path("engine/pid")));
    ExpectUntouched();
}

TEST_F(VszLibTest, AnEngineThatLiesDiesOrStallsChangesNothing) {
    const QByteArray listing = "Path = hwids.mdb\nSize = 3\nCRC = 352441C2\n\n"; // "abc"
    struct Case {
        const char* script;
        bool good;
    };
    for (const Case& tried : {Case{"printf abc", true}, Case{"printf abcd", false}, Case{"printf ab", false},
                              Case{"printf abd", false}, Case{"printf abc; exit 1", false},
                              Case{"printf abc; kill -9 $$", false}, Case{"cat /dev/zero", false}, Case{"", false}}) {
        Write("out/hwids.mdb", "the old database");
        FakeEngine(listing, tried.script);
        ASSERT_TRUE(Open());
        EXPECT_EQ(Extract(), tried.good) << tried.script;
        EXPECT_TRUE(EngineIsGone()) << tried.script;
        if (!tried.good) {
            ExpectUntouched();
        }
    }
    FakeEngine(listing, "printf a; exec sleep 60");
    zip_.SetStallLimit(300);
    ASSERT_TRUE(Open());
    EXPECT_FALSE(Extract());
    EXPECT_TRUE(EngineIsGone());
    FakeEngine("Path = hwids.mdb\nSize = x\n\n", "");
    EXPECT_FALSE(Open());
}

// Whatever becomes of an archive on its way: the old database or the new one, whole, and nothing else.
TEST_F(VszLibTest, AnArchiveCutOrChangedAnywhereIsAllOrNothing) {
    const QByteArray database = QByteArray("new database ").repeated(100);
    Write("in/hwids.mdb", database);
    Write("in/color_presets/Night.ini", "[colors]");
    Pack({"-mhc=off"});
    const QByteArray archive = Read("hwids.7z");
    int opened = 0;
    const auto attempt = [&](const QByteArray& changed, const std::string& how) {
        Write("hwids.7z", changed);
        QDir(Path("out")).removeRecursively();
        Write("out/hwids.mdb", "the old database");
        opened += Open() ? 1 : 0;
        if (!Extract()) {
            ExpectUntouched();
        } else {
            EXPECT_EQ(Read("out/hwids.mdb"), database) << how;
            EXPECT_EQ(Read("out/color_presets/Night.ini"), "[colors]") << how;
        }
    };
    const int steps = support::Rounds(24, int(archive.size()));
    for (int step = 0; step < steps; ++step) {
        const qsizetype at = archive.size() * step / steps;
        attempt(archive.first(at), "cut at " + std::to_string(at));
        QByteArray flipped = archive;
        flipped[at] = static_cast<char>(flipped.at(at) ^ (1 << (step % 8)));
        attempt(flipped, "bit of " + std::to_string(at));
    }
    attempt(archive + archive, "twice");
    attempt("junk" + archive, "behind junk");
    attempt(archive + QByteArray(5000, '\0'), "before junk");
    EXPECT_GT(opened, 0);
}

TEST_F(VszLibTest, AListingWithoutEndOrThatStallsIsNone) {
    zip_.SetStallLimit(300);
    for (const char* script : {"exec cat /dev/zero", "while :; do printf 'Path = a.txt\\nSize = 0\\n\\n'; done",
                               "exec sleep 60", "printf 'Path = a.txt'; exec sleep 60", "exit 2", "kill -9 $$"}) {
        FakeEngine(script);
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(Open()) << script;
        EXPECT_LT(timer.elapsed(), 10'000) << script;
        EXPECT_TRUE(EngineIsGone()) << script;
    }
    ExpectUntouched();
}

// The part of the test below that is killed; run by it alone.
TEST_F(VszLibTest, DISABLED_UnpackUntilKilled) {
    net::SetEngineFolders({qEnvironmentVariable("QUORVANE_TEST_ENGINE")});
    bool loaded = false;
    zip_.LoadEngine({}, loaded);
    ASSERT_TRUE(loaded);
    zip_.OpenArchive(qEnvironmentVariable("QUORVANE_TEST_ENGINE") + "/7za");
}

TEST_F(VszLibTest, TheEngineDiesWithAProgramThatIsKilled) {
    FakeEngine("exec sleep 60");
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QUORVANE_TEST_ENGINE", Path("engine"));
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(),
                  {"--gtest_also_run_disabled_tests", "--gtest_filter=*UnpackUntilKilled"});
    QElapsedTimer timer;
    timer.start();
    const QString idFile = "engine/pid";
    while (!Read(idFile).endsWith('\n') && !timer.hasExpired(10'000)) {
        base::YieldBlocking(20);
    }
    ASSERT_FALSE(EngineIsGone());
    program.kill();
    program.waitForFinished();
    timer.restart();
    while (!EngineIsGone() && !timer.hasExpired(5'000)) {
        base::YieldBlocking(20);
    }
    EXPECT_TRUE(EngineIsGone());
}

TEST_F(VszLibTest, StopAndCancelKillTheEngine) {
    const QByteArray listing = "Path = hwids.mdb\nSize = 30\nCRC = 352441C2\n\n";
    FakeEngine(listing, "printf abc; exec sleep 60");
    bool closing = false;
    zip_.SetStop([&closing] { return closing; });
    ASSERT_TRUE(Open());
    QTimer::singleShot(150, &zip_, [&closing] { closing = true; });
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(Extract());
    EXPECT_LT(timer.elapsed(), 5'000);
    EXPECT_TRUE(EngineIsGone());
    ExpectUntouched();
    closing = false;
    QObject::connect(&zip_, &net::VszLib::Progress, [](int, double now, double, bool& cancel) { cancel = now > 0; });
    EXPECT_FALSE(Extract());
    EXPECT_TRUE(EngineIsGone());
    ExpectUntouched();
}

TEST_F(VszLibTest, WithoutAnEngineNothingOpens) {
    Write("in/hwids.mdb", "new");
    Pack();
    // One that stands in the program's folder is never taken.
    Write("out/7za.dll", "#!/bin/sh\n");
    net::SetEngineFolders({Path("nowhere")});
    bool loaded = true;
    zip_.LoadEngine(Path("out\\7za.dll"), loaded);
    EXPECT_FALSE(loaded);
    EXPECT_FALSE(zip_.OpenArchive(Path("hwids.7z")));
}

TEST_F(VszLibTest, WhatIsRefusedKeepsEverythingElseBack) {
    for (const char* name : {"hwids.mdb", "z.MDB", "a.txt", "sub/b.txt"}) {
        Write(QStringLiteral("in/") + QLatin1String(name), "new");
    }
    Pack();
    ASSERT_TRUE(Open());
    QStringList asked;
    zip_.SetJudge([&asked, this](QList<net::UnpackedFile>& files) {
        for (const net::UnpackedFile& file : files) {
            asked.append(file.Name);
            EXPECT_EQ(Read(QDir(root_.path()).relativeFilePath(file.Path)), "new") << qPrintable(file.Name);
        }
        return false;
    });
    // Refused before the first is put in place, or while the second is: that one takes the first back.
    QStringList replaced;
    const auto replace = [&replaced](const QString& from, const QString& to) {
        replaced.append(QFileInfo(to).fileName());
        QFile::remove(to);
        return replaced.last() != "z.MDB" && QFile::rename(from, to);
    };
    zip_.SetDatabaseReplacer(replace);
    EXPECT_FALSE(Extract());
    EXPECT_EQ(asked.size(), 4);
    EXPECT_EQ(replaced, QStringList());
    ExpectUntouched();
    zip_.SetJudge({});
    EXPECT_FALSE(Extract());
    EXPECT_EQ(replaced, (QStringList{"hwids.mdb", "z.MDB", "hwids.mdb"}));
    ExpectUntouched();
    zip_.SetDatabaseReplacer({});
    zip_.SetJudge([](QList<net::UnpackedFile>& files) {
        files.removeIf([](const net::UnpackedFile& file) { return file.Name == "a.txt"; });
        return true;
    });
    EXPECT_TRUE(Extract());
    EXPECT_EQ(Read("out/z.MDB"), "new");
    EXPECT_EQ(Read("out/a.txt"), "missing") << "what the judge takes off stays out";
}

// Small archives of much: a click is served within 50 ms while they are looked at, and little comes to the disk.
TEST_F(VszLibTest, ASmallArchiveOfMuchHoldsNothingUp) {
    constexpr int longest = 50;             // milliseconds
    constexpr qint64 mostOnDisk = 56 << 20; // bytes
    constexpr int attempts = 4;             // as a busy disk may hold up even what touches it once
    struct Case {
        const char* what;
        int files;
        const char* ending;
        qint64 size;
        bool good;
    };
    for (const Case& tried : {Case{"as many as may be", 60, ".txt", 0, true},
                              {"empty texts", 2'000, ".txt", 0, false},
                              {"small databases", 500, ".mdb", 8, false},
                              {"folders", 2'000, "/", 0, false},
                              {"one long text", 1, ".txt", 250 << 20, false},
                              {"a long database", 1, ".mdb", 49 << 20, false},
                              {"a database as long as may be", 1, ".mdb", 48 << 20, true}}) {
        QDir(Path("in")).removeRecursively();
        Write("in/x.txt", "x");
        for (int i = 0; i < tried.files; ++i) {
            const QString name = QStringLiteral("in/%1").arg(i) + QLatin1String(tried.ending);
            if (*tried.ending == '/') {
                QDir(root_.path()).mkdir(name.chopped(1));
                continue;
            }
            QFile file(Path(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(tried.size));
        }
        Pack({"-mx=1"});
        EXPECT_LT(Read("hwids.7z").size(), 1 << 20) << tried.what;
        int held = longest + 1;
        for (int attempt = 0; held > longest && attempt < attempts; ++attempt) {
            QDir(Path("out")).removeRecursively();
            Write("out/hwids.mdb", "the old database");
            qint64 largest = 0;
            zip_.SetJudge([&](QList<net::UnpackedFile>& files) {
                for (const net::UnpackedFile& file : files)
                    largest += QFileInfo(file.Path).size();
                return true;
            });
            support::HoldUp holdUp;
            const bool opened = Open();
            EXPECT_EQ(opened && Extract(), tried.good) << tried.what;
            held = holdUp.Longest();
            EXPECT_LE(largest, mostOnDisk) << tried.what;
            if (!tried.good) {
                EXPECT_EQ(largest, 0) << tried.what;
                ExpectUntouched();
            }
        }
        RecordProperty(std::string("longest wait in ms, ") + tried.what, held);
        EXPECT_LE(held, longest) << tried.what;
    }
}

TEST_F(VszLibTest, WhatAKilledProcessLeftIsRemoved) {
    Write("in/hwids.mdb", "new");
    Pack();
    Write("out/.unpacking-999999/0", "half");
    ASSERT_TRUE(Open());
    EXPECT_TRUE(Extract());
    EXPECT_FALSE(QFile::exists(Path("out/.unpacking-999999")));
    EXPECT_EQ(Read("out/hwids.mdb"), "new");
}

} // namespace
