#include "database_fixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

using namespace data;

class ConnectionTest : public DatabaseFixture {
  protected:
    static Error Failure(const QString& path) {
        Error error;
        EXPECT_FALSE(Ran([&] { Connect(path); }, &error)) << path.toStdString();
        return error;
    }

    void Write(const char* name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QByteArray Read(const char* name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(ConnectionTest, WhatIsNoDatabaseFailsAtOpen) {
    const Error missing = Failure(Path("none.mdb"));
    EXPECT_EQ(missing.Number(), -2147467259);
    EXPECT_EQ(missing.Description(), QStringLiteral("Could not find file '%1'.").arg(Path("none.mdb")));
    EXPECT_FALSE(QFile::exists(Path("none.mdb")));

    EXPECT_EQ(Failure(Folder.path()).Number(), ErrorUnspecified);

    const QByteArray whole = Read("hwids.mdb");
    Write("text.mdb", "hwid,info\r\n");
    Write("empty.mdb", "");
    Write("cut.mdb", whole.left(whole.size() / 2));
    Write("cut-header.mdb", whole.left(60));
    Write("random.mdb", QByteArray(8192, '\x5A'));
    for (const char* name : {"text.mdb", "empty.mdb", "cut.mdb", "cut-header.mdb", "random.mdb"}) {
        const QByteArray before = Read(name);
        EXPECT_EQ(Failure(Path(name)).Description(),
                  QStringLiteral("Unrecognized database format '%1'.").arg(Path(name)));
        EXPECT_EQ(Read(name), before) << name;
    }
}

TEST_F(ConnectionTest, TakesTheProgramsPathsAndFoldersWithSemicolons) {
    ASSERT_TRUE(QDir(Folder.path()).mkdir("a;b"));
    Make(Folder.filePath("a;b/hwids.mdb"));
    EXPECT_EQ(Connect(Folder.path() + "\\a;b\\HWIDS.mdb")->State(), adStateOpen);

    Connection connection;
    connection.SetConnectionString("Provider=Other;Data Source=" + Path());
    EXPECT_EQ(NumberOf([&] { connection.Open(); }), ErrorProviderNotFound);
    EXPECT_EQ(ErrorProviderNotFound, -2146824582);
}

TEST_F(ConnectionTest, ParameterSizesAreEnforcedAndTheIdentityStays) {
    const auto connection = Connect(Path());
    const auto add = [&](const QString& name) {
        Command command;
        command.SetActiveConnection(connection);
        command.SetPrepared(true);
        command.SetCommandText("INSERT INTO devicenames (devicename) VALUES(?)");
        command.AppendParameter({QString(), adVarChar, adParamInput, 100, name});
        command.Execute(adCmdText + adExecuteNoRecords);
    };
    const auto identity = [&] {
        Command command;
        command.SetActiveConnection(connection);
        command.SetCommandText("SELECT @@Identity");
        return command.Execute(adCmdText)->Value(0).toInt();
    };
    EXPECT_EQ(identity(), 0);
    add(QString(100, QChar(0x416)));
    add("second");
    EXPECT_EQ(identity(), 2);
    EXPECT_EQ(NumberOf([&] { add(QString(101, u'x')); }), ErrorDataConversion);
    EXPECT_EQ(identity(), 2);
    EXPECT_EQ(Select(connection, "SELECT * FROM devicenames")->RecordCount(), 2);

    Command incomplete;
    incomplete.SetActiveConnection(connection);
    incomplete.SetCommandText("INSERT INTO devicenames (devicename) VALUES(?)");
    EXPECT_EQ(NumberOf([&] { incomplete.Execute(); }), ErrorInCommand);
    incomplete.SetActiveConnection(nullptr);
    EXPECT_EQ(NumberOf([&] { incomplete.Execute(); }), ErrorInvalidConnection);
}

TEST_F(ConnectionTest, ATransactionIsTakenBackWhole) {
    const auto connection = Connect(Path());
    connection->BeginTrans();
    EXPECT_NE(NumberOf([&] { connection->BeginTrans(); }), 0);
    Insert(connection, "a", QString());
    connection->RollbackTrans();
    connection->RollbackTrans();
    EXPECT_NE(NumberOf([&] { connection->CommitTrans(); }), 0);
    EXPECT_EQ(InfoOf(connection, "a"), "(none)");
}

TEST_F(ConnectionTest, AReplacedFileIsFollowedAndAnUnlinkedOneNeverWritten) {
    const auto connection = Connect(Path());
    Insert(connection, "a", "old");
    const quint64 generation = connection->Generation();
    EXPECT_EQ(connection->Generation(), generation);
    const auto row = Select(connection, "SELECT * FROM hwids Where hwid = 'a'");
    const auto whole = Select(connection, "SELECT * FROM hwids");

    Make(Path("new.mdb"));
    Insert(Connect(Path("new.mdb")), "a", "old");
    QString error;
    ASSERT_TRUE(ReplaceDatabaseFile(Path("new.mdb"), Path(), &error)) << error.toStdString();
    EXPECT_FALSE(QFile::exists(Path("new.mdb")));
    EXPECT_FALSE(QFile::exists(Path("hwids.mdb.lock")));

    // The old file's row has the same number and the same content as the new one's; it is another row all the same.
    row->SetValue("info", "written through");
    EXPECT_EQ(NumberOf([&] { row->Update(); }), ErrorRowNotLocated);
    EXPECT_NE(connection->Generation(), generation);
    Insert(connection, "b", "new");
    EXPECT_EQ(InfoOf(Connect(Path()), "b"), "new");

    ASSERT_TRUE(QFile::remove(Path()));
    EXPECT_NE(NumberOf([&] { Insert(connection, "c", QString()); }), 0);
    EXPECT_NE(NumberOf([&] { connection->BeginTrans(); }), 0);
    EXPECT_EQ(InfoOf(connection, "b"), "new");
    EXPECT_FALSE(QFile::exists(Path()));
}

// Left by a process that was killed, whose number another process of the program has now: this one.
TEST_F(ConnectionTest, ALockFileThatNobodyHoldsKeepsNobodyOut) {
    QFile lock(Path("hwids.mdb.lock"));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    const QByteArray name = QFileInfo(QCoreApplication::applicationFilePath()).fileName().toUtf8();
    lock.write(QByteArray::number(QCoreApplication::applicationPid()) + '\n' + name + '\n' +
               QSysInfo::machineHostName().toUtf8() + "\n");
    lock.close();
    Make(Path("new.mdb"));
    QString error;
    EXPECT_TRUE(ReplaceDatabaseFile(Path("new.mdb"), Path(), &error)) << error.toStdString();
    EXPECT_FALSE(lock.exists());
}

TEST_F(ConnectionTest, AJournalOfTheOldFileDoesNotReachTheNewOne) {
    // The file and journal of a write that was cut off: copied in the middle of a transaction that spilled to the file.
    const auto connection = Connect(Path());
    connection->BeginTrans();
    for (int i = 0; i < 3000; ++i) {
        Insert(connection, QStringLiteral("long name to fill pages %1").arg(i), QString(1000, u'x'));
    }
    ASSERT_TRUE(QFile::exists(Path("hwids.mdb-journal")));
    ASSERT_TRUE(QFile::copy(Path(), Path("cut.mdb")));
    ASSERT_TRUE(QFile::copy(Path("hwids.mdb-journal"), Path("cut.mdb-journal")));
    connection->RollbackTrans();

    Make(Path("new.mdb"));
    Insert(Connect(Path("new.mdb")), "fresh", "1,1\r\n");
    QString error;
    ASSERT_TRUE(ReplaceDatabaseFile(Path("new.mdb"), Path("cut.mdb"), &error)) << error.toStdString();
    EXPECT_FALSE(QFile::exists(Path("cut.mdb-journal")));
    const auto replaced = Connect(Path("cut.mdb"));
    EXPECT_EQ(InfoOf(replaced, "fresh"), "1,1\r\n");
    EXPECT_EQ(Select(replaced, "SELECT * FROM hwids")->RecordCount(), 1);
}

TEST_F(ConnectionTest, ReplacesBrokenAndMissingFilesButNoFolder) {
    Write("broken.mdb", "no database");
    Make(Path("new.mdb"));
    EXPECT_TRUE(ReplaceDatabaseFile(Path("new.mdb"), Path("broken.mdb")));
    EXPECT_TRUE(ReplaceDatabaseFile(Path("broken.mdb"), Path("none-before.mdb")));
    EXPECT_EQ(Connect(Path("none-before.mdb"))->State(), adStateOpen);

    QString error;
    EXPECT_FALSE(ReplaceDatabaseFile(Path("none-before.mdb"), Folder.path(), &error));
    EXPECT_FALSE(ReplaceDatabaseFile(Path("not there.mdb"), Path(), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(Connect(Path())->State(), adStateOpen);
    EXPECT_FALSE(CreateDatabaseFile(Path(), {"CREATE TABLE x (y)"}));
    EXPECT_FALSE(CreateDatabaseFile(Path("bad.mdb"), {"CREATE TABLE"}, &error));
    EXPECT_FALSE(QFile::exists(Path("bad.mdb")));
}
