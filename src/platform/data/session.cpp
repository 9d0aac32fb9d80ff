#include "data/session.h"

#include "data/cells.h"
#include "data/error.h"

#include <QFile>
#include <atomic>
#include <sqlite3.h>
#include <sys/stat.h>

namespace data {

namespace {

constexpr size_t keptStatements = 24; // shapes of statement that stay prepared
// What one query may bring into memory; more is a failure, or the next page's.
constexpr size_t mostRows = 20'000;
constexpr qint64 mostBytes = 256 * 1024;
// What one statement may take of the thread that the windows live in. A search of a file that was read through before
// it took its place takes some microseconds, one that walks 48 MiB for want of an index a quarter of this.
constexpr qint64 longestRun = 250'000'000; // nanoseconds

std::atomic<quint64> nextGeneration = 1;

} // namespace

// Leaves a statement reset and without values however its use ends.
class Session::Run {
  public:
    Run(Session& session, const QByteArray& sql, const std::vector<QVariant>& values)
        : session_(session), prepared_(session.Prepare(sql)), statement_(prepared_.Statement) {
        session_.limit_.Begin(longestRun);
        int at = 0;
        for (const QVariant& value : values) {
            const int code = BindCell(statement_, ++at, value);
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

Session::Session(const QString& nativePath, const DatabaseRules* rules) : path_(nativePath), rules_(rules) { Open(); }

Session::~Session() { Close(); }

Session::FileIdentity Session::IdentityOf(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return {};
    }
    return {quint64(status.st_dev), quint64(status.st_ino), true};
}

void Session::Open() {
    const FileIdentity identity = IdentityOf(path_);
    Handle opened = OpenGuarded(path_, rules_);
    sqlite3_set_last_insert_rowid(opened.get(), LastIdentity());
    Close();
    handle_ = std::move(opened);
    limit_.Watch(handle_.get());
    file_ = identity;
    generation_ = nextGeneration++;
}

void Session::Close() {
    for (const Prepared& prepared : statements_) {
        sqlite3_finalize(prepared.Statement);
    }
    statements_.clear();
    handle_.reset();
    inTransaction_ = false;
    held_ = false;
}

void Session::Fail(int code) {
    const int primary = code & 0xFF;
    if (storageFault_.isEmpty() && (primary == SQLITE_FULL || primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN)) {
        storageFault_ = QString::fromUtf8(sqlite3_errmsg(handle_.get()));
    }
    const auto number = primary == SQLITE_ERROR ? ErrorInCommand : ErrorUnspecified;
    throw Error(number, QString::fromUtf8(sqlite3_errmsg(handle_.get())));
}

Session::Prepared& Session::Prepare(const QByteArray& sql) {
    for (auto prepared = statements_.begin(); prepared != statements_.end(); ++prepared) {
        if (prepared->Sql == sql) {
            statements_.splice(statements_.begin(), statements_, prepared);
            return statements_.front();
        }
    }
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(handle_.get(), sql.constData(), int(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                        &statement, nullptr);
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

qint64 Session::LastIdentity() const { return handle_ == nullptr ? 0 : sqlite3_last_insert_rowid(handle_.get()); }

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

Table Session::Query(const QByteArray& sql, const std::vector<QVariant>& values, bool withRowId, bool inPages) {
    FollowFile();
    Run run(*this, sql, values);
    Table table;
    const int first = withRowId ? 1 : 0;
    bool more = run.Step();
    // Only now: the first step prepares anew where the tables have changed.
    ReadColumns(run.Source(), first);
    table.Columns = run.Source().Columns;
    const int count = first + int(table.Columns.size());
    qint64 bytes = 0;
    for (; more; more = run.Step()) {
        if (table.Rows.size() == mostRows || bytes > mostBytes) {
            table.More = inPages;
            if (!inPages) {
                throw Error(ErrorUnspecified, QStringLiteral("More rows than a query may bring."));
            }
            break;
        }
        if (withRowId) {
            table.RowIds.push_back(sqlite3_column_int64(run.Statement(), 0));
        }
        std::vector<QVariant>& row = table.Rows.emplace_back();
        row.reserve(size_t(count - first));
        for (int column = first; column < count; ++column) {
            row.push_back(CellAt(run.Statement(), column));
            bytes += sqlite3_column_bytes(run.Statement(), column);
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
        sqlite3_set_last_insert_rowid(handle_.get(), identity);
        throw error;
    }
    return sqlite3_changes(handle_.get());
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
        sqlite3_exec(handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_set_last_insert_rowid(handle_.get(), identityBefore_);
    }
}

} // namespace data
