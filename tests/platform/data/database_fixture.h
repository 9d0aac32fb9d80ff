// A folder with a small database of devices, made anew for each test.
#pragma once

#include "data/command.h"
#include "data/connection.h"
#include "data/error.h"
#include "data/recordset.h"
#include "data/replace_file.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>

class DatabaseFixture : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Folder.isValid());
        Make(Path());
    }

    QString Path(const char* name = "hwids.mdb") const { return Folder.filePath(QLatin1String(name)); }

    static void Make(const QString& path) {
        QString error;
        ASSERT_TRUE(data::CreateDatabaseFile(
            path,
            {"CREATE TABLE hwids (hwid TEXT COLLATE NOCASE, info TEXT)",
             "CREATE TABLE devicenames (ID INTEGER PRIMARY KEY, devicename TEXT COLLATE NOCASE)"},
            &error))
            << error.toStdString();
    }

    static data::ConnectionPtr Connect(const QString& path) {
        auto connection = std::make_shared<data::Connection>();
        connection->SetConnectionString("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path + QLatin1Char(';'));
        connection->Open();
        return connection;
    }

    static void Insert(const data::ConnectionPtr& connection, const QString& hwid, const QString& info) {
        data::Command command;
        command.SetActiveConnection(connection);
        command.SetCommandText("INSERT INTO hwids (hwid,info) VALUES(?,?)");
        command.AppendParameter({QString(), data::adVarChar, data::adParamInput, 125, hwid});
        command.AppendParameter({QString(), data::adLongVarChar, data::adParamInput, info.size(), info});
        command.Execute(data::adCmdText + data::adExecuteNoRecords);
    }

    static data::RecordsetPtr Select(const data::ConnectionPtr& connection, const QString& query) {
        auto rows = std::make_shared<data::Recordset>();
        rows->Open(query, connection);
        return rows;
    }

    static QString InfoOf(const data::ConnectionPtr& connection, const QString& hwid) {
        const auto rows =
            Select(connection, QStringLiteral("SELECT * FROM hwids Where [hwids].[hwid] = '%1'").arg(hwid));
        return rows->Eof() ? "(none)" : rows->Value("info").toString();
    }

    QTemporaryDir Folder;
};

template <typename Statement> qint32 NumberOf(Statement&& statement) {
    data::Error error;
    return data::Ran(statement, &error) ? 0 : error.Number();
}
