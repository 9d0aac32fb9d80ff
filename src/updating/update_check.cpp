#include "updating/update_check.h"

#include "base/yield.h"
#include "updating/version_compare.h"
#include "values/addresses.h"
#include "values/program_values.h"

namespace updating {

namespace {

// An answer this long or longer is no version but a page about an error.
constexpr qsizetype programAnswerLimit = 10;
constexpr qsizetype databaseAnswerLimit = 15;

// Places in the colour table.
constexpr int programText = 1;
constexpr int importantText = 12;

QString ServerFile(const QString& name) {
    return values::ServerAddresses().UpdateHost + QStringLiteral("/files/updates/quorvane/") + name;
}

// The server's answer, empty after a failed transfer. The status is not looked at.
QString Ask(net::Inet& inet, const QString& url) {
    base::Yield();
    QString answer = inet.OpenURL(url);
    base::Yield();
    inet.Cancel();
    base::Yield();
    return answer;
}

bool IsValid(const QString& answer, qsizetype limit) { return !answer.isEmpty() && answer.size() < limit; }

void ShowResult(const CheckView& view, bool current) {
    if (current) {
        view.SetAvailable(QStringLiteral("Update Available: NO"), programText);
    } else {
        view.SetAvailable(QStringLiteral("Update Available: YES"), importantText);
    }
    view.EnableButton(!current);
}

// What both visible checks do; `isCurrent` is the flag that the answer sets.
void CheckVisibly(net::Inet& inet, const QString& url, qsizetype limit, const QString& local, bool& isCurrent,
                  const CheckView& view) {
    view.SetOnlineVersion(QStringLiteral("Online Version: Checking..."));
    const QString answer = Ask(inet, url);
    if (!IsValid(answer, limit)) {
        view.SetOnlineVersion(QStringLiteral("Online Version: Error"));
        return;
    }
    view.SetOnlineVersion(QStringLiteral("Online Version: ") + answer);
    base::Yield();
    isCurrent = IsVersionCurrent(answer, local);
    ShowResult(view, isCurrent);
}

} // namespace

QString ProgramVersionUrl() { return ServerFile(QStringLiteral("update.htm")); }

QString DatabaseVersionUrl() { return ServerFile(QStringLiteral("database_v1.htm")); }

QString DatabaseArchiveUrl() { return ServerFile(QStringLiteral("hwids.7z")); }

void CheckForUpdate(net::Inet& inet, const CheckView& view) {
    CheckVisibly(inet, ProgramVersionUrl(), programAnswerLimit, values::Program().ProgramVersion,
                 values::Program().ProgramIsCurrent, view);
}

void CheckForDatabaseUpdate(net::Inet& inet, const QString& versionCaption, const CheckView& view) {
    CheckVisibly(inet, DatabaseVersionUrl(), databaseAnswerLimit, VersionInCaption(versionCaption),
                 values::Program().DatabaseIsCurrent, view);
}

void CheckForDatabaseUpdateSilent(net::Inet& inet, const QString& versionCaption,
                                  const std::function<void(bool visible)>& showNotice) {
    const QString local = VersionInCaption(versionCaption);
    const QString answer = Ask(inet, DatabaseVersionUrl());
    if (!IsValid(answer, databaseAnswerLimit)) {
        return;
    }
    bool& isCurrent = values::Program().DatabaseIsCurrent;
    isCurrent = IsVersionCurrent(answer, local);
    showNotice(!isCurrent);
}

} // namespace updating
