// The device database at 1,000,000 hardware IDs, beside the same statements made with the raw store.
// QUORVANE_BENCH_ROWS makes it smaller for a quick run.
#include "base/paths.h"
#include "database/additions.h"
#include "database/contribution_line.h"
#include "database/database_builder.h"
#include "database/matching.h"
#include "database/store.h"
#include "suite/list_items.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>

namespace {

constexpr int idsOfDevice = 8;
constexpr int entriesOfId = 3;

int RowCount() {
    const int rows = qEnvironmentVariableIntValue("QUORVANE_BENCH_ROWS");
    return rows > 0 ? rows : 1'000'000;
}

QString HardwareId(int number) {
    return QStringLiteral("PCI\\VEN_%1&DEV_%2&SUBSYS_%3")
        .arg(number % 977, 4, 16, QLatin1Char('0'))
        .arg(number & 0xFFFF, 4, 16, QLatin1Char('0'))
        .arg(number, 8, 16, QLatin1Char('0'));
}

QString DeviceId(int number) {
    return QStringLiteral("USB\\VID_1234&PID_5678&REV_%1").arg(number, 4, 10, QLatin1Char('0'));
}

// The folder of the database, filled once for the process.
const QTemporaryDir& Folder() {
    static const QTemporaryDir folder;
    return folder;
}

QString Path() { return Folder().filePath(QStringLiteral("hwids.mdb")); }

void BuildDatabase() {
    database::DatabaseBuilder builder;
    for (int i = 0; i < RowCount(); ++i) {
        builder.Add(HardwareId(i), QStringLiteral("Device number %1").arg(i / 4),
                    QStringLiteral("Maker %1").arg(i % 977));
    }
    for (int id = 0; id < idsOfDevice; ++id) {
        for (int entry = 0; entry < entriesOfId; ++entry) {
            builder.Add(DeviceId(id), QStringLiteral("Device %1").arg(entry), QStringLiteral("Maker %1").arg(entry));
        }
    }
    QString error;
    if (!builder.Write(Path(), QStringLiteral("1.0.0"), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        std::exit(1);
    }
    base::SetProgramFolder(Folder().path());
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
        lines.append(database::ContributionLine(HardwareId(number), QStringLiteral("Device number %1").arg(number / 4),
                                                QStringLiteral("Maker %1").arg((number + i % 2) % 977)));
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

// A device with a new name and a new ID, of a known maker.
void AddDevice(benchmark::State& state) {
    database::OpenDeviceDatabase();
    static int number = 0;
    for (auto _ : state) {
        ++number;
        database::AddDeviceToDatabase(database::ContributionLine(
            QStringLiteral("NEW\\%1").arg(number), QStringLiteral("New %1").arg(number), QStringLiteral("Maker 5")));
    }
    database::CloseDeviceDatabase();
}
BENCHMARK(AddDevice)->Unit(benchmark::kMicrosecond);

void AddDeviceRaw(benchmark::State& state) {
    Raw raw;
    raw.PrepareAdd();
    static int number = 0;
    for (auto _ : state) {
        const QByteArray suffix = QByteArray::number(++number);
        raw.Add("RAW\\" + suffix, "Raw " + suffix, "Maker 5");
    }
}
BENCHMARK(AddDeviceRaw)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    BuildDatabase();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
