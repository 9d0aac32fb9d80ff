#include "contribution/upload_file.h"

#include "base/numbers.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text.h"
#include "net/wininet.h"

#include <optional>

namespace contribution {

namespace {

// Always the same and not checked against the file: the server's script knows it.
constexpr char16_t boundary[] = u"3fbd04f5-b1ed-4060-99b9-fca7ff59c113";
constexpr int defaultPort = 80;
constexpr qint64 mostBytes = 256 * 1024 * 1024; // the file stands in memory several times

struct Target {
    QString host;
    QString path;
    int port = 0;
};

// The scheme is not looked at: the connection is always plain HTTP.
Target SplitUrl(const QString& url) {
    Target target;
    const qsizetype scheme = url.indexOf(QStringLiteral("://"));
    target.host = scheme < 0 ? url : url.sliced(scheme + 3);
    const qsizetype slash = target.host.indexOf(QChar(u'/'));
    if (slash >= 0) {
        target.path = target.host.sliced(slash);
        target.host = target.host.first(slash);
    }
    const qsizetype colon = target.host.indexOf(QChar(u':'));
    if (colon >= 0) {
        target.port = base::TextToInt(target.host.sliced(colon + 1)).value_or(0);
        target.host = target.host.first(colon);
    }
    return target;
}

std::optional<QString> ReadText(const QString& filePath) {
    const std::optional<QByteArray> bytes = base::ReadPlainFile(base::NativePath(filePath), mostBytes + 1);
    if (!bytes || bytes->size() > mostBytes) {
        return std::nullopt;
    }
    return base::FromAnsi(*bytes);
}

// The server's script is written against exactly this form, with its odd disposition word and no line end at the end.
QString MakeBody(const QString& fileName, const QString& text) {
    const QString mark = QString::fromUtf16(boundary);
    return QStringLiteral("--") + mark + QStringLiteral("\r\n") +
           QStringLiteral("Content-Disposition: multipart/form-data; name=\"uploadfile\"; filename=\"") + fileName +
           QStringLiteral("\"") + QStringLiteral("\r\n") + QStringLiteral("Content-Type: application/octet-stream") +
           QStringLiteral("\r\n") + QStringLiteral("\r\n") + text + QStringLiteral("\r\n") + QStringLiteral("--") +
           mark + QStringLiteral("--");
}

// Closes in the order request, connection, session.
class Handle {
  public:
    explicit Handle(net::HInternet value) : value_(value) {}
    ~Handle() {
        if (value_ != 0) {
            net::InternetCloseHandle(value_);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    net::HInternet Value() const { return value_; }
    explicit operator bool() const { return value_ != 0; }

  private:
    net::HInternet value_;
};

} // namespace

bool UploadFile(const QString& url, const QString& filePath) {
    const std::optional<QString> text = ReadText(filePath);
    if (!text) {
        return false;
    }
    const Target target = SplitUrl(url);
    net::InternetAutodial(net::INTERNET_AUTODIAL_FORCE_ONLINE, 0);
    const Handle session(net::InternetOpenA("Uploader", net::INTERNET_OPEN_TYPE_PRECONFIG, {}, {}, 0));
    if (!session) {
        return false;
    }
    const int port = target.port != 0 ? target.port : defaultPort;
    const Handle connection(net::InternetConnectA(session.Value(), base::ToAnsi(target.host), port, {}, {},
                                                  net::INTERNET_SERVICE_HTTP, 0, 0));
    if (!connection) {
        return false;
    }
    const Handle request(net::HttpOpenRequestA(connection.Value(), "POST", base::ToAnsi(target.path), "HTTP/1.0", {},
                                               {}, net::INTERNET_FLAG_RELOAD, 0));
    if (!request) {
        return false;
    }
    const QString header = QStringLiteral("Content-Type: multipart/form-data; boundary=") +
                           QString::fromUtf16(boundary) + QStringLiteral("\r\n");
    if (!net::HttpAddRequestHeadersA(request.Value(), base::ToAnsi(header), static_cast<int>(header.size()),
                                     net::HTTP_ADDREQ_FLAG_ADD | net::HTTP_ADDREQ_FLAG_REPLACE)) {
        return false;
    }
    const QString body = MakeBody(filePath.sliced(filePath.lastIndexOf(QChar(u'\\')) + 1), *text);
    return net::HttpSendRequestA(request.Value(), {}, base::ToAnsi(body), static_cast<int>(body.size()));
}

} // namespace contribution
