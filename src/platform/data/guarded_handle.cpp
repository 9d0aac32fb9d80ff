#include "data/guarded_handle.h"

#include "data/error.h"
#include "data/schema_judge.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace data {

namespace {

constexpr int busyTimeout = 10000; // milliseconds that a call waits for another process's write

// A file's definitions are read when it is opened. Ours take 8 rows and some hundred steps of the store.
constexpr int stepsPerCall = 1000;
constexpr int callsToOpen = 20;
constexpr int longestDefinition = 4096; // bytes
constexpr int longestStatement = 1 << 20;
constexpr int deepestDefinition = 8; // terms of an expression within one another
constexpr int mostColumns = 8;

// The first bytes of a file and where in them stands what is looked at.
constexpr qsizetype headSize = 100;
constexpr char magic[] = "SQLite format 3";
constexpr qsizetype writeVersionAt = 18; // 1: rollback journal, 2: write-ahead log
constexpr qsizetype reservedAt = 20;     // bytes of each page that something else uses, such as encryption
constexpr qsizetype encodingAt = 56;
constexpr qsizetype applicationAt = 68;

[[noreturn]] void RefuseDatabase(const QString& path, const QString& why) {
    RefuseFile(path, QStringLiteral("not a device database (%1)").arg(why));
}

// Asks again every millisecond. The store's own wait grows to a tenth of a second, which misses each of the short gaps
// that another process leaves while it writes row after row: one that started meanwhile gave up after its whole
// time-out.
int WaitForOthers(void* /*unused*/, int waits) {
    ::usleep(1000);
    return waits < busyTimeout ? 1 : 0;
}

int Spend(void* callsLeft) { return --*static_cast<int*>(callsLeft) < 0 ? 1 : 0; }

// What the program's statements need, and no more: whatever a file brings about, no other function, file or setting is
// within its reach.
int Authorize(void* /*unused*/, int action, const char* first, const char* second, const char* /*database*/,
              const char* /*trigger*/) {
    const auto isOwn = [](const char* table) { return sqlite3_strnicmp(table, "sqlite_", 7) == 0; };
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_TRANSACTION:
        return SQLITE_OK;
    case SQLITE_READ:
    case SQLITE_INSERT:
    case SQLITE_UPDATE:
    case SQLITE_DELETE:
        return isOwn(first) ? SQLITE_DENY : SQLITE_OK;
    case SQLITE_FUNCTION:
        return sqlite3_stricmp(second, "count") == 0 ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_PRAGMA:
        return sqlite3_stricmp(first, "synchronous") == 0 ? SQLITE_OK : SQLITE_DENY;
    default:
        return SQLITE_DENY;
    }
}

void Configure(sqlite3* handle) {
    sqlite3_busy_handler(handle, WaitForOthers, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, LongestValue);
    sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(handle, SQLITE_LIMIT_COMPOUND_SELECT, 2);
    sqlite3_limit(handle, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    sqlite3_limit(handle, SQLITE_LIMIT_WORKER_THREADS, 0);
    sqlite3_limit(handle, SQLITE_LIMIT_COLUMN, mostColumns);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

bool IsPlainFile(const QString& path, bool& exists) {
    struct stat status {};
    exists = ::lstat(QFile::encodeName(path).constData(), &status) == 0;
    return exists && S_ISREG(status.st_mode);
}

// The store opens what lies beside a file by its name: a pipe there would hold the program for ever, and a log beside a
// file that keeps none belongs to another file and would be played into this one.
void JudgeNeighbours(const QString& path, bool keepsLog) {
    for (const char* ending : {"-journal", "-wal", "-shm"}) {
        const QString beside = path + QLatin1String(ending);
        bool exists = false;
        if (!IsPlainFile(beside, exists) && exists) {
            RefuseFile(beside, QStringLiteral("not a file"));
        }
        if (exists && !keepsLog && QLatin1String(ending) == QLatin1String("-wal")) {
            RefuseFile(beside, QStringLiteral("a log that is not this database's; remove it"));
        }
    }
}

// Tells whether the file keeps a write-ahead log.
bool JudgeHead(const QString& path, const DatabaseRules* rules) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        FailOpen(path, SQLITE_CANTOPEN);
    }
    const QByteArray head = file.read(headSize);
    if (head.size() < headSize || !head.startsWith(QByteArray(magic, sizeof magic))) {
        FailOpen(path, SQLITE_NOTADB);
    }
    const auto number = [&head](qsizetype at) { return qFromBigEndian<quint32>(head.constData() + at); };
    if (rules != nullptr) {
        if (number(encodingAt) > 1) {
            RefuseDatabase(path, QStringLiteral("its texts are UTF-16"));
        }
        if (number(applicationAt) != 0) {
            RefuseDatabase(path, QStringLiteral("made for another program"));
        }
        if (head.at(reservedAt) != 0) {
            RefuseDatabase(path, QStringLiteral("encrypted, or its pages hold something else"));
        }
    }
    return head.at(writeVersionAt) == 2;
}

QByteArray ColumnBytes(sqlite3_stmt* statement, int column) {
    const void* bytes = sqlite3_column_blob(statement, column);
    return {static_cast<const char*>(bytes), sqlite3_column_bytes(statement, column)};
}

// The file's objects, as far as more than that would be too many anyway.
int ReadSchema(sqlite3* handle, qsizetype most, std::vector<SchemaObject>& objects) {
    sqlite3_stmt* statement = nullptr;
    int code =
        sqlite3_prepare_v2(handle, "SELECT type, name, tbl_name, sql FROM sqlite_schema", -1, &statement, nullptr);
    if (code == SQLITE_OK) {
        while ((code = sqlite3_step(statement)) == SQLITE_ROW && qsizetype(objects.size()) <= most) {
            objects.push_back({ColumnBytes(statement, 0), ColumnBytes(statement, 1), ColumnBytes(statement, 2),
                               ColumnBytes(statement, 3)});
        }
        code = code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : code;
    }
    sqlite3_finalize(statement);
    return code;
}

// The first reading of the file, within bounds that no good one comes near. Rolls back what a crash left.
int ReadDefinitions(sqlite3* handle, const DatabaseRules* rules, std::vector<SchemaObject>& objects) {
    sqlite3_limit(handle, SQLITE_LIMIT_SQL_LENGTH, longestDefinition);
    const int depth = sqlite3_limit(handle, SQLITE_LIMIT_EXPR_DEPTH, deepestDefinition);
    int callsLeft = callsToOpen;
    sqlite3_progress_handler(handle, stepsPerCall, Spend, &callsLeft);
    // EXTRA also syncs the folder after the journal is removed: without it a power cut can take back a finished write.
    int code = sqlite3_exec(handle, "PRAGMA synchronous=EXTRA; PRAGMA cell_size_check=ON; PRAGMA journal_mode=DELETE;",
                            nullptr, nullptr, nullptr);
    if (code == SQLITE_OK) {
        code =
            ReadSchema(handle, rules == nullptr ? 0 : qsizetype(rules->Tables.size() + rules->Indexes.size()), objects);
    }
    sqlite3_progress_handler(handle, 0, nullptr, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_SQL_LENGTH, longestStatement);
    sqlite3_limit(handle, SQLITE_LIMIT_EXPR_DEPTH, depth);
    return code;
}

// Missing, a folder, or a pipe, whose opening would wait for ever.
void JudgePlace(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        throw Error(ErrorUnspecified, QStringLiteral("Could not find file '%1'.").arg(path));
    }
    if (!info.isFile()) {
        throw Error(ErrorUnspecified,
                    QStringLiteral("'%1' is not a valid path. Make sure that the path name is spelled "
                                   "correctly and that it names a file.")
                        .arg(path));
    }
}

} // namespace

void CloseHandle::operator()(sqlite3* handle) const { sqlite3_close(handle); }

void RefuseFile(const QString& path, const QString& why) {
    throw Error(ErrorUnspecified, QStringLiteral("%1: %2").arg(path, why));
}

void FailOpen(const QString& path, int code) {
    switch (code & 0xFF) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        throw Error(ErrorUnspecified, QStringLiteral("Unrecognized database format '%1'.").arg(path));
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_READONLY:
    case SQLITE_BUSY:
        throw Error(ErrorUnspecified, QStringLiteral("Cannot open the file '%1'. It is already opened exclusively by "
                                                     "another user, or you need permission to view its data.")
                                          .arg(path));
    case SQLITE_TOOBIG:
    case SQLITE_INTERRUPT:
        RefuseDatabase(path, QStringLiteral("too much is defined in it"));
    default:
        throw Error(
            ErrorUnspecified,
            QStringLiteral("Cannot open the file '%1': %2.").arg(path, QString::fromUtf8(sqlite3_errstr(code))));
    }
}

Handle OpenGuarded(const QString& nativePath, const DatabaseRules* rules, int* storeCode) {
    JudgePlace(nativePath);
    const bool keepsLog = JudgeHead(nativePath, rules);
    const QFileInfo info(nativePath);
    JudgeNeighbours(info.canonicalFilePath(), keepsLog);
    sqlite3* opened = nullptr;
    int code = sqlite3_open_v2(info.absoluteFilePath().toUtf8().constData(), &opened,
                               SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    Handle handle(opened);
    std::vector<SchemaObject> objects;
    if (code == SQLITE_OK) {
        Configure(opened);
        code = ReadDefinitions(opened, rules, objects);
    }
    if (code != SQLITE_OK) {
        if (storeCode != nullptr) {
            *storeCode = code & 0xFF;
        }
        FailOpen(nativePath, code);
    }
    const QString wrong = rules == nullptr ? QString() : JudgeSchema(objects, *rules);
    if (!wrong.isEmpty()) {
        RefuseDatabase(nativePath, wrong);
    }
    sqlite3_set_authorizer(opened, Authorize, nullptr);
    return handle;
}

} // namespace data
