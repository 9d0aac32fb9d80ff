// The downloader control: fetches one file over HTTP into a local file, chunk by chunk, and reports everything by
// events. It wraps one transfer control and knows nothing of what the file is for. Drive it by GetFileInformation, then
// DownLoad. No operation returns a status; a partial file stays where it is.
#pragma once

#include "base/property_bag.h"
#include "net/inet.h"

#include <QFile>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>

namespace updating {

class DownLoadControl : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString URL READ URL WRITE SetURL)
    Q_PROPERTY(QString SaveLocation READ SaveLocation WRITE SetSaveLocation)
    Q_PROPERTY(qint32 CHUNK READ CHUNK WRITE SetCHUNK)
    Q_PROPERTY(bool KeepType READ KeepType WRITE SetKeepType)
    Q_PROPERTY(bool OnlineCheck READ OnlineCheck WRITE SetOnlineCheck)
    Q_PROPERTY(bool PromptOverwrite READ PromptOverwrite WRITE SetPromptOverwrite)
    Q_PROPERTY(qint32 ROLLBACK READ ROLLBACK WRITE SetROLLBACK)
    Q_PROPERTY(qint32 FileSize READ FileSize)
    Q_PROPERTY(bool FileExists READ FileExists)
    Q_PROPERTY(bool ResumeSupported READ ResumeSupported)
    Q_PROPERTY(bool AResume READ ResumeSupported)
    Q_PROPERTY(bool Connected READ Connected)
    Q_PROPERTY(bool CCancel READ CCancel)
    Q_PROPERTY(bool CPause READ CPause)
    Q_PROPERTY(bool InDL READ InDL)
    Q_PROPERTY(double Width READ Width)
    Q_PROPERTY(double Height READ Height)

  public:
    explicit DownLoadControl(QObject* parent = nullptr);

    // Persisted. Each setter notifies the host.
    QString URL() const { return url_; }
    void SetURL(const QString& url);
    QString SaveLocation() const { return saveLocation_; }
    void SetSaveLocation(const QString& path);
    // Bytes asked of the transfer control per read.
    qint32 CHUNK() const { return chunk_; }
    void SetCHUNK(qint32 bytes);
    // Replaces the target's extension by the URL's.
    bool KeepType() const { return keepType_; }
    void SetKeepType(bool on);
    // Tests the connection before starting.
    bool OnlineCheck() const { return onlineCheck_; }
    void SetOnlineCheck(bool on);
    // Changes nothing that is seen: an existing target is deleted either way.
    bool PromptOverwrite() const { return promptOverwrite_; }
    void SetPromptOverwrite(bool on);

    // A plain value: kept, not persisted, without effect.
    qint32 ROLLBACK() const { return rollback_; }
    void SetROLLBACK(qint32 value) { rollback_ = value; }

    // Content-Length of the last answer; 0 after 401, 403 and 404.
    qint32 FileSize() const { return fileSize_; }
    bool FileExists() const { return fileExists_; }
    // Always false: see GetFileInformation.
    bool ResumeSupported() const { return aResume_; }
    bool Connected() const { return connected_; }
    // A cancel is pending.
    bool CCancel() const { return cCancel_; }
    bool CPause() const { return cPause_; }
    // Stays true after a cancel and after a failure.
    bool InDL() const { return inDL_; }
    // The control's surface cannot be sized; twips.
    double Width() const { return 480; }
    double Height() const { return 480; }

    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

    // Opens the request and reads the headers; the response stays open for DownLoad.
    void GetFileInformation();
    // Reads the body of that response into SaveLocation. Does not return before the end, dispatching events meanwhile.
    void DownLoad();
    // Asks for the rest of a partial file. Always refuses, as resuming is never found to be supported.
    void DLResume();
    // Takes effect before the next read, and not while paused.
    void Cancel();
    void Pause(const bool& pause);

    // Ends every wait when it turns true: the window or the program is gone.
    void SetStop(const std::function<bool()>& stop);
    // The transfer control, for its limits.
    net::Inet& I1() { return i1_; }

  Q_SIGNALS:
    void DLComplete();
    void DLError(const QString& text);
    void DLECode(qint32 code);
    void RecievedBytes(qint32 total);
    void Percent(qint32 percent);
    void StatusChange(const QString& text);
    void Rate(const QString& text);
    void TimeLeft(const QString& text);
    void ConnectionState(const QString& text);
    // A persisted property was set; the name is the host's.
    void PropertyChanged(const QString& name);

  private:
    enum class LoopEnd { Finished, Cancelled, Failed };

    bool TestConnection();
    void ReportNoConnection();
    void WaitForHeaders();
    bool RequestHeaders();
    bool ReportRefusal(const QString& code);
    bool TakeHeaders();
    bool MayStart();
    std::optional<QString> Target() const;
    bool OpenTarget(const QString& target, qint64 position);
    void Run(const QString& target, qint32 offset);
    LoopEnd TransferLoop(qint32 offset);
    bool ReportChunk(qint32 runTotal, qint32 offset);
    void WaitWhilePaused();
    bool Stopped() const { return stop_ && stop_(); }
    void Fail();

    net::Inet i1_;
    std::function<bool()> stop_;
    QFile file_;
    QString url_;
    QString saveLocation_;
    qint32 chunk_ = 0;
    bool keepType_ = false;
    bool onlineCheck_ = false;
    bool promptOverwrite_ = false;
    qint32 rollback_ = 0;
    qint32 fileSize_ = 0;
    bool fileExists_ = false;
    bool aResume_ = false;
    bool connected_ = false;
    bool cCancel_ = false;
    bool cPause_ = false;
    bool inDL_ = false;
    float startTime_ = 0; // seconds since midnight
};

} // namespace updating
