#include "base/paths.h"
#include "data/replace_file.h"
#include "net/vsz_lib.h"
#include "updating/download.h"
#include "updating/update_check.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "web_server.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

using end_to_end::WebServer;

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

// The whole way of an update without windows: packed, published, found, fetched, unpacked in the old one's place.
TEST_F(PackTest, APublishedDatabaseReachesTheProgram) {
    const WebServer server(QStringLiteral(QUORVANE_SERVER_FOLDER));
    if (server.Fault().contains(QStringLiteral("not installed"))) {
        GTEST_SKIP() << qPrintable(server.Fault());
    }
    ASSERT_TRUE(server.Fault().isEmpty()) << qPrintable(server.Fault());
    const values::Addresses before = values::ServerAddresses();
    values::ServerAddresses().UpdateHost = server.Url();
    MakeDatabase(QStringLiteral("new.mdb"), QStringLiteral("2.6.0"));
    MakeDatabase(QStringLiteral("hwids.mdb"), QStringLiteral("2.5.0"));
    ASSERT_EQ(
        Pack(server.PublicFolder() + QStringLiteral("/files/updates/quorvane"), {Path(QStringLiteral("new.mdb"))}), 0)
        << complaint_.constData();

    net::Inet inet;
    bool notice = false;
    updating::CheckForDatabaseUpdateSilent(inet, QStringLiteral("Database Version: 2.5.0"),
                                           [&notice](bool visible) { notice = visible; });
    EXPECT_TRUE(notice);

    updating::DownLoadControl download;
    bool complete = false;
    QObject::connect(&download, &updating::DownLoadControl::DLComplete, [&complete] { complete = true; });
    download.SetURL(updating::DatabaseArchiveUrl());
    download.SetSaveLocation(Path(QStringLiteral("hwids.7z")));
    download.GetFileInformation();
    download.DownLoad();
    ASSERT_TRUE(complete);

    net::VszLib zip;
    bool loaded = false;
    zip.LoadEngine(Path(QStringLiteral("7za.dll")), loaded);
    zip.SetDatabaseReplacer([](const QString& from, const QString& to) { return data::ReplaceDatabaseFile(from, to); });
    ASSERT_TRUE(loaded && zip.OpenArchive(Path(QStringLiteral("hwids.7z"))) && zip.ExtractAll(folder_.path()));
    EXPECT_EQ(Read(Path(QStringLiteral("hwids.mdb"))), Read(Path(QStringLiteral("new.mdb"))));
    values::ServerAddresses() = before;
}

} // namespace
