#include "data/file_judge.h"

#include "data/error.h"
#include "data/guarded_handle.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <sqlite3.h>

namespace data {

namespace {

constexpr int stepsPerCall = 1000;
constexpr int longestCount = 5'000; // milliseconds

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

struct Patience {
    const std::atomic<bool>* Stop;
    int Longest; // milliseconds; 0 is no limit
    QElapsedTimer Timer;
};

int IsOver(void* patience) {
    const auto* limit = static_cast<const Patience*>(patience);
    const bool stopped = limit->Stop != nullptr && limit->Stop->load();
    return stopped || (limit->Longest > 0 && limit->Timer.hasExpired(limit->Longest)) ? 1 : 0;
}

// Why the store could not go on reading.
QString Fault(sqlite3* handle) {
    switch (sqlite3_errcode(handle)) {
    case SQLITE_INTERRUPT:
        return QStringLiteral("checking the database takes too long");
    case SQLITE_TOOBIG:
        return QStringLiteral("the database holds a text that is too long");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return QStringLiteral("the database is damaged");
    default:
        return QString::fromUtf8(sqlite3_errmsg(handle));
    }
}

QString JudgeSoundness(sqlite3* handle, Soundness soundness) {
    sqlite3_stmt* prepared = nullptr;
    const char* ask = soundness == Soundness::Pages ? "PRAGMA quick_check(1)" : "PRAGMA integrity_check(1)";
    sqlite3_prepare_v2(handle, ask, -1, &prepared, nullptr);
    const Statement statement(prepared);
    if (!statement || sqlite3_step(statement.get()) != SQLITE_ROW) {
        return Fault(handle);
    }
    const QString found = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0)));
    // A time that ran out shows as a finding here.
    return found == QLatin1String("ok") ? QString() : QStringLiteral("the database is damaged");
}

QString JudgeValue(sqlite3_stmt* statement, int at, const ColumnRule& rule) {
    const int type = sqlite3_column_type(statement, at);
    if (rule.IsKey) {
        const sqlite3_int64 number = sqlite3_column_int64(statement, at);
        return number >= 1 && number <= rule.Most ? QString() : QStringLiteral("a number out of range");
    }
    if (type == SQLITE_NULL) {
        return QString();
    }
    if (type != SQLITE_TEXT) {
        return QStringLiteral("a value that is no text");
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, at));
    const int size = sqlite3_column_bytes(statement, at);
    if (size > rule.Most) {
        return QStringLiteral("a text that is too long");
    }
    return std::find(text, text + size, '\0') == text + size ? QString() : QStringLiteral("a text with a zero in it");
}

QString JudgeRows(sqlite3* handle, const TableRule& table) {
    QByteArray names;
    for (const ColumnRule& column : table.Columns) {
        names += (names.isEmpty() ? "" : ", ") + QByteArray(column.Name);
    }
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(handle, "SELECT " + names + " FROM " + table.Name + " NOT INDEXED", -1, &prepared, nullptr);
    const Statement statement(prepared);
    int code = SQLITE_ERROR;
    for (qint64 row = 0; statement && (code = sqlite3_step(statement.get())) == SQLITE_ROW; ++row) {
        if (row == table.MostRows) {
            return QStringLiteral("too many rows in ") + QLatin1String(table.Name);
        }
        for (size_t at = 0; at < table.Columns.size(); ++at) {
            const QString wrong = JudgeValue(statement.get(), int(at), table.Columns[at]);
            if (!wrong.isEmpty()) {
                return QStringLiteral("%1 in %2").arg(wrong, QLatin1String(table.Name));
            }
        }
    }
    return code == SQLITE_DONE ? QString() : Fault(handle);
}

QString JudgeIndexes(sqlite3* handle, const DatabaseRules& rules) {
    for (const IndexRule& index : rules.Indexes) {
        const QByteArray ask = QByteArray("SELECT 1 FROM sqlite_schema WHERE type = 'index' AND name = '") +
                               index.Name + "' COLLATE NOCASE";
        sqlite3_stmt* prepared = nullptr;
        sqlite3_prepare_v2(handle, ask, -1, &prepared, nullptr);
        const Statement statement(prepared);
        if (index.IsSearched && (!statement || sqlite3_step(statement.get()) != SQLITE_ROW)) {
            return QStringLiteral("not a device database (no index %1)").arg(QLatin1String(index.Name));
        }
    }
    return QString();
}

QString Judge(const QString& path, const DatabaseRules& rules, const std::atomic<bool>* stop, Soundness soundness) {
    const qint64 size = QFileInfo(path).size();
    if (size > rules.LargestFile) {
        return QStringLiteral("the database is larger than %1 MiB").arg(rules.LargestFile >> 20);
    }
    const Handle opened = OpenGuarded(path, &rules);
    sqlite3* handle = opened.get();
    // Past this the file's own definitions are known to be harmless; the check needs what the program never does.
    sqlite3_set_authorizer(handle, nullptr, nullptr);
    Patience patience{stop, rules.LongestLook, {}};
    patience.Timer.start();
    sqlite3_progress_handler(handle, stepsPerCall, IsOver, &patience);
    QString wrong = JudgeSoundness(handle, soundness);
    for (const TableRule& table : rules.Tables) {
        wrong = wrong.isEmpty() ? JudgeRows(handle, table) : wrong;
    }
    return wrong.isEmpty() && size > rules.LargestWithoutIndexes ? JudgeIndexes(handle, rules) : wrong;
}

} // namespace

QString JudgeDatabaseFile(const QString& nativePath, const DatabaseRules& rules, const std::atomic<bool>* stop,
                          Soundness soundness) {
    QString wrong;
    Error failure;
    if (!Ran([&] { wrong = Judge(nativePath, rules, stop, soundness); }, &failure)) {
        return failure.Description();
    }
    return wrong.isEmpty() ? QString() : QStringLiteral("%1: %2").arg(nativePath, wrong);
}

std::optional<qint64> CountRows(const QString& nativePath, const DatabaseRules* rules, const QString& table,
                                const std::atomic<bool>& stop) {
    Handle handle;
    if (!Ran([&] { handle = OpenGuarded(nativePath, rules); })) {
        return std::nullopt;
    }
    Patience patience{&stop, longestCount, {}};
    patience.Timer.start();
    sqlite3_progress_handler(handle.get(), stepsPerCall, IsOver, &patience);
    // The condition keeps the store from its own short way of counting, which asks nobody whether it is over.
    const QByteArray ask = "SELECT count(*) FROM [" + table.toUtf8() + "] WHERE ?";
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(handle.get(), ask.constData(), -1, &prepared, nullptr);
    const Statement statement(prepared);
    sqlite3_bind_int(prepared, 1, 1);
    return sqlite3_step(prepared) == SQLITE_ROW ? std::optional<qint64>(sqlite3_column_int64(prepared, 0))
                                                : std::nullopt;
}

} // namespace data
