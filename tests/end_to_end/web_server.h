// nginx with PHP on a loopback port, set up from the site configuration that the repository ships, in a temporary
// folder of its own. Ends with the object, its processes with it.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace end_to_end {

class WebServer {
  public:
    // `serverFolder` holds quorvane.nginx.conf and the upload script; `filesPerDay` is what one sender may upload. The
    // server takes a request for one from the address in its header X-Sender, if it has one.
    explicit WebServer(const QString& serverFolder, int filesPerDay = 20);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    // Empty once it serves; otherwise why it does not, for instance a program that is not installed.
    const QString& Fault() const { return fault_; }

    QString Url(const QString& path = {}) const;
    // Of the processes that run scripts, once all of them are there.
    QStringList ScriptProcesses() const;
    QString PublicFolder() const { return folder_.filePath(QStringLiteral("public")); }
    QString UploadFolder() const { return folder_.filePath(QStringLiteral("uploads")); }
    // Where PHP keeps what arrives until the script has looked at it.
    QString TemporaryFolder() const { return folder_.filePath(QStringLiteral("tmp")); }

    // Sends these bytes and returns everything that comes back until the server closes.
    QByteArray Exchange(const QByteArray& request) const;
    // The same with many at once: all are sent but for their last byte before any is sent whole.
    QByteArrayList Exchange(const QByteArrayList& requests) const;

  private:
    bool WriteConfiguration(const QString& serverFolder, int filesPerDay);
    bool WaitUntilReady() const;

    QTemporaryDir folder_;
    QString fault_;
    int port_ = 0;
    QProcess php_;
    QProcess nginx_;
};

} // namespace end_to_end
