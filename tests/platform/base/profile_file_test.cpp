#include "base/paths.h"
#include "base/profile_file.h"
#include "values/settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class SettingsTest : public testing::Test {
  protected:
    void SetUp() override { base::SetProgramFolder(folder_.path()); }

    QString File(const char* name) const { return folder_.filePath(name); }
    QByteArray Bytes(const char* name) const {
        QFile file(File(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void Put(const char* name, const QByteArray& bytes) const {
        QFile file(File(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static QString Read(const char* key) {
        QString path;
        return values::ReadSetting("main", key, path);
    }

    QTemporaryDir folder_;
};

} // namespace

TEST_F(SettingsTest, FirstWriteMakesAUnicodeFile) {
    QString path;
    EXPECT_EQ(values::ReadSetting("main", "a", path), QString());
    EXPECT_FALSE(QFile::exists(File("settings.ini")));
    EXPECT_EQ(path, folder_.path() + "\\settings.ini");
    const QString value = QString::fromUtf8("Grün Ж 漢");
    EXPECT_TRUE(values::WriteSetting("main", "a", value, path));
    EXPECT_TRUE(Bytes("settings.ini").startsWith("\xFF\xFE"));
    EXPECT_EQ(Read("A"), value);
}

TEST_F(SettingsTest, BothSpellingsNameOneFile) {
    QString path;
    values::WriteSetting("main", "a", "1", path);
    QString capital = values::SettingsPath();
    values::WriteSetting("main", "b", "2", capital);
    EXPECT_FALSE(QFile::exists(File("Settings.ini")));
    // Also where somebody has put a second one beside it.
    Put("Settings.ini", "[main]\r\na=9\r\n");
    values::WriteSetting("main", "b", "2", capital);
    EXPECT_EQ(Bytes("Settings.ini"), "[main]\r\na=9\r\n");
    EXPECT_EQ(Read("b"), "2");
    EXPECT_TRUE(values::ReadFlag("main", "a"));
    EXPECT_FALSE(values::ReadFlag("main", "missing"));
}

TEST_F(SettingsTest, WritesLeaveTheRestAlone) {
    Put("settings.ini", "; note\r\n[Main]\r\nx = \"1\"\r\n\r\n[other]\r\ny=2\r\n[main]\r\nx=9\r\nz=9");
    EXPECT_EQ(Read("x"), "1");
    EXPECT_EQ(Read("z"), QString()); // the first section of a name wins
    QString path;
    values::WriteSetting("main", "new", QString::fromUtf8("é"), path);
    values::WriteSetting("MAIN", "X", "3", path);
    EXPECT_EQ(Bytes("settings.ini"),
              QByteArray("; note\r\n[Main]\r\nX=3\r\nnew=\xE9\r\n\r\n[other]\r\ny=2\r\n[main]\r\nx=9\r\nz=9"));
    values::WriteSetting("third", "k", "v", path);
    EXPECT_TRUE(Bytes("settings.ini").endsWith("z=9\r\n[third]\r\nk=v\r\n"));
}

TEST_F(SettingsTest, LongValuesAreCutWhenRead) {
    QString path;
    values::WriteSetting("main", "long", QString(3000, u'x'), path);
    EXPECT_EQ(Read("long").size(), 2047);
}

TEST_F(SettingsTest, SurvivesNoiseAndRefusesLineBreaks) {
    QString path;
    for (const QByteArray& bytes : {QByteArray(), QByteArray("\xFF\xFE"), QByteArray("\xFF\xFE\x5B"),
                                    QByteArray("[[[=\n]=\r[main"), QByteArray(100, '\0'), QByteArray("[main\nx=1")}) {
        Put("settings.ini", bytes);
        Read("x");
        EXPECT_TRUE(values::WriteSetting("main", "x", "5", path));
        EXPECT_EQ(Read("x"), "5") << bytes.toHex().constData();
    }
    EXPECT_FALSE(values::WriteSetting("main", "x\n[colors]", "5", path));
    // A file too large to take in must not be replaced by a single key.
    Put("settings.ini", QByteArray(5 * 1024 * 1024, 'n'));
    EXPECT_FALSE(values::WriteSetting("main", "x", "6", path));
    EXPECT_EQ(Bytes("settings.ini").size(), 5 * 1024 * 1024);
}

// Nothing yields while settings are read: small files cost little, and the largest of any form not much.
TEST_F(SettingsTest, FilesOfAnyFormAreReadInABoundedTime) {
    std::clock_t begun = std::clock();
    // What held up a fuzzer while room was made for the largest file: dear under sanitizers, whose suite this is for.
    Put("settings.ini", "y\n=nov!\x8E\x8A\x9A\xF5[c;comment\n[ colors&]junk\nprogra]ors]\nprogramback=8");
    for (int i = 0; i < 5000; ++i)
        EXPECT_EQ(Read("x"), QString());
    EXPECT_LT(std::clock() - begun, 3 * CLOCKS_PER_SEC);

    begun = std::clock();
    constexpr qsizetype size = 4 << 20;
    for (const QByteArray& piece : {QByteArray("\n"), QByteArray("[\n"), QByteArray("=\r\n"), QByteArray("[")}) {
        Put("settings.ini", "[main]\n" + piece.repeated((size - 20) / piece.size()));
        EXPECT_EQ(Read("x"), QString()) << piece.toHex().constData();
        QString path = values::SettingsPath();
        EXPECT_TRUE(values::WriteSetting("main", "x", "5", path)) << piece.toHex().constData();
    }
    EXPECT_LT(std::clock() - begun, 20 * CLOCKS_PER_SEC);
}

TEST_F(SettingsTest, ABatchStoresAllItsWritesAtItsEnd) {
    QString path;
    values::WriteSetting("main", "x", "1", path);
    const QByteArray before = Bytes("settings.ini");
    {
        const base::ProfileBatch batch(path);
        QString other = path + ".other";
        EXPECT_TRUE(values::WriteSetting("main", "x", "2", path));
        EXPECT_TRUE(values::WriteSetting("colors", "y", "3", path));
        EXPECT_TRUE(values::WriteSetting("main", "x", "4", other));
        EXPECT_EQ(Bytes("settings.ini"), before);
        EXPECT_EQ(Read("x"), "2");
    }
    EXPECT_NE(Bytes("settings.ini"), before);
    EXPECT_EQ(Read("x"), "2");
    EXPECT_EQ(values::ReadSetting("colors", "y", path), "3");
}

TEST_F(SettingsTest, WhatIsNoPlainFileIsNoFile) {
    const QByteArray place = QFile::encodeName(File("settings.ini"));
    const std::function<int()> ways[] = {[&] { return mkdir(place.constData(), 0700); },
                                         [&] { return mkfifo(place.constData(), 0600); },
                                         [&] { return symlink("/dev/full", place.constData()); }};
    for (const auto& way : ways) {
        ASSERT_EQ(way(), 0);
        QString path;
        EXPECT_FALSE(values::WriteSetting("main", "x", "6", path));
        EXPECT_EQ(Read("x"), QString());
        EXPECT_EQ(QDir(folder_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System),
                  QStringList{"settings.ini"});
        ASSERT_EQ(std::remove(place.constData()), 0);
    }
}

TEST_F(SettingsTest, ALinkLeadsToTheFileUnlessSomebodyElsePutItThere) {
    const QByteArray place = QFile::encodeName(File("settings.ini"));
    for (const bool foreign : {false, true}) {
        ASSERT_EQ(symlink("kept.ini", place.constData()), 0);
        if (foreign && lchown(place.constData(), 12345, 12345) != 0)
            GTEST_SKIP() << "no right to give a link away";
        QString path;
        EXPECT_TRUE(values::WriteSetting("main", "x", foreign ? "2" : "1", path));
        EXPECT_EQ(Read("x"), foreign ? "2" : "1");
        EXPECT_EQ(QFileInfo(File("settings.ini")).isSymLink(), !foreign);
        EXPECT_EQ(values::ReadSetting("main", "x", path = File("kept.ini")), "1");
        QFile::remove(File("settings.ini"));
    }
}
