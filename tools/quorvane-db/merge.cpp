// quorvane-db merge: adds checked contributions to a database in one transaction of its own, so that nothing is lost
// that programs and other merges add at the same time, and an interrupted or failed merge leaves the database as it
// was.
#include "command.h"
#include "database/schema.h"
#include "database_file.h"
#include "options.h"
#include "stage.h"

#include <QFileInfo>

namespace tool {

namespace {

void Report(const StagedLine& line) {
    if (line.As == State::Good) {
        Print(QStringLiteral("+ %1").arg(Legible(line.Text)));
    } else if (line.As == State::LeftOut) {
        Print(QStringLiteral("- %1 (%2)").arg(Legible(line.Text), line.Reason));
    }
}

// Empty, or what failed.
QString Gather(Stage& stage, const QString& path, const QStringList& files, bool suspiciousToo) {
    QString error = stage.Read(
        files,
        [&](const JudgedLine& line, const database::Contribution& device) {
            const bool wanted =
                line.Judgement == Verdict::Good || (line.Judgement == Verdict::Suspicious && suspiciousToo);
            return !wanted ? State::LeftOut : stage.IsNew(device) ? State::Good : State::Duplicate;
        },
        State::LeftOut);
    if (error.isEmpty() && !OpenDatabase(path, error)) {
        return error;
    }
    return error.isEmpty() ? stage.Compare(path) : error;
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
    const bool dryRun = options.Has(QStringLiteral("dry-run"));
    Stage stage;
    QString error = Gather(stage, path, options.Arguments().mid(1), options.Has(QStringLiteral("include-suspicious")));
    // Before the transaction: who reads the report may take his time, and one that nobody gets stops the merge.
    if (error.isEmpty()) {
        error = stage.Each(Report);
    }
    if (error.isEmpty() && !Printed()) {
        error = unwritable;
    }
    if (error.isEmpty() && !dryRun) {
        error = stage.AddAll(version);
    }
    if (!error.isEmpty()) {
        return Fail(error);
    }
    if (QFileInfo(path).size() > database::Rules().LargestFile) {
        Note(QStringLiteral("%1: larger than the %2 MiB that clients take")
                 .arg(path)
                 .arg(database::Rules().LargestFile >> 20));
    }
    const qint64 leftOut = stage.Count(State::LeftOut);
    Print(QStringLiteral("%1%2 added, %3 already known, %4 left out")
              .arg(dryRun ? QStringLiteral("dry run: ") : QString())
              .arg(stage.Count(State::Good))
              .arg(stage.Count(State::Known) + stage.Count(State::Duplicate))
              .arg(leftOut));
    return Finish(leftOut > 0 ? Findings : Done);
}

} // namespace tool
