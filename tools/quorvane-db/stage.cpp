#include "stage.h"

#include "data/error.h"
#include "database/device_info.h"
#include "database/schema.h"
#include "database_file.h"

#include <QCryptographicHash>
#include <QThread>
#include <algorithm>
#include <cstring>
#include <vector>

namespace tool {

namespace {

constexpr int patience = 600'000;         // milliseconds for another merge to end
constexpr int linesAtOnce = 5'000;        // are compared while others cannot write
constexpr int pageOfLines = 1'000;        // are in memory while they are reported
constexpr int reported = 400;             // characters of a line
constexpr qint64 portionOfLines = 20'000; // go in at once, in less time than a program waits for its turn
constexpr int breathing = 20;             // milliseconds in which others have theirs
constexpr int mostNames = 1'000;          // for one ID in one merge
constexpr int mostAttempts = 5;           // while the database is replaced again and again

constexpr const char* makeTables[] = {
    "CREATE TABLE staged (seq INTEGER PRIMARY KEY, state INTEGER, file INTEGER, line INTEGER, text TEXT, reason TEXT,"
    " hwid TEXT COLLATE NOCASE, name TEXT COLLATE NOCASE, mfg TEXT COLLATE NOCASE)",
    "CREATE TABLE seen (high INTEGER, low INTEGER, PRIMARY KEY (high, low)) WITHOUT ROWID",
    "CREATE TABLE portion (seq INTEGER PRIMARY KEY, hwid TEXT COLLATE NOCASE, name TEXT COLLATE NOCASE,"
    " mfg TEXT COLLATE NOCASE)",
    "CREATE TABLE entries (hwid TEXT COLLATE NOCASE, entry TEXT)",
};

constexpr char stageLine[] = "INSERT INTO staged VALUES (NULL, ?, ?, ?, ?, ?, ?, ?, ?)";

constexpr char markCrowds[] = "UPDATE staged SET state = ?1, reason = 'one of over ' || ?2 || ' names for one ID'"
                              " WHERE state = 0 AND hwid IN"
                              " (SELECT hwid FROM staged WHERE state = 0 GROUP BY hwid HAVING count(*) > ?2)";

// The pair of numbers as a whole entry of the row's text: behind a line end or at the start, before one or at the end.
constexpr char markKnown[] =
    "UPDATE staged SET state = ?1 WHERE seq BETWEEN ?2 AND ?3 AND state = 0 AND EXISTS (SELECT 1 FROM live.hwids AS h"
    " CROSS JOIN live.devicenames AS n CROSS JOIN live.mfgs AS m"
    " WHERE h.hwid = staged.hwid AND n.devicename = staged.name AND m.mfg = staged.mfg"
    " AND instr(char(13, 10) || h.info || char(13, 10), char(13, 10) || n.ID || ',' || m.ID || char(13, 10)))";

constexpr char markOtherNames[] = "UPDATE staged SET state = ? WHERE state = 0"
                                  " AND EXISTS (SELECT 1 FROM live.hwids AS h WHERE h.hwid = staged.hwid)";

constexpr char takePortion[] =
    "INSERT INTO portion SELECT seq, hwid, name, mfg FROM staged WHERE seq BETWEEN ? AND ? AND state = 0";

// In order, in one transaction. Names are written as they are first spelled; rows go in in the order of their index.
// Entries are appended behind a line end, which a row of another's making may lack.
constexpr const char* addLines[] = {
    "INSERT INTO live.mfgs (mfg) SELECT mfg FROM (SELECT mfg, min(seq) FROM portion GROUP BY mfg) AS s"
    " WHERE NOT EXISTS (SELECT 1 FROM live.mfgs AS m WHERE m.mfg = s.mfg)",
    "INSERT INTO live.devicenames (devicename) SELECT name FROM (SELECT name, min(seq) FROM portion"
    " GROUP BY name) AS s WHERE NOT EXISTS (SELECT 1 FROM live.devicenames AS n WHERE n.devicename = s.name)",
    "DELETE FROM entries",
    "INSERT INTO entries SELECT hwid, (SELECT min(n.ID) FROM live.devicenames AS n WHERE n.devicename = s.name) || ',' ||"
    " (SELECT min(m.ID) FROM live.mfgs AS m WHERE m.mfg = s.mfg) || char(13, 10)"
    " FROM portion AS s ORDER BY hwid, seq",
    "UPDATE live.hwids SET info = coalesce(info, '') || CASE WHEN coalesce(info, '') = '' OR"
    " substr(info, -2) = char(13, 10) THEN '' ELSE char(13, 10) END || more FROM (SELECT place, group_concat(entry, '')"
    " AS more FROM (SELECT (SELECT min(h.rowid) FROM live.hwids AS h WHERE h.hwid = e.hwid) AS place, entry"
    " FROM entries AS e) WHERE place IS NOT NULL GROUP BY place) AS added WHERE hwids.rowid = added.place",
    "INSERT INTO live.hwids (hwid, info) SELECT hwid, group_concat(entry, '') FROM entries AS e"
    " WHERE NOT EXISTS (SELECT 1 FROM live.hwids AS h WHERE h.hwid = e.hwid) GROUP BY hwid",
};

} // namespace

QString Stage::Ran(const QString& about, const std::function<void()>& work) {
    data::Error error;
    return data::Ran(work, &error) ? QString() : QStringLiteral("%1: %2").arg(about, error.Description());
}

QString Stage::Read(const QStringList& paths, const Decision& decide, State crowded) {
    files_ = paths;
    QString fault;
    const QString failed = Ran(QStringLiteral("temporary files"), [&] {
        work_ = std::make_unique<data::Workspace>();
        for (const char* statement : makeTables) {
            work_->Change(statement);
        }
        work_->InTransaction([&] {
            for (qsizetype file = 0; file < paths.size() && fault.isEmpty(); ++file) {
                fault = ReadContributions(paths[file], [&](const JudgedLine& line) {
                    const database::Contribution device = Stored(line.Device);
                    work_->Change(stageLine,
                                  {int(decide(line, device)), int(file), line.Number, line.Text.left(reported),
                                   line.Reason, device.HardwareId, device.Name, device.Manufacturer});
                });
            }
        });
        work_->Change(markCrowds, {int(crowded), mostNames});
    });
    return failed.isEmpty() ? fault : failed;
}

bool Stage::IsNew(const database::Contribution& stored) {
    // Two devices with one key would need a sender who can break the sum, and would cost that sender a line.
    const QByteArray sum = QCryptographicHash::hash(DeviceKey(stored).toUtf8(), QCryptographicHash::Blake2s_128);
    qlonglong parts[2];
    std::memcpy(parts, sum.constData(), sizeof parts);
    return work_->Change("INSERT OR IGNORE INTO seen VALUES (?, ?)", {parts[0], parts[1]}) == 1;
}

qint64 Stage::Last() { return work_->Value("SELECT max(seq) FROM staged").toLongLong(); }

void Stage::Attach() {
    work_->Attach(path_, OwnRules(), patience);
    seen_ = QVariant();
}

// A few at a time: others that write wait no longer than for those.
void Stage::MarkKnown(qint64 first, qint64 last) {
    for (; first <= last; first += linesAtOnce) {
        work_->Change(markKnown, {int(State::Known), first, std::min(first + linesAtOnce - 1, last)});
    }
}

QString Stage::Compare(const QString& path) {
    path_ = path;
    return Ran(path, [this] {
        Attach();
        seen_ = work_->Value("PRAGMA live.data_version");
        MarkKnown(1, Last());
    });
}

QString Stage::FindOtherNames() {
    return Ran(path_, [this] { work_->Change(markOtherNames, {int(State::OtherName)}); });
}

QString Stage::NamesOf(const QString& hardwareId) {
    QStringList names;
    Ran(path_, [&] {
        work_->Each("SELECT info FROM live.hwids WHERE hwid = ?", {hardwareId}, [&](const data::Workspace::Row& row) {
            for (const database::InfoEntry& entry : database::DecodeInfo(row[0].toString())) {
                const QString name =
                    work_->Value("SELECT devicename FROM live.devicenames WHERE ID = ?", {entry.NameId.toLongLong()})
                        .toString();
                const QString maker =
                    work_->Value("SELECT mfg FROM live.mfgs WHERE ID = ?", {entry.ManufacturerId.toLongLong()})
                        .toString();
                names << name + QStringLiteral(", ") + maker;
            }
        });
    });
    return names.join(QStringLiteral("; "));
}

QString Stage::Each(const std::function<void(const StagedLine& line)>& use) {
    return Ran(QStringLiteral("temporary files"), [&] {
        // In pages: a report is read by somebody, and a statement that waits for that keeps others from writing.
        std::vector<StagedLine> page;
        qint64 last = 0;
        do {
            page.clear();
            work_->Each(
                "SELECT seq, file, line, text, reason, hwid, state FROM staged WHERE seq > ? ORDER BY seq LIMIT ?",
                {last, pageOfLines}, [&](const data::Workspace::Row& row) {
                    last = row[0].toLongLong();
                    page.push_back({files_.value(row[1].toInt()), row[2].toInt(), row[3].toString(), row[4].toString(),
                                    row[5].toString(), State(row[6].toInt())});
                });
            std::for_each(page.begin(), page.end(), use);
        } while (!page.empty());
    });
}

qint64 Stage::Count(State state) {
    qint64 count = 0;
    Ran(QString(),
        [&] { count = work_->Value("SELECT count(*) FROM staged WHERE state = ?", {int(state)}).toLongLong(); });
    return count;
}

void Stage::AddPortion(qint64 first, qint64 last) {
    // Now that nobody else can write: what came in since the lines were compared.
    if (work_->Value("PRAGMA live.data_version") != seen_) {
        MarkKnown(first, last);
    }
    work_->Change("DELETE FROM portion");
    work_->Change(takePortion, {first, last});
    for (const char* statement : addLines) {
        work_->Change(statement);
    }
    // A row that is longer makes the whole database one that nobody opens.
    if (work_
            ->Value("SELECT 1 FROM portion AS p JOIN live.hwids AS h ON h.hwid = p.hwid WHERE length(h.info) > ?",
                    {database::LongestInfo})
            .isValid()) {
        throw data::Error(data::ErrorUnspecified, QStringLiteral("too many devices under one ID"));
    }
}

void Stage::Add(const QString& version) {
    const qint64 last = Last();
    added_ = 0;
    do {
        if (added_ > 0) {
            QThread::msleep(breathing);
        }
        const qint64 end = std::min(added_ + portionOfLines, last);
        work_->InTransaction([&] {
            AddPortion(added_ + 1, end);
            if (end == last && !version.isEmpty() &&
                work_->Change("UPDATE live.version SET dbversion = ?", {version}) == 0) {
                work_->Change("INSERT INTO live.version (dbversion) VALUES (?)", {version});
            }
        });
        added_ = end;
    } while (added_ < last);
}

QString Stage::AddAll(const QString& version) {
    data::Error error;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        // Another file may have taken the database's place: an update, or a new one by hand.
        const bool added = data::Ran(
            [&] {
                if (work_->Moved()) {
                    Attach();
                }
                Add(version);
            },
            &error);
        if (added) {
            return QString();
        }
        if (error.Number() != data::ErrorInvalidConnection) {
            break;
        }
    }
    const QString begun = added_ == 0 ? QString() : QStringLiteral(" (the first %1 lines are in)").arg(added_);
    return QStringLiteral("%1: %2%3").arg(path_, error.Description(), begun);
}

} // namespace tool
