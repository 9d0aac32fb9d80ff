#include "web_server.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QThread>
#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace end_to_end {

namespace {

constexpr int scriptProcesses = 8;

const QStringList programFolders = {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin"),
                                    QStringLiteral("/usr/bin")};

QString FindPhp() {
    for (const QString& folder : programFolders) {
        const QStringList found = QDir(folder).entryList({QStringLiteral("php-fpm*")}, QDir::Files, QDir::Name);
        if (!found.isEmpty()) {
            return folder + QChar(u'/') + found.last();
        }
    }
    return {};
}

sockaddr_in Loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<quint16>(port));
    return address;
}

// 0 if there is none.
int FreePort() {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t length = sizeof address;
    const bool bound = bind(probe, reinterpret_cast<const sockaddr*>(&address), length) == 0 &&
                       getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length) == 0;
    close(probe);
    return bound ? ntohs(address.sin_port) : 0;
}

int Connect(int port) {
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(port);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        return connection;
    }
    close(connection);
    return -1;
}

// The socket's file is there before anybody listens at it.
bool Listens(const QString& socketFile) {
    const QByteArray path = QFile::encodeName(socketFile);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= qsizetype(sizeof address.sun_path)) {
        return false;
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected = connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(connection);
    return connected;
}

void Send(int connection, const QByteArray& bytes) {
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t taken =
            send(connection, bytes.constData() + sent, static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (taken <= 0) {
            break;
        }
        sent += taken;
    }
}

// What comes until the other side closes; then the connection is closed too.
QByteArray Receive(int connection) {
    QByteArray answer;
    char piece[4096];
    for (ssize_t size = 0; (size = recv(connection, piece, sizeof piece, 0)) > 0;) {
        answer.append(piece, size);
    }
    close(connection);
    return answer;
}

bool Write(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

void Stop(QProcess& process) {
    if (process.state() != QProcess::NotRunning) {
        process.terminate();
        if (!process.waitForFinished(5'000)) {
            process.kill();
            process.waitForFinished(5'000);
        }
    }
}

} // namespace

WebServer::WebServer(const QString& serverFolder, int filesPerDay) {
    const QString nginx = QStandardPaths::findExecutable(QStringLiteral("nginx"), programFolders);
    const QString php = FindPhp();
    if (nginx.isEmpty() || php.isEmpty()) {
        fault_ = QStringLiteral("%1 is not installed")
                     .arg(nginx.isEmpty() ? QStringLiteral("nginx") : QStringLiteral("php-fpm"));
        return;
    }
    port_ = FreePort();
    if (!WriteConfiguration(serverFolder, filesPerDay)) {
        fault_ = QStringLiteral("the configuration cannot be written");
        return;
    }
    QStringList phpArguments = {QStringLiteral("-F"), QStringLiteral("-y"),
                                folder_.filePath(QStringLiteral("php.conf"))};
    if (geteuid() == 0) {
        phpArguments.append(QStringLiteral("-R"));
    }
    // A test that is killed must not leave its servers running.
    for (QProcess* process : {&php_, &nginx_})
        process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    php_.start(php, phpArguments);
    nginx_.start(nginx, {QStringLiteral("-p"), folder_.path(), QStringLiteral("-c"),
                         folder_.filePath(QStringLiteral("nginx.conf")), QStringLiteral("-e"),
                         folder_.filePath(QStringLiteral("error.log"))});
    if (!WaitUntilReady()) {
        fault_ = QStringLiteral("the server does not come up: ") + QString::fromUtf8(nginx_.readAllStandardError()) +
                 QString::fromUtf8(php_.readAllStandardError());
    }
}

WebServer::~WebServer() {
    Stop(nginx_);
    Stop(php_);
}

bool WebServer::WriteConfiguration(const QString& serverFolder, int filesPerDay) {
    QFile siteFile(serverFolder + QStringLiteral("/quorvane.nginx.conf"));
    if (!siteFile.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray folder = folder_.path().toUtf8();
    QByteArray site = siteFile.readAll();
    // The names that an administrator changes.
    site.replace("listen 80;", "listen 127.0.0.1:" + QByteArray::number(port_) + ';');
    site.replace("/srv/quorvane/public", folder + "/public");
    site.replace("/srv/quorvane/server", serverFolder.toUtf8());
    site.replace("/srv/quorvane/uploads", folder + "/uploads");
    site.replace("QUORVANE_UPLOAD_LIMIT 20;", "QUORVANE_UPLOAD_LIMIT " + QByteArray::number(filesPerDay) + ';');
    site.replace("unix:/run/php/php-fpm.sock", "unix:" + folder + "/php.sock");
    site.replace("include fastcgi_params;", "include /etc/nginx/fastcgi_params;");
    const QByteArray user = geteuid() == 0 ? "user root;\n" : "";
    const QByteArray nginx =
        user + "daemon off;\nworker_processes 1;\npid " + folder + "/nginx.pid;\nerror_log " + folder +
        "/error.log;\nevents {}\nhttp {\naccess_log off;\n"
        "set_real_ip_from 127.0.0.1;\nreal_ip_header X-Sender;\nclient_body_temp_path " +
        folder + "/body;\nfastcgi_temp_path " + folder + "/fastcgi;\nproxy_temp_path " + folder +
        "/proxy;\nuwsgi_temp_path " + folder + "/uwsgi;\nscgi_temp_path " + folder + "/scgi;\n" + site + "}\n";
    const QByteArray php = "[global]\nerror_log = " + folder + "/php.log\ndaemonize = no\n[www]\n" +
                           (geteuid() == 0 ? "user = root\ngroup = root\n" : "") + "listen = " + folder +
                           "/php.sock\npm = static\npm.max_children = " + QByteArray::number(scriptProcesses) +
                           "\nphp_flag[display_errors] = on\n" + "php_admin_value[upload_tmp_dir] = " + folder +
                           "/tmp\n";
    QDir(folder_.path()).mkpath(QStringLiteral("public/files/updates/quorvane"));
    QDir(folder_.path()).mkpath(QStringLiteral("uploads"));
    QDir(folder_.path()).mkpath(QStringLiteral("tmp"));
    return Write(folder_.filePath(QStringLiteral("nginx.conf")), nginx) &&
           Write(folder_.filePath(QStringLiteral("php.conf")), php);
}

bool WebServer::WaitUntilReady() const {
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(10'000)) {
        const int connection = Connect(port_);
        if (connection >= 0) {
            close(connection);
            if (Listens(folder_.filePath(QStringLiteral("php.sock")))) {
                return true;
            }
        }
        QThread::msleep(20);
    }
    return false;
}

QString WebServer::Url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port_).arg(path);
}

QStringList WebServer::ScriptProcesses() const {
    QStringList numbers;
    for (const QDeadlineTimer patience(10'000); numbers.size() < scriptProcesses && !patience.hasExpired();) {
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(php_.processId()));
        if (!children.open(QIODevice::ReadOnly))
            break;
        numbers = QString::fromLatin1(children.readAll()).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    return numbers;
}

QByteArray WebServer::Exchange(const QByteArray& request) const { return Exchange(QByteArrayList{request}).first(); }

QByteArrayList WebServer::Exchange(const QByteArrayList& requests) const {
    std::vector<int> connections;
    for (const QByteArray& request : requests) {
        connections.push_back(Connect(port_));
        Send(connections.back(), request.chopped(1));
    }
    QByteArrayList answers;
    for (size_t i = 0; i < connections.size(); ++i)
        Send(connections[i], requests[qsizetype(i)].last(1));
    for (const int connection : connections)
        answers.append(Receive(connection));
    return answers;
}

} // namespace end_to_end
