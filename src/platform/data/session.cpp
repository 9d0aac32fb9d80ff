#include "data/session.h"

#include "data/error.h"

#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace data {

namespace {

constexpr int busyTimeout = 10000;     // milliseconds that a call waits for another process's write
constexpr size_t keptStatements = 24;  // shapes of statement that stay prepared
constexpr int longestValue = 64 << 20; // bytes of one value or row; a damaged length is refused beyond it

quint64 nextGeneration = 1;

Error OpenError(const QString& path, int code) {
    switch (code & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return Error(ErrorUnspecified, QStringLiteral("Unrecognized database format '%1'.").arg(path));
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_READONLY:
    case SQLITE_BUSY:
        return Error(ErrorUnspecified, QStringLiteral("Cannot open the file '%1'. It is already opened exclusively by "
                                                      "another user, or you need permission to view its data.")
                                           .arg(path));
    default:
        return Error(
            ErrorUnspecified,
            QStringLiteral("Cannot open the file '%1': %2.").arg(path, QString::fromUtf8(sqlite3_errstr(code))));
    }
}

// Asks again every millisecond. The store's own wait grows to a tenth of a second, which misses each of the short gaps
// that another process leaves while it writes row after row: one that started meanwhile gave up after its whole
// time-out.
int WaitForOthers(void* /*unused*/, int waits) {
    ::usleep(1000);
    return waits < busyTimeout ? 1 : 0;
}

// The texts are UTF-8 copies that the statement keeps.
int Bind(sqlite3_stmt* statement, int at, const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return sqlite3_bind_null(statement, at);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return sqlite3_bind_int64(statement, at, value.toLongLong());
    case QMetaType::Double:
        return sqlite3_bind_double(statement, at, value.toDouble());
    default: {
        const QByteArray text = value.toString().toUtf8();
        return sqlite3_bind_text64(statement, at, text.constData(), sqlite3_uint64(text.size()), SQLITE_TRANSIENT,
                                   SQLITE_UTF8);
    }
    }
}

QVariant ColumnValue(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return qlonglong(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_NULL:
        return {};
    default: {
        const void* bytes = sqlite3_column_blob(statement, column);
        const int size = sqlite3_column_bytes(statement, column);
        return bytes == nullptr ? QString(QLatin1String("")) : QString::fromUtf8(static_cast<const char*>(bytes), size);
    }
    }
}

} // namespace

bool ConfigureHandle(sqlite3* handle) {
    sqlite3_busy_handler(handle, WaitForOthers, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    // EXTRA also syncs the folder after the journal is removed: without it a power cut can take back a finished write.
    return sqlite3_exec(handle, "PRAGMA synchronous=EXTRA; PRAGMA cell_size_check=ON; PRAGMA journal_mode=DELETE;",
                        nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Leaves a statement reset and without values however its use ends.
class Session::Run {
  public:
    Run(Session& session, const QByteArray& sql, const std::vector<QVariant>& values)
        : session_(session), prepared_(session.Prepare(sql)), statement_(prepared_.Statement) {
        int at = 0;
        for (const QVariant& value : values) {
            const int code = Bind(statement_, ++at, value);
            if (code != SQLITE_OK) {
                session_.Fail(code);
            }
        }
    }
    ~Run() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    // False at the end of the rows.
    bool Step() {
        const int code = sqlite3_step(statement_);
        if (code != SQLITE_ROW && code != SQLITE_DONE) {
            session_.Fail(code);
        }
        return code == SQLITE_ROW;
    }

    sqlite3_stmt* Statement() const { return statement_; }
    Prepared& Source() const { return prepared_; }

  private:
    Session& session_;
    Prepared& prepared_;
    sqlite3_stmt* statement_;
};

Session::Session(const QString& nativePath) : path_(nativePath) { Open(); }

Session::~Session() { Close(); }

Session::FileIdentity Session::IdentityOf(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return {};
    }
    return {quint64(status.st_dev), quint64(status.st_ino), true};
}

void Session::Open() {
    const QFileInfo info(path_);
    if (!info.exists()) {
        throw Error(ErrorUnspecified, QStringLiteral("Could not find file '%1'.").arg(path_));
    }
    // A folder, and a pipe, whose opening would wait for ever.
    if (!info.isFile()) {
        throw Error(ErrorUnspecified,
                    QStringLiteral("'%1' is not a valid path. Make sure that the path name is spelled "
                                   "correctly and that it names a file.")
                        .arg(path_));
    }
    const FileIdentity identity = IdentityOf(path_);
    sqlite3* handle = nullptr;
    int code = sqlite3_open_v2(info.absoluteFilePath().toUtf8().constData(), &handle,
                               SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    if (code == SQLITE_OK) {
        // Reads the header, so what is no database fails here and a journal that a crash left is rolled back. An empty
        // file would pass as a database without tables.
        code = ConfigureHandle(handle)
                   ? sqlite3_exec(handle, "SELECT count(*) FROM sqlite_schema", nullptr, nullptr, nullptr)
                   : sqlite3_extended_errcode(handle);
    }
    if (code == SQLITE_OK && info.size() == 0) {
        code = SQLITE_NOTADB;
    }
    if (code != SQLITE_OK) {
        sqlite3_close(handle);
        throw OpenError(path_, code);
    }
    sqlite3_set_last_insert_rowid(handle, LastIdentity());
    Close();
    handle_ = handle;
    file_ = identity;
    generation_ = nextGeneration++;
}

void Session::Close() {
    for (const Prepared& prepared : statements_) {
        sqlite3_finalize(prepared.Statement);
    }
    statements_.clear();
    sqlite3_close(handle_);
    handle_ = nullptr;
    inTransaction_ = false;
    held_ = false;
}

void Session::Fail(int code) {
    const int primary = code & 0xFF;
    if (storageFault_.isEmpty() && (primary == SQLITE_FULL || primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN)) {
        storageFault_ = QString::fromUtf8(sqlite3_errmsg(handle_));
    }
    const auto number = primary == SQLITE_ERROR ? ErrorInCommand : ErrorUnspecified;
    throw Error(number, QString::fromUtf8(sqlite3_errmsg(handle_)));
}

Session::Prepared& Session::Prepare(const QByteArray& sql) {
    for (auto prepared = statements_.begin(); prepared != statements_.end(); ++prepared) {
        if (prepared->Sql == sql) {
            statements_.splice(statements_.begin(), statements_, prepared);
            return statements_.front();
        }
    }
    sqlite3_stmt* statement = nullptr;
    const int code =
        sqlite3_prepare_v3(handle_, sql.constData(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) {
        Fail(code);
    }
    statements_.push_front({sql, statement, {}, -1});
    if (statements_.size() > keptStatements) {
        sqlite3_finalize(statements_.back().Statement);
        statements_.pop_back();
    }
    return statements_.front();
}

void Session::ReadColumns(Prepared& prepared, int first) {
    const int prepares = sqlite3_stmt_status(prepared.Statement, SQLITE_STMTSTATUS_REPREPARE, 0);
    if (prepares == prepared.ColumnsPrepared) {
        return;
    }
    prepared.ColumnsPrepared = prepares;
    prepared.Columns.clear();
    const int count = sqlite3_column_count(prepared.Statement);
    for (int column = first; column < count; ++column) {
        prepared.Columns.append(QString::fromUtf8(sqlite3_column_name(prepared.Statement, column)));
    }
}

qint64 Session::LastIdentity() const { return handle_ == nullptr ? 0 : sqlite3_last_insert_rowid(handle_); }

void Session::FollowFile() {
    if (inTransaction_ || held_) {
        return;
    }
    const FileIdentity now = IdentityOf(path_);
    if (now.Exists && !(now == file_)) {
        // What stands there now may be half a file of someone else's making; reading goes on in the old one then.
        Ran([this] { Open(); });
    }
}

void Session::RequireWritableFile() {
    if (!(IdentityOf(path_) == file_)) {
        throw Error(ErrorUnspecified,
                    QStringLiteral("The file '%1' was removed or replaced since it was opened.").arg(path_));
    }
}

Table Session::Query(const QByteArray& sql, const std::vector<QVariant>& values, bool withRowId) {
    FollowFile();
    Run run(*this, sql, values);
    Table table;
    const int first = withRowId ? 1 : 0;
    bool more = run.Step();
    // Only now: the first step prepares anew where the tables have changed.
    ReadColumns(run.Source(), first);
    table.Columns = run.Source().Columns;
    const int count = first + int(table.Columns.size());
    for (; more; more = run.Step()) {
        if (withRowId) {
            table.RowIds.push_back(sqlite3_column_int64(run.Statement(), 0));
        }
        std::vector<QVariant>& row = table.Rows.emplace_back();
        row.reserve(size_t(count - first));
        for (int column = first; column < count; ++column) {
            row.push_back(ColumnValue(run.Statement(), column));
        }
    }
    return table;
}

int Session::Change(const QByteArray& sql, const std::vector<QVariant>& values) {
    LetGo();
    FollowFile();
    // Between this look and the write the store itself looks once more and refuses a file that was moved.
    RequireWritableFile();
    const qint64 identity = LastIdentity();
    Error error;
    const bool changed = Ran(
        [&] {
            Run run(*this, sql, values);
            while (run.Step()) {
            }
        },
        &error);
    if (!changed) {
        // An insert that fails only when it is made durable has moved the number already.
        sqlite3_set_last_insert_rowid(handle_, identity);
        throw error;
    }
    return sqlite3_changes(handle_);
}

void Session::RunPlain(const char* sql) {
    Run run(*this, sql, {});
    run.Step();
}

void Session::Hold() {
    if (!inTransaction_ && !held_) {
        FollowFile();
        RunPlain("BEGIN");
        held_ = true;
    }
}

void Session::LetGo() {
    if (held_) {
        held_ = false;
        Ran([this] { RunPlain("ROLLBACK"); });
    }
}

void Session::Begin() {
    if (inTransaction_) {
        throw Error(ErrorInvalidArgument);
    }
    LetGo();
    FollowFile();
    RunPlain("BEGIN IMMEDIATE");
    inTransaction_ = true;
    identityBefore_ = LastIdentity();
    Error error;
    if (!Ran([this] { RequireWritableFile(); }, &error)) {
        Rollback();
        throw error;
    }
}

void Session::Commit() {
    if (!inTransaction_) {
        throw Error(ErrorInvalidArgument);
    }
    RunPlain("COMMIT");
    inTransaction_ = false;
}

void Session::Rollback() {
    if (inTransaction_) {
        inTransaction_ = false;
        sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_set_last_insert_rowid(handle_, identityBefore_);
    }
}

} // namespace data
