// Whole databases: a good one with bytes turned, rows and definitions out of the input. What is judged good can be
// opened, searched and walked within its limits; what is not is refused in words; nothing crashes, waits or runs.
#include "data/error.h"
#include "data/file_judge.h"
#include "data/recordset.h"
#include "database/database_builder.h"
#include "database/device_info.h"
#include "database/schema.h"
#include "database/store.h"
#include "fuzz_support.h"

#include <QFile>
#include <iterator>
#include <sqlite3.h>

namespace {

constexpr int mostRows = 20'000; // that one query may bring

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Some pages of rows, with chains of pages among them.
const QByteArray& GoodDatabase() {
    static const QByteArray bytes = [] {
        fuzz::NeedApplication();
        const QString path = fuzz::Folder() + QStringLiteral("/good.mdb");
        database::DatabaseBuilder builder;
        for (int i = 0; i < 60; ++i) {
            builder.Add(QStringLiteral("PCI\\VEN_%1").arg(i), QString(i, u'n'), QStringLiteral("Maker %1").arg(i % 7));
        }
        for (int i = 0; i < 1500; ++i) {
            builder.Add(QStringLiteral("USB\\LONG"), QStringLiteral("Name %1").arg(i), QStringLiteral("Maker"));
        }
        QString error;
        fuzz::Require(builder.Write(path, QStringLiteral("1.0.0"), &error), "a database is made");
        return ReadFile(path);
    }();
    return bytes;
}

// Statements that other hands might have made the file with.
void Define(const QString& path, fuzz::Reader& reader) {
    static const char* const statements[] = {
        "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET sql = ?1 WHERE rowid = ?2",
        "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET rootpage = ?2 WHERE name = ?1",
        "INSERT INTO hwids VALUES (?1, zeroblob(?2))",
        "INSERT INTO hwids VALUES (?1, ?1)",
        "INSERT INTO mfgs VALUES (?2, ?1)",
        "UPDATE version SET dbversion = ?1",
        "DROP INDEX hwids_hwid",
    };
    sqlite3* handle = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &handle);
    sqlite3_exec(handle, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr);
    // A definition out of the input reaches no other file and ends.
    sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_progress_handler(
        handle, 1'000'000, [](void*) { return 1; }, nullptr);
    for (int count = reader.Number(0, 3); count > 0; --count) {
        const char* left = statements[reader.Number(0, int(std::size(statements)) - 1)];
        const QByteArray text = reader.Piece();
        const int number = reader.Word();
        while (left != nullptr && *left != '\0') {
            sqlite3_stmt* statement = nullptr;
            sqlite3_prepare_v2(handle, left, -1, &statement, &left);
            if (statement == nullptr)
                break;
            sqlite3_bind_text(statement, 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            sqlite3_bind_int(statement, 2, number);
            sqlite3_step(statement);
            sqlite3_finalize(statement);
        }
    }
    if (reader.Byte() % 8 == 0) {
        // A whole definition out of the input.
        const QByteArray text = reader.Piece();
        sqlite3_exec(handle, text.constData(), nullptr, nullptr, nullptr);
    }
    sqlite3_close(handle);
}

void Turn(const QString& path, fuzz::Reader& reader) {
    QByteArray bytes = ReadFile(path);
    while (!reader.AtEnd() && !bytes.isEmpty()) {
        // Near the head of a page, where its form is told, or anywhere.
        const int page = reader.Number(0, int(bytes.size() / 4096));
        const qsizetype at = page * 4096 + (reader.Byte() % 2 == 0 ? reader.Byte() : reader.Number(0, 4095));
        if (at < bytes.size())
            bytes[at] = char(reader.Byte());
    }
    fuzz::WriteFile(QStringLiteral("hwids.mdb"), bytes);
}

int Walked(const char* table) {
    int rows = 0;
    data::Ran([&] {
        data::Recordset walk;
        for (walk.Open(QStringLiteral("SELECT * FROM ") + QLatin1String(table), database::DatabaseConnection());
             !walk.Eof() && rows < mostRows; walk.MoveNext())
            ++rows;
    });
    return rows;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    const QString path = fuzz::WriteFile(QStringLiteral("hwids.mdb"), GoodDatabase());
    for (const char* ending : {"-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(ending));
    Define(path, reader);
    Turn(path, reader);
    const QString wrong = data::JudgeDatabaseFile(path, database::Rules());
    data::Error error;
    const bool opened = database::OpenDatabaseFile(path, &error);
    fuzz::Require(opened || !error.Description().isEmpty(), "a refusal has words");
    fuzz::Require(opened || !wrong.isEmpty(), "what is judged good opens");
    if (!opened)
        return 0;
    for (const char* table : {"hwids", "devicenames", "mfgs", "version"})
        Walked(table);
    qint64 entries = 0;
    data::Ran([&] {
        data::Recordset rows;
        rows.Open(QStringLiteral("SELECT * FROM hwids Where [hwids].[hwid] = 'USB\\LONG'"),
                  database::DatabaseConnection());
        fuzz::Require(rows.RecordCount() <= mostRows, "a query brings no more than it may");
        for (; !rows.Eof(); rows.MoveNext())
            entries += qint64(database::DecodeInfo(rows.Value(QStringLiteral("info")).toString()).size());
    });
    fuzz::Require(entries < 1'100'000, "what a query brings is bounded");
    database::DeviceNameById(QStringLiteral("1"));
    database::ManufacturerById(QStringLiteral("1"));
    database::ReadVersionAndCount();
    database::CloseDeviceDatabase();
    return 0;
}
