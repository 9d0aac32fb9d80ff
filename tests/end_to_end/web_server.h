// nginx with PHP on a loopback port, set up from the site configuration that the repository ships, in a temporary
// folder of its own. Ends with the object, its processes with it.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace end_to_end {

class WebServer {
  public:
    // `serverFolder` holds quorvane.nginx.conf and the upload script.
    explicit WebServer(const QString& serverFolder);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    // Empty once it serves; otherwise why it does not, for instance a program that is not installed.
    const QString& Fault() const { return fault_; }

    QString Url(const QString& path = {}) const;
    QString PublicFolder() const { return folder_.filePath(QStringLiteral("public")); }
    QString UploadFolder() const { return folder_.filePath(QStringLiteral("uploads")); }

    // Sends these bytes and returns everything that comes back until the server closes.
    QByteArray Exchange(const QByteArray& request) const;

  private:
    bool WriteConfiguration(const QString& serverFolder);
    bool WaitUntilReady() const;

    QTemporaryDir folder_;
    QString fault_;
    int port_ = 0;
    QProcess php_;
    QProcess nginx_;
};

} // namespace end_to_end
