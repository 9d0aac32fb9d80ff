// The device database at 1,000,000 hardware IDs, beside the same statements made with the raw store.
// QUORVANE_BENCH_ROWS makes it smaller for a quick run.
#include "base/paths.h"
#include "database/additions.h"
#include "database/contribution_line.h"
#include "database/matching.h"
#include "database/store.h"
#include "suite/list_items.h"
#include "support/large_database.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <sqlite3.h>

namespace {

using bench::DeviceId;
using bench::HardwareId;
using bench::idsOfDevice;
using bench::MakerOf;
using bench::NameOf;
using bench::RowCount;

// A copy of the database, as the benchmarks add to it.
const QTemporaryDir& Folder() {
    static const QTemporaryDir folder;
    return folder;
}

QString Path() { return Folder().filePath(QStringLiteral("hwids.mdb")); }

bool CopyDatabase() {
    base::SetProgramFolder(Folder().path());
    return QFile::copy(bench::LargeDatabaseFolder() + QStringLiteral("/hwids.mdb"), Path());
}

// The raw store with the statements prepared once.
class Raw {
  public:
    Raw() {
        sqlite3_open_v2(Path().toUtf8().constData(), &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        sqlite3_exec(handle_, "PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
    }
    ~Raw() {
        for (sqlite3_stmt* statement : {ids_, name_, maker_, findName_, findMaker_, findId_, addName_, addId_}) {
            sqlite3_finalize(statement);
        }
        sqlite3_close(handle_);
    }
    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;

    void PrepareSearch() {
        Prepare("SELECT * FROM hwids WHERE hwid IN (?,?,?,?,?,?,?,?)", ids_);
        Prepare("SELECT * FROM devicenames WHERE ID = ?", name_);
        Prepare("SELECT * FROM mfgs WHERE ID = ?", maker_);
    }

    int Search() {
        for (int id = 0; id < idsOfDevice; ++id) {
            Bind(ids_, id + 1, DeviceId(id).toUtf8());
        }
        int found = 0;
        while (sqlite3_step(ids_) == SQLITE_ROW) {
            const char* info = reinterpret_cast<const char*>(sqlite3_column_text(ids_, 1));
            int name = 0;
            int maker = 0;
            int length = 0;
            for (; std::sscanf(info, "%d,%d\r\n%n", &name, &maker, &length) == 2; info += length) {
                found += int(Text(name_, name).size() + Text(maker_, maker).size());
            }
        }
        sqlite3_reset(ids_);
        return found;
    }

    void PrepareAdd() {
        Prepare("SELECT * FROM devicenames WHERE devicename = ?", findName_);
        Prepare("SELECT * FROM mfgs WHERE mfg = ?", findMaker_);
        Prepare("SELECT * FROM hwids WHERE hwid = ?", findId_);
        Prepare("INSERT INTO devicenames (devicename) VALUES(?)", addName_);
        Prepare("INSERT INTO hwids (hwid,info) VALUES(?,?)", addId_);
    }

    void Add(const QByteArray& id, const QByteArray& device, const QByteArray& maker) {
        RunWith(findName_, device);
        RunWith(addName_, device);
        const qint64 number = sqlite3_last_insert_rowid(handle_);
        Bind(findMaker_, 1, maker);
        sqlite3_step(findMaker_);
        const qint64 makerNumber = sqlite3_column_int64(findMaker_, 0);
        sqlite3_reset(findMaker_);
        RunWith(findId_, id);
        Bind(addId_, 2, QByteArray::number(number) + ',' + QByteArray::number(makerNumber) + "\r\n");
        RunWith(addId_, id);
    }

  private:
    void Prepare(const char* sql, sqlite3_stmt*& statement) {
        sqlite3_prepare_v2(handle_, sql, -1, &statement, nullptr);
    }
    static void Bind(sqlite3_stmt* statement, int at, const QByteArray& text) {
        sqlite3_bind_text(statement, at, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    }
    static void RunWith(sqlite3_stmt* statement, const QByteArray& text) {
        Bind(statement, 1, text);
        while (sqlite3_step(statement) == SQLITE_ROW) {
        }
        sqlite3_reset(statement);
    }
    static QString Text(sqlite3_stmt* statement, int number) {
        sqlite3_bind_int(statement, 1, number);
        sqlite3_step(statement);
        const QString text = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 1)));
        sqlite3_reset(statement);
        return text;
    }

    sqlite3* handle_ = nullptr;
    sqlite3_stmt* ids_ = nullptr;
    sqlite3_stmt* name_ = nullptr;
    sqlite3_stmt* maker_ = nullptr;
    sqlite3_stmt* findName_ = nullptr;
    sqlite3_stmt* findMaker_ = nullptr;
    sqlite3_stmt* findId_ = nullptr;
    sqlite3_stmt* addName_ = nullptr;
    sqlite3_stmt* addId_ = nullptr;
};

void OpenAndCount(benchmark::State& state) {
    for (auto _ : state) {
        database::OpenDeviceDatabase();
        database::ReadVersionAndCount();
        database::CloseDeviceDatabase();
    }
}
BENCHMARK(OpenAndCount)->Unit(benchmark::kMillisecond);

void SearchOneDevice(benchmark::State& state) {
    database::OpenDeviceDatabase();
    QString ids;
    for (int id = 0; id < idsOfDevice; ++id) {
        ids += DeviceId(id) + QStringLiteral("\r\n");
    }
    suite::ListItems rows;
    for (const char* key : {"Name", "Manufacturer", "HardwareIDs", "L"}) {
        rows.AddColumn(QLatin1String(key), QLatin1String(key), 1500);
    }
    for (auto _ : state) {
        rows.Clear();
        database::FindMatches(database::MatchQuery(ids), rows);
    }
    state.counters["rows"] = rows.Count();
    database::CloseDeviceDatabase();
}
BENCHMARK(SearchOneDevice)->Unit(benchmark::kMicrosecond);

void SearchOneDeviceRaw(benchmark::State& state) {
    Raw raw;
    raw.PrepareSearch();
    for (auto _ : state) {
        benchmark::DoNotOptimize(raw.Search());
    }
}
BENCHMARK(SearchOneDeviceRaw)->Unit(benchmark::kMicrosecond);

// Rows as an improve scan asks for them: half of them known.
void AskFor10000Rows(benchmark::State& state) {
    database::OpenDeviceDatabase();
    QStringList lines;
    for (int i = 0; i < 10000; ++i) {
        const int number = int(qint64(i) * RowCount() / 10000);
        lines.append(database::ContributionLine(HardwareId(number), NameOf(number), MakerOf(number + i % 2)));
    }
    int known = 0;
    for (auto _ : state) {
        known = 0;
        for (const QString& line : lines) {
            known += database::IsDeviceInDatabase(line) ? 1 : 0;
        }
    }
    state.counters["known"] = known;
    database::CloseDeviceDatabase();
}
BENCHMARK(AskFor10000Rows)->Unit(benchmark::kMillisecond);

// A device with a new name and a new ID, of a known maker; ours and the raw statements in turn, as the speed of a
// disk's flushes wanders.
void AddDevice(benchmark::State& state) {
    database::OpenDeviceDatabase();
    Raw raw;
    raw.PrepareAdd();
    static int number = 0;
    QElapsedTimer timer;
    qint64 own = 0;
    qint64 plain = 0;
    for (auto _ : state) {
        const QByteArray suffix = QByteArray::number(++number);
        timer.start();
        database::AddDeviceToDatabase(database::ContributionLine(
            QStringLiteral("NEW\\%1").arg(number), QStringLiteral("New %1").arg(number), QStringLiteral("Maker 5")));
        own += timer.nsecsElapsed();
        timer.start();
        raw.Add("RAW\\" + suffix, "Raw " + suffix, "Maker 5");
        plain += timer.nsecsElapsed();
    }
    state.counters["own_ms"] = double(own) / 1e6 / double(state.iterations());
    state.counters["raw_ms"] = double(plain) / 1e6 / double(state.iterations());
    database::CloseDeviceDatabase();
}
BENCHMARK(AddDevice)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (!CopyDatabase())
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
