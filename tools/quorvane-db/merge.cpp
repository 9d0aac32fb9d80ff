// quorvane-db merge: adds checked contributions to a database through the program's own additions. It works on a copy
// that takes the database's place at the end, so an interrupted or failed merge leaves the database as it was.
#include "command.h"
#include "contribution_file.h"
#include "data/command.h"
#include "data/replace_file.h"
#include "database/additions.h"
#include "database/store.h"
#include "database_file.h"
#include "options.h"

#include <QCoreApplication>
#include <QFile>
#include <QSet>

namespace tool {

namespace {

class Merger {
  public:
    Merger(bool suspiciousToo, bool dryRun) : suspiciousToo_(suspiciousToo), dryRun_(dryRun) {}

    void Take(const JudgedLine& line) {
        const bool wanted =
            line.Judgement == Verdict::Good || (line.Judgement == Verdict::Suspicious && suspiciousToo_);
        const QString clean = StoredLine(line.Device);
        if (!wanted) {
            ++leftOut_;
            Report("-", line, line.Reason);
        } else if (seen_.contains(DeviceKey(line.Device)) || database::IsDeviceInDatabase(clean)) {
            ++known_;
        } else if (dryRun_ || Add(clean)) {
            seen_.insert(DeviceKey(line.Device));
            ++added_;
            Report("+", line);
        } else {
            ++leftOut_;
            Report("-", line, QStringLiteral("the database does not take it"));
        }
    }

    int Summarise() const {
        Print(QStringLiteral("%1%2 added, %3 already known, %4 left out")
                  .arg(dryRun_ ? QStringLiteral("dry run: ") : QString())
                  .arg(added_)
                  .arg(known_)
                  .arg(leftOut_));
        return Finish(leftOut_ > 0 ? Findings : Done);
    }

  private:
    static bool Add(const QString& clean) {
        database::AddDeviceToDatabase(clean);
        return database::IsDeviceInDatabase(clean);
    }

    static void Report(const char* sign, const JudgedLine& line, const QString& reason = QString()) {
        Print(QStringLiteral("%1 %2%3").arg(QLatin1String(sign), Legible(line.Text.left(400)),
                                            reason.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(reason)));
    }

    bool suspiciousToo_;
    bool dryRun_;
    QSet<QString> seen_;
    int added_ = 0;
    int known_ = 0;
    int leftOut_ = 0;
};

void SetVersion(const QString& version) {
    data::Command command;
    command.SetActiveConnection(database::DatabaseConnection());
    command.AppendParameter({QString(), data::adVarChar, data::adParamInput, longestVersion, version});
    const bool any = CountRows(database::DatabaseConnection(), QStringLiteral("version")) > 0;
    command.SetCommandText(any ? QStringLiteral("UPDATE version SET dbversion = ?")
                               : QStringLiteral("INSERT INTO version (dbversion) VALUES(?)"));
    command.Execute(data::adCmdText + data::adExecuteNoRecords);
}

// Makes the copy while nobody can write to the database. Empty, or what failed.
QString CopyDatabase(const QString& path, const QString& copy) {
    QString error;
    const data::ConnectionPtr connection = OpenDatabase(path, error);
    if (!connection) {
        return error;
    }
    data::Error failure;
    if (!data::Ran([&] { connection->BeginTrans(); }, &failure)) {
        return QStringLiteral("%1: %2").arg(path, failure.Description());
    }
    error = CopyFile(path, copy);
    connection->RollbackTrans();
    return error.isEmpty() ? QString() : QStringLiteral("%1: %2").arg(copy, error);
}

// Empty, or what failed.
QString ReadAll(const QStringList& paths, std::vector<JudgedLine>& lines) {
    QString error;
    for (const QString& path : paths) {
        const std::vector<JudgedLine> more = ReadContributions(path, error);
        if (!error.isEmpty()) {
            break;
        }
        lines.insert(lines.end(), more.begin(), more.end());
    }
    return error;
}

int DryRun(const QString& path, const std::vector<JudgedLine>& lines, Merger& merger) {
    const QString error = OpenForProgram(path);
    if (!error.isEmpty()) {
        return Fail(error);
    }
    for (const JudgedLine& line : lines) {
        merger.Take(line);
    }
    return merger.Summarise();
}

// Empty, or why the copy must not take the database's place: a disk that is full costs lines that the additions pass
// over, and a report that nobody got is none.
QString AddTo(const QString& copy, const std::vector<JudgedLine>& lines, const QString& version, Merger& merger) {
    QString error = OpenForProgram(copy);
    if (!error.isEmpty()) {
        return error;
    }
    // Nobody misses the copy after a crash, and it is synced before it takes the database's place.
    data::Ran([] { database::DatabaseConnection()->LeaveWritesToSystem(); });
    for (const JudgedLine& line : lines) {
        merger.Take(line);
    }
    data::Error failure;
    if (!version.isEmpty()) {
        data::Ran([&] { SetVersion(version); }, &failure);
    }
    const QString fault = database::DatabaseConnection()->StorageFault();
    database::CloseDeviceDatabase();
    error = fault.isEmpty() ? failure.Description() : fault;
    return !error.isEmpty() ? QStringLiteral("%1: %2").arg(copy, error) : Printed() ? QString() : unwritable;
}

// Empty, or what failed; the copy is then gone.
QString MergeInto(const QString& path, const std::vector<JudgedLine>& lines, const QString& version, Merger& merger) {
    const QString copy = path + QStringLiteral(".new-%1").arg(QCoreApplication::applicationPid());
    QString error = CopyDatabase(path, copy);
    if (!error.isEmpty()) {
        return error;
    }
    error = AddTo(copy, lines, version, merger);
    if (error.isEmpty() && !data::ReplaceDatabaseFile(copy, path, &error)) {
        error = QStringLiteral("%1: %2").arg(path, error);
    }
    if (!error.isEmpty()) {
        QFile::remove(copy);
        QFile::remove(copy + QStringLiteral("-journal"));
    }
    return error;
}

} // namespace

int Merge(const QStringList& arguments) {
    Options options({QStringLiteral("version")}, {QStringLiteral("dry-run"), QStringLiteral("include-suspicious")});
    const QString wrong = options.Read(arguments);
    if (!wrong.isEmpty() || options.Arguments().size() < 2) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("merge needs a DATABASE and a FILE") : wrong);
    }
    const QString version = options.Value(QStringLiteral("version"));
    if (version.size() > longestVersion) {
        return RefuseUsage(QStringLiteral("the version is longer than %1 characters").arg(longestVersion));
    }
    const QString path = options.Arguments().first();
    std::vector<JudgedLine> lines;
    QString error = ReadAll(options.Arguments().mid(1), lines);
    if (!error.isEmpty()) {
        return Fail(error);
    }
    const bool dryRun = options.Has(QStringLiteral("dry-run"));
    Merger merger(options.Has(QStringLiteral("include-suspicious")), dryRun);
    if (dryRun) {
        return DryRun(path, lines, merger);
    }
    error = MergeInto(path, lines, version, merger);
    return error.isEmpty() ? merger.Summarise() : Fail(error);
}

} // namespace tool
