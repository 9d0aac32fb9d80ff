#include "data/workspace.h"

#include "data/cells.h"
#include "data/error.h"
#include "data/guarded_handle.h"
#include "data/schema_judge.h"

#include <QFileInfo>
#include <QUrl>
#include <sqlite3.h>
#include <unistd.h>

namespace data {

namespace {

int Wait(void* patience, int waits) {
    ::usleep(1000);
    return waits < *static_cast<const int*>(patience) ? 1 : 0;
}

// Leaves a statement reset however its use ends.
struct Reset {
    sqlite3_stmt* Statement;
    ~Reset() {
        sqlite3_reset(Statement);
        sqlite3_clear_bindings(Statement);
    }
};

} // namespace

Workspace::Workspace() {
    const int code = sqlite3_open_v2("", &handle_,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI |
                                         SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
                                     nullptr);
    // A negative size is in KiB: what is kept of either file in memory before it is written out.
    if (code != SQLITE_OK ||
        sqlite3_exec(handle_, "PRAGMA main.cache_size=-16384", nullptr, nullptr, nullptr) != SQLITE_OK) {
        const Error error(ErrorUnspecified, QString::fromUtf8(sqlite3_errmsg(handle_)));
        sqlite3_close(handle_);
        throw error;
    }
    sqlite3_busy_handler(handle_, Wait, &patience_);
    sqlite3_limit(handle_, SQLITE_LIMIT_LENGTH, LongestValue);
    sqlite3_limit(handle_, SQLITE_LIMIT_ATTACHED, 1);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

Workspace::~Workspace() {
    FinishStatements();
    sqlite3_close(handle_);
}

void Workspace::Attach(const QString& nativePath, const DatabaseRules& rules, int patience) {
    FinishStatements();
    if (attached_) {
        attached_ = false;
        Change("DETACH live");
    }
    patience_ = patience;
    // What it is and what lies beside it; its definitions once more below, of the file that was then attached.
    OpenGuarded(nativePath, &rules);
    const QByteArray path = QUrl::toPercentEncoding(QFileInfo(nativePath).absoluteFilePath(), "/");
    // Never made by being attached.
    Change("ATTACH ? AS live", {QString::fromLatin1("file:" + path + "?mode=rw")});
    attached_ = true;
    for (const char* setting : {"PRAGMA live.synchronous=EXTRA", "PRAGMA live.cache_size=-32768",
                                "PRAGMA live.journal_mode=DELETE", "PRAGMA cell_size_check=ON"}) {
        Change(setting);
    }
    std::vector<SchemaObject> objects;
    Each("SELECT type, name, tbl_name, sql FROM live.sqlite_schema", {}, [&objects](const Row& row) {
        objects.push_back({row[0].toString().toUtf8(), row[1].toString().toUtf8(), row[2].toString().toUtf8(),
                           row[3].toString().toUtf8()});
    });
    const QString wrong = JudgeSchema(objects, rules);
    if (!wrong.isEmpty()) {
        throw Error(ErrorUnspecified, QStringLiteral("not a device database (%1)").arg(wrong));
    }
}

bool Workspace::Moved() const {
    int moved = 0;
    sqlite3_file_control(handle_, "live", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void Workspace::FinishStatements() {
    for (const Prepared& prepared : statements_) {
        sqlite3_finalize(prepared.Statement);
    }
    statements_.clear();
}

void Workspace::Fail(int code) const {
    // Written to is what stands under the name, or nothing.
    throw code == SQLITE_READONLY_DBMOVED ? Error(ErrorInvalidConnection)
                                          : Error(ErrorUnspecified, QString::fromUtf8(sqlite3_errmsg(handle_)));
}

sqlite3_stmt* Workspace::Prepare(const QByteArray& sql, const std::vector<QVariant>& values) {
    sqlite3_stmt* statement = nullptr;
    for (const Prepared& prepared : statements_) {
        if (prepared.Sql == sql) {
            statement = prepared.Statement;
        }
    }
    if (statement == nullptr) {
        const int code = sqlite3_prepare_v3(handle_, sql.constData(), int(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                            &statement, nullptr);
        if (code != SQLITE_OK) {
            Fail(code);
        }
        statements_.push_back({sql, statement});
    }
    int at = 0;
    for (const QVariant& value : values) {
        const int code = BindCell(statement, ++at, value);
        if (code != SQLITE_OK) {
            Fail(code);
        }
    }
    return statement;
}

int Workspace::Change(const QByteArray& sql, const std::vector<QVariant>& values) {
    Each(sql, values, [](const Row&) {});
    return sqlite3_changes(handle_);
}

void Workspace::Each(const QByteArray& sql, const std::vector<QVariant>& values,
                     const std::function<void(const Row&)>& use) {
    sqlite3_stmt* statement = Prepare(sql, values);
    const Reset reset{statement};
    Row row;
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        row.clear();
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            row.push_back(CellAt(statement, column));
        }
        use(row);
    }
    if (code != SQLITE_DONE) {
        Fail(code);
    }
}

QVariant Workspace::Value(const QByteArray& sql, const std::vector<QVariant>& values) {
    QVariant first;
    Each(sql, values, [&first](const Row& row) { first = first.isValid() ? first : row.at(0); });
    return first;
}

void Workspace::InTransaction(const std::function<void()>& work) {
    Change("BEGIN IMMEDIATE");
    Error error;
    const bool done = Ran(
        [&] {
            work();
            Change("COMMIT");
        },
        &error);
    if (!done) {
        sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
        throw error;
    }
}

} // namespace data
