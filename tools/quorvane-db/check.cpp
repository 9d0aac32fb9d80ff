// quorvane-db check: what a person should know about files of contributions before merging them.
#include "command.h"
#include "contribution_file.h"
#include "database/additions.h"
#include "database_file.h"
#include "options.h"

#include <QSet>

namespace tool {

namespace {

struct Counts {
    int Good = 0;
    int Malformed = 0;
    int Suspicious = 0;
    int Duplicate = 0;
    int Known = 0;
};

void Report(const QString& path, const JudgedLine& line, const QString& what) {
    Print(QStringLiteral("%1:%2: %3: %4").arg(Legible(path)).arg(line.Number).arg(what, Legible(line.Text.left(400))));
}

void CheckLine(const QString& path, const JudgedLine& line, bool ask, QSet<QString>& seen, Counts& counts) {
    if (line.Judgement == Verdict::Malformed) {
        ++counts.Malformed;
        Report(path, line, QStringLiteral("malformed, ") + line.Reason);
        return;
    }
    const QString key = DeviceKey(line.Device);
    if (seen.contains(key)) {
        ++counts.Duplicate;
        Report(path, line, QStringLiteral("duplicate"));
        return;
    }
    seen.insert(key);
    if (line.Judgement == Verdict::Suspicious) {
        ++counts.Suspicious;
        Report(path, line, QStringLiteral("suspicious, ") + line.Reason);
    } else if (ask && database::IsDeviceInDatabase(StoredLine(line.Device))) {
        ++counts.Known;
        Report(path, line, QStringLiteral("already known"));
    } else {
        ++counts.Good;
    }
}

} // namespace

int Check(const QStringList& arguments) {
    Options options({QStringLiteral("db")}, {});
    const QString wrong = options.Read(arguments);
    if (!wrong.isEmpty() || options.Arguments().isEmpty()) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("check needs a FILE") : wrong);
    }
    const bool ask = options.Has(QStringLiteral("db"));
    const QString fault = ask ? OpenForProgram(options.Value(QStringLiteral("db"))) : QString();
    if (!fault.isEmpty()) {
        return Fail(fault);
    }
    QSet<QString> seen;
    Counts counts;
    for (const QString& path : options.Arguments()) {
        QString error;
        const std::vector<JudgedLine> lines = ReadContributions(path, error);
        if (!error.isEmpty()) {
            return Fail(error);
        }
        for (const JudgedLine& line : lines) {
            CheckLine(path, line, ask, seen, counts);
        }
    }
    Print(QStringLiteral("%1 good, %2 malformed, %3 suspicious, %4 duplicate, %5 already known")
              .arg(counts.Good)
              .arg(counts.Malformed)
              .arg(counts.Suspicious)
              .arg(counts.Duplicate)
              .arg(counts.Known));
    return Finish(counts.Malformed + counts.Suspicious > 0 ? Findings : Done);
}

} // namespace tool
