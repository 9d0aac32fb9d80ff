// quorvane-db check: what a person should know about files of contributions before merging them.
#include "command.h"
#include "database_file.h"
#include "options.h"
#include "stage.h"

namespace tool {

namespace {

void Report(const StagedLine& line, Stage& stage) {
    QString what;
    switch (line.As) {
    case State::Malformed:
        what = QStringLiteral("malformed, ") + line.Reason;
        break;
    case State::Suspicious:
        what = QStringLiteral("suspicious, ") + line.Reason;
        break;
    case State::Duplicate:
        what = QStringLiteral("duplicate");
        break;
    case State::Known:
        what = QStringLiteral("already known");
        break;
    case State::OtherName:
        what = QStringLiteral("known under another name (%1)").arg(Legible(stage.NamesOf(line.HardwareId).left(400)));
        break;
    default:
        return;
    }
    Print(QStringLiteral("%1:%2: %3: %4").arg(Legible(line.File)).arg(line.Number).arg(what, Legible(line.Text)));
}

// Empty, or what failed.
QString Compare(Stage& stage, const QString& path) {
    QString error;
    if (!OpenDatabase(path, error)) {
        return error;
    }
    error = stage.Compare(path);
    return error.isEmpty() ? stage.FindOtherNames() : error;
}

} // namespace

int Check(const QStringList& arguments) {
    Options options({QStringLiteral("db")}, {});
    const QString wrong = options.Read(arguments);
    if (!wrong.isEmpty() || options.Arguments().isEmpty()) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("check needs a FILE") : wrong);
    }
    Stage stage;
    QString error = stage.Read(
        options.Arguments(),
        [&](const JudgedLine& line, const database::Contribution& device) {
            return line.Judgement == Verdict::Malformed    ? State::Malformed
                   : !stage.IsNew(device)                  ? State::Duplicate
                   : line.Judgement == Verdict::Suspicious ? State::Suspicious
                                                           : State::Good;
        },
        State::Suspicious);
    if (error.isEmpty() && options.Has(QStringLiteral("db"))) {
        error = Compare(stage, options.Value(QStringLiteral("db")));
    }
    if (error.isEmpty()) {
        error = stage.Each([&](const StagedLine& line) { Report(line, stage); });
    }
    if (!error.isEmpty()) {
        return Fail(error);
    }
    const qint64 malformed = stage.Count(State::Malformed);
    const qint64 suspicious = stage.Count(State::Suspicious);
    const qint64 otherName = stage.Count(State::OtherName);
    Print(QStringLiteral("%1 good, %2 malformed, %3 suspicious, %4 duplicate, %5 already known%6")
              .arg(stage.Count(State::Good))
              .arg(malformed)
              .arg(suspicious)
              .arg(stage.Count(State::Duplicate))
              .arg(stage.Count(State::Known))
              .arg(otherName > 0 ? QStringLiteral(", %1 under another name").arg(otherName) : QString()));
    return Finish(malformed + suspicious + otherName > 0 ? Findings : Done);
}

} // namespace tool
