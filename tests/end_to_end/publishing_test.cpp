#include "data/replace_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

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
    QFile text(Path(QStringLiteral("text.mdb")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no database");
    text.close();
    const QString out = Path(QStringLiteral("out"));
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("none.mdb"))}), 1);
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("text.mdb"))}), 1);
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("long.mdb"))}), 1);
    EXPECT_TRUE(complaint_.contains("2.6.01234567890"));
    EXPECT_EQ(Pack(out, {Path(QStringLiteral("good.mdb")), QStringLiteral("--program-version"),
                         QStringLiteral("10.20.3000")}),
              1);
    EXPECT_EQ(Pack(out), 2);
    EXPECT_FALSE(QFile::exists(out + QStringLiteral("/hwids.7z")));
}

} // namespace
