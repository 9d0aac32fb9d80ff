// The program's folder with a small database in it, open through the store.
#pragma once

#include "base/paths.h"
#include "data/command.h"
#include "database/database_builder.h"
#include "database/store.h"
#include "suite/list_items.h"
#include "values/program_values.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>

class StoreFixture : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(Folder.isValid());
        base::SetProgramFolder(Folder.path());
        values::Program() = values::ProgramValues();
    }

    void TearDown() override {
        database::CloseDeviceDatabase();
        database::SetFatalHandlers(nullptr, nullptr);
        values::Program() = values::ProgramValues();
    }

    QString Path() const { return Folder.filePath("hwids.mdb"); }

    void WriteAndOpen(const database::DatabaseBuilder& builder) {
        QString error;
        ASSERT_TRUE(builder.Write(Path(), "2.3.4", &error)) << error.toStdString();
        ASSERT_TRUE(database::OpenDeviceDatabase());
    }

    static void Run(const QString& statement) {
        data::Recordset change;
        change.Open(statement, database::DatabaseConnection());
    }

    static void SetInfo(const QString& hwid, const QString& info) {
        data::Command command;
        command.SetActiveConnection(database::DatabaseConnection());
        command.SetCommandText("UPDATE hwids SET info = ? WHERE hwid = ?");
        command.AppendParameter({QString(), data::adLongVarChar, data::adParamInput, info.size(), info});
        command.AppendParameter({QString(), data::adVarChar, data::adParamInput, hwid.size(), hwid});
        command.Execute();
    }

    // The columns of a list of matches.
    static void AddColumns(suite::ListItems& rows) {
        for (const char* key : {"Name", "Manufacturer", "HardwareIDs", "L"}) {
            rows.AddColumn(QLatin1String(key), QLatin1String(key), 1500);
        }
    }

    static QStringList Column(const QString& query, const QString& column) {
        QStringList values;
        data::Recordset rows;
        for (rows.Open(query, database::DatabaseConnection()); !rows.Eof(); rows.MoveNext()) {
            values.append(rows.Value(column).toString());
        }
        return values;
    }

    QTemporaryDir Folder;
};
