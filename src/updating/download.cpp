#include "updating/download.h"

#include "base/clock.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/yield.h"
#include "net/wininet.h"
#include "updating/download_formats.h"
#include "values/addresses.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace updating {

namespace {

constexpr qint32 defaultChunk = 1024;
constexpr char16_t defaultSaveLocation[] = u"C:\\File1.tmp";
// One turn of a wait, in milliseconds; a stop is noticed at the latest then.
constexpr int waitTurn = 50;

QString DefaultUrl() { return values::ServerAddresses().WebSite + QStringLiteral("/"); }

// Where the extension's dot may stand: the fifth character from the end or later. Nothing for a text without one.
std::optional<qsizetype> FindDot(const QString& text) {
    const qsizetype dot = text.indexOf(QChar(u'.'), std::max<qsizetype>(0, text.size() - 5));
    return dot < 0 ? std::nullopt : std::optional(dot);
}

} // namespace

DownLoadControl::DownLoadControl(QObject* parent)
    : QObject(parent), url_(DefaultUrl()), saveLocation_(QString::fromUtf16(defaultSaveLocation)),
      chunk_(defaultChunk) {}

void DownLoadControl::SetURL(const QString& url) {
    url_ = url;
    Q_EMIT PropertyChanged(QStringLiteral("Url"));
}

void DownLoadControl::SetSaveLocation(const QString& path) {
    saveLocation_ = path;
    Q_EMIT PropertyChanged(QStringLiteral("SaveLocation"));
}

void DownLoadControl::SetCHUNK(qint32 bytes) {
    chunk_ = bytes;
    Q_EMIT PropertyChanged(QStringLiteral("CHUNK"));
}

void DownLoadControl::SetKeepType(bool on) {
    keepType_ = on;
    Q_EMIT PropertyChanged(QStringLiteral("KeepType"));
}

void DownLoadControl::SetOnlineCheck(bool on) {
    onlineCheck_ = on;
    Q_EMIT PropertyChanged(QStringLiteral("OnlineCheck"));
}

void DownLoadControl::SetPromptOverwrite(bool on) {
    promptOverwrite_ = on;
    Q_EMIT PropertyChanged(QStringLiteral("PromptOverwrite"));
}

void DownLoadControl::ReadProperties(const base::PropertyBag& bag) {
    url_ = bag.Read(QStringLiteral("URL"), DefaultUrl());
    saveLocation_ = bag.Read(QStringLiteral("SaveLocation"), QString::fromUtf16(defaultSaveLocation));
    chunk_ = bag.Read(QStringLiteral("CHUNK"), defaultChunk);
    keepType_ = bag.Read(QStringLiteral("KeepType"), false);
    onlineCheck_ = bag.Read(QStringLiteral("OnlineCheck"), false);
    promptOverwrite_ = bag.Read(QStringLiteral("PromptOverwrite"), false);
}

void DownLoadControl::WriteProperties(base::PropertyBag& bag) const {
    bag.WriteProperty(QStringLiteral("URL"), url_, DefaultUrl());
    bag.WriteProperty(QStringLiteral("SaveLocation"), saveLocation_, QString::fromUtf16(defaultSaveLocation));
    bag.WriteProperty(QStringLiteral("CHUNK"), chunk_, defaultChunk);
    bag.WriteProperty(QStringLiteral("KeepType"), keepType_, false);
    bag.WriteProperty(QStringLiteral("OnlineCheck"), onlineCheck_, false);
    bag.WriteProperty(QStringLiteral("PromptOverwrite"), promptOverwrite_, false);
}

void DownLoadControl::SetStop(const std::function<bool()>& stop) {
    stop_ = stop;
    i1_.SetStop(stop);
}

void DownLoadControl::Cancel() {
    cCancel_ = true;
    Q_EMIT StatusChange(QStringLiteral("Cancelling.."));
}

void DownLoadControl::Pause(const bool& pause) {
    cPause_ = pause;
    if (!cPause_) {
        Q_EMIT StatusChange(QStringLiteral("Unpausing"));
    }
}

bool DownLoadControl::TestConnection() {
    constexpr std::array<std::pair<quint32, const char*>, 3> kinds = {{
        {net::INTERNET_CONNECTION_MODEM, "Connected Via Modem."},
        {net::INTERNET_CONNECTION_LAN, "Connected Via LAN."},
        {net::INTERNET_CONNECTION_PROXY, "Connected Through A Proxy."},
    }};
    quint32 flags = 0;
    const bool connected = net::InternetGetConnectedState(flags, 0);
    for (const auto& [flag, text] : kinds) {
        if ((flags & flag) != 0) {
            Q_EMIT ConnectionState(QString::fromLatin1(text));
        }
    }
    return connected;
}

void DownLoadControl::ReportNoConnection() {
    Q_EMIT DLECode(5);
    Q_EMIT DLError(QStringLiteral("No Connection Found!"));
    Q_EMIT StatusChange(QStringLiteral("Download aborted, no connection present!"));
}

void DownLoadControl::GetFileInformation() {
    cCancel_ = false;
    if (onlineCheck_) {
        connected_ = TestConnection();
        if (!connected_) {
            ReportNoConnection();
            return;
        }
    }
    if (!RequestHeaders() || !TakeHeaders()) {
        Q_EMIT DLError(QStringLiteral("Error Reading File Headers."));
        Q_EMIT StatusChange(QStringLiteral("Error Reading File Headers!"));
        Q_EMIT DLECode(3);
    }
}

void DownLoadControl::WaitForHeaders() {
    while (i1_.StillExecuting()) {
        base::YieldBlocking(waitTurn);
    }
}

bool DownLoadControl::RequestHeaders() {
    i1_.SetURL(url_);
    if (!i1_.Execute(std::nullopt, QStringLiteral("GET"))) {
        return false;
    }
    Q_EMIT StatusChange(QStringLiteral("Initiating Connection."));
    WaitForHeaders();
    Q_EMIT StatusChange(QStringLiteral("Connection Accepted, Retrieving File Information."));
    return true;
}

// True if the status was one of those that end here; any other, a server's failure too, is treated as success.
bool DownLoadControl::ReportRefusal(const QString& code) {
    if (code == QStringLiteral("401")) {
        Q_EMIT StatusChange(QStringLiteral("Unauthorized Access, Download Terminated!"));
        Q_EMIT DLECode(401);
        Q_EMIT DLError(QStringLiteral("Unauthorized Access!"));
        aResume_ = false;
        fileExists_ = true;
    } else if (code == QStringLiteral("403")) {
        Q_EMIT StatusChange(QStringLiteral("Access Denied, Download Terminated!"));
        Q_EMIT DLECode(403);
        Q_EMIT DLError(QStringLiteral("Access Denied!"));
        aResume_ = false;
        fileExists_ = true;
    } else if (code == QStringLiteral("404")) {
        Q_EMIT DLError(QStringLiteral("File Not Found!"));
        Q_EMIT StatusChange(QStringLiteral("File Not Found!"));
        Q_EMIT DLECode(2);
        fileExists_ = false;
    } else {
        return false;
    }
    fileSize_ = 0;
    i1_.Cancel();
    return true;
}

// False where the answer or its length cannot be read.
bool DownLoadControl::TakeHeaders() {
    if (!cCancel_) {
        // The status line holds the code at this place ("HTTP/1.1 200").
        const QString code = base::Mid(i1_.GetHeader(), 10, 3);
        if (ReportRefusal(code)) {
            return true;
        }
    }
    // A handler of the events above may have cancelled.
    if (cCancel_) {
        cCancel_ = false;
        Q_EMIT DLECode(4);
        Q_EMIT StatusChange(QStringLiteral("cancelled."));
        return true;
    }
    // Deliberate: it looks at a text of its own, not at the headers, so resuming is never found to be supported.
    const QString version;
    if (base::Mid(version, 6, 3) == QStringLiteral("1.1")) {
        aResume_ = true;
    }
    fileExists_ = true;
    // One second back, so that the first rate is finite.
    startTime_ = base::SecondsSinceMidnight() - 1.0F;
    const std::optional<qint32> length =
        base::TextToInt(i1_.GetHeader(QStringLiteral("Content-Length")).value_or(QString()));
    if (!length) {
        return false;
    }
    fileSize_ = *length;
    Q_EMIT StatusChange(QStringLiteral("Retrieving File Information Complete!"));
    return true;
}

// Nothing where the texts are too short for an extension.
std::optional<QString> DownLoadControl::Target() const {
    if (!keepType_) {
        return saveLocation_;
    }
    const std::optional<qsizetype> urlDot = FindDot(url_);
    const std::optional<qsizetype> fileDot = FindDot(saveLocation_);
    if (!urlDot || !fileDot) {
        return std::nullopt;
    }
    return saveLocation_.first(*fileDot + 1) + url_.sliced(*urlDot + 1);
}

// False where a cancel is pending, without a word, and without a connection where one is asked for.
bool DownLoadControl::MayStart() {
    if (cCancel_) {
        return false;
    }
    if (onlineCheck_ && !connected_) {
        ReportNoConnection();
        i1_.Cancel();
        return false;
    }
    return true;
}

void DownLoadControl::DownLoad() {
    if (!MayStart()) {
        return;
    }
    i1_.SetURL(url_);
    const std::optional<QString> target = Target();
    if (!target) {
        Fail();
        return;
    }
    // Nobody is asked, whatever PromptOverwrite says.
    if (base::FileExists(*target) && !base::DeleteFileW(*target)) {
        Fail();
        return;
    }
    Run(*target, 0);
}

void DownLoadControl::DLResume() {
    if (!MayStart()) {
        return;
    }
    i1_.SetURL(url_);
    const QString target = saveLocation_;
    if (!base::FileExists(target)) {
        Q_EMIT DLError(QStringLiteral("Resume File Not Found!"));
        Q_EMIT DLECode(6);
        Q_EMIT StatusChange(QStringLiteral("Resume File Not Found, Aborting Download!"));
        return;
    }
    if (!aResume_) {
        Q_EMIT DLError(QStringLiteral("Resume Not Supported!"));
        Q_EMIT DLECode(7);
        Q_EMIT StatusChange(QStringLiteral("Resume NotSupported, Aborting Download!"));
        return;
    }
    const qint64 offset = QFile(base::NativePath(target)).size();
    const QString range = QStringLiteral("Range: bytes=%1-\r\n").arg(offset);
    if (offset > std::numeric_limits<qint32>::max() || !i1_.Execute(std::nullopt, QStringLiteral("GET"), {}, range)) {
        Fail();
        return;
    }
    WaitForHeaders();
    Run(target, static_cast<qint32>(offset));
}

bool DownLoadControl::OpenTarget(const QString& target, qint64 position) {
    file_.close();
    file_.setFileName(base::NativePath(target));
    return file_.open(QIODevice::ReadWrite) && (position == 0 || file_.seek(position));
}

void DownLoadControl::Run(const QString& target, qint32 offset) {
    if (!OpenTarget(target, offset)) {
        Fail();
        return;
    }
    Q_EMIT StatusChange(QStringLiteral("Opening ") + target + QStringLiteral("..."));
    inDL_ = true;
    switch (TransferLoop(offset)) {
    case LoopEnd::Cancelled:
        // The connection stays open and InDL true; both end with the next request or with the control.
        cCancel_ = false;
        file_.close();
        Q_EMIT DLECode(4);
        Q_EMIT StatusChange(QStringLiteral("Cancelled."));
        return;
    case LoopEnd::Failed:
        Fail();
        return;
    case LoopEnd::Finished:
        break;
    }
    // What was still buffered is written now, which a full disk refuses.
    if (!file_.flush()) {
        Fail();
        return;
    }
    file_.close();
    inDL_ = false;
    Q_EMIT DLComplete();
    Q_EMIT StatusChange(QStringLiteral("Download Successful!"));
    i1_.Cancel();
}

DownLoadControl::LoopEnd DownLoadControl::TransferLoop(qint32 offset) {
    qint64 total = 0;
    while (true) {
        if (cCancel_) {
            return LoopEnd::Cancelled;
        }
        const std::optional<QByteArray> chunk = i1_.GetChunk(chunk_);
        if (!chunk) {
            // A wait that the window's end cut short was cancelled, not broken.
            return cCancel_ && Stopped() ? LoopEnd::Cancelled : LoopEnd::Failed;
        }
        total += chunk->size();
        // More than was promised is a body without end, which the disk need not hold. Promised nothing, the first
        // report fails.
        const bool endless = fileSize_ > 0 && offset + total > fileSize_;
        if (endless || file_.write(*chunk) != chunk->size()) {
            return LoopEnd::Failed;
        }
        if (!ReportChunk(static_cast<qint32>(total), offset)) {
            return LoopEnd::Failed;
        }
        WaitWhilePaused();
        if (chunk->size() <= 1) {
            return LoopEnd::Finished;
        }
    }
}

// False for a division by zero: no time has passed, nothing came, or the size is 0.
bool DownLoadControl::ReportChunk(qint32 runTotal, qint32 offset) {
    const float elapsed = base::SecondsSinceMidnight() - startTime_;
    if (elapsed == 0.0F) {
        return false;
    }
    const float rate = static_cast<float>(runTotal) / elapsed; // bytes per second
    if (rate == 0.0F) {
        return false;
    }
    const double received = double(runTotal) + offset;
    const auto timeLeft = static_cast<float>((fileSize_ - received) / double(rate));
    Q_EMIT Rate(FormatRate(double(rate)));
    Q_EMIT TimeLeft(FormatTimeLeft(timeLeft));
    Q_EMIT RecievedBytes(static_cast<qint32>(received));
    if (fileSize_ == 0) {
        return false;
    }
    Q_EMIT Percent(base::RoundToInt(received / fileSize_ * 100));
    Q_EMIT StatusChange(QStringLiteral("Recieving File..."));
    return true;
}

void DownLoadControl::WaitWhilePaused() {
    while (cPause_ && !Stopped()) {
        base::YieldBlocking(waitTurn);
        Q_EMIT StatusChange(QStringLiteral("Paused."));
    }
}

void DownLoadControl::Fail() {
    // The file stays open, as far as the next transfer is concerned; what came is on the disk all the same.
    file_.flush();
    Q_EMIT DLError(QStringLiteral("Error Downloading File from : ") + url_);
    Q_EMIT StatusChange(QStringLiteral("Download Aborted Due To Error In Download!"));
    Q_EMIT DLECode(1);
    i1_.Cancel();
}

} // namespace updating
