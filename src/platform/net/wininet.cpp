#include "net/wininet.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <algorithm>
#include <arpa/inet.h>
#include <curl/curl.h>
#include <ifaddrs.h>
#include <limits>
#include <linux/sockios.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <variant>

namespace net {

namespace {

constexpr qsizetype answerLimit = 64 * 1024; // bytes of header lines
// However slowly the peer takes the body, the caller is not held longer; in milliseconds.
constexpr long wholeLimit = 15 * 60 * 1000;

struct Session {
    QByteArray agent;
};
struct Connection {
    QByteArray agent;
    QByteArray host;
    int port = 0;
};
struct Request {
    Connection connection;
    QByteArray verb;
    QByteArray path;
    bool oldVersion = true;
    QList<QByteArray> headers;
};
using Entry = std::variant<Session, Connection, Request>;

// The open handles and the settable limits; one for the process.
struct State {
    QHash<HInternet, Entry> entries;
    HInternet last = 0;
    int connectLimit = 30'000;
    int stallLimit = 60'000;
    std::function<quint32()> connectionSource;
};

State& TheState() {
    static State state;
    return state;
}

HInternet Open(const Entry& entry) {
    State& state = TheState();
    state.entries.insert(++state.last, entry);
    return state.last;
}

template <typename T> T* Find(HInternet handle) {
    State& state = TheState();
    const auto found = state.entries.find(handle);
    return found == state.entries.end() ? nullptr : std::get_if<T>(&*found);
}

bool IsClean(const QByteArray& text) {
    return std::none_of(text.cbegin(), text.cend(), [](char c) { return static_cast<uchar>(c) < 0x20 || c == 0x7F; });
}

bool IsHost(const QByteArray& host) {
    return !host.isEmpty() && std::all_of(host.cbegin(), host.cend(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '-' ||
               c == '_';
    });
}

QByteArray EscapePath(const QByteArray& path) {
    QByteArray escaped;
    for (const char c : path) {
        const auto value = static_cast<uchar>(c);
        // A "#" would end the address here.
        if (value <= 0x20 || value >= 0x7F || c == '#') {
            escaped += '%' + QByteArray(1, c).toHex().toUpper();
        } else {
            escaped += c;
        }
    }
    return escaped.startsWith('/') ? escaped : '/' + escaped;
}

QByteArray HeaderName(const QByteArray& line) {
    return line.first(std::max<qsizetype>(0, line.indexOf(':'))).toLower();
}

// What one send learns of its answer and of its own progress.
struct Exchange {
    CURL* easy = nullptr;
    QList<curl_socket_t> sockets; // the open ones
    qint64 bodySize = 0;
    int stallLimit = 0;
    QElapsedTimer sinceProgress;
    curl_off_t taken = std::numeric_limits<curl_off_t>::min();
    qsizetype answered = 0;
    bool statusSeen = false;

    bool BodySent() const {
        curl_off_t sent = 0;
        curl_easy_getinfo(easy, CURLINFO_SIZE_UPLOAD_T, &sent);
        return sent >= bodySize;
    }
};

bool IsFinalStatus(const QByteArray& line) {
    const qsizetype blank = line.indexOf(' ');
    return line.startsWith("HTTP/") && blank > 0 && line.size() > blank + 1 && line.at(blank + 1) != '1';
}

size_t OnHeader(char* data, size_t size, size_t count, void* self) {
    auto* exchange = static_cast<Exchange*>(self);
    const size_t length = size * count;
    const QByteArray line(data, static_cast<qsizetype>(length));
    exchange->answered += line.size();
    exchange->statusSeen = exchange->statusSeen || IsFinalStatus(line);
    return exchange->answered > answerLimit ? 0 : length;
}

// The body of the answer is not wanted; it is passed over only as long as our own is still on its way.
size_t OnBody(char*, size_t size, size_t count, void* self) {
    const auto* exchange = static_cast<const Exchange*>(self);
    return exchange->statusSeen && exchange->BodySent() ? 0 : size * count;
}

// The transfer's sockets are known while it runs by no other way.
curl_socket_t OnOpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
    const curl_socket_t opened = socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (opened != CURL_SOCKET_BAD) {
        static_cast<Exchange*>(self)->sockets.append(opened);
    }
    return opened;
}

int OnCloseSocket(void* self, curl_socket_t closing) {
    static_cast<Exchange*>(self)->sockets.removeOne(closing);
    return close(closing);
}

// What the peer has taken of `sent` bytes. The rest lies in the kernel, which takes megabytes for a peer that reads
// nothing, and holds them for a slow one long after the last was sent.
curl_off_t TakenByPeer(const Exchange& exchange, curl_off_t sent) {
    for (const curl_socket_t socket : exchange.sockets) {
        int waiting = 0;
        sent -= ioctl(socket, SIOCOUTQ, &waiting) == 0 ? waiting : 0;
    }
    return sent;
}

// Only what went out counts: an answer that trickles in is no reason to wait on.
int OnProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
    auto* exchange = static_cast<Exchange*>(self);
    const curl_off_t taken = TakenByPeer(*exchange, sent);
    if (taken > exchange->taken) {
        exchange->taken = taken;
        exchange->sinceProgress.restart();
    }
    const bool finished = exchange->statusSeen && exchange->BodySent();
    return finished || exchange->sinceProgress.hasExpired(exchange->stallLimit) ? 1 : 0;
}

// Proxies are those of the environment, which is what this system's configuration comes down to: libcurl looks at
// http_proxy, all_proxy and no_proxy by itself, and asks a proxy with the whole address.
void SetRequest(CURL* easy, const Request& request, const QByteArray& body) {
    const QByteArray url =
        "http://" + request.connection.host + ':' + QByteArray::number(request.connection.port) + request.path;
    curl_easy_setopt(easy, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION,
                     static_cast<long>(request.oldVersion ? CURL_HTTP_VERSION_1_0 : CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.constData());
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.verb.constData());
    curl_easy_setopt(easy, CURLOPT_USERAGENT, request.connection.agent.constData());
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
}

void SetLimits(CURL* easy, Exchange& exchange) {
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(TheState().connectLimit));
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, wholeLimit);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &OnOpenSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &OnCloseSocket);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, &OnProgress);
    curl_easy_setopt(easy, CURLOPT_XFERINFODATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &OnHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &exchange);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &OnBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &exchange);
}

bool Perform(const Request& request, const QByteArray& body) {
    // Outlives the transfer, whose end closes sockets.
    Exchange exchange;
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy(curl_easy_init(), &curl_easy_cleanup);
    if (!easy) {
        return false;
    }
    // An empty value takes out a header that libcurl would send of its own accord.
    curl_slist* list = curl_slist_append(nullptr, "Accept:");
    list = curl_slist_append(list, "Expect:");
    list = curl_slist_append(list, "Proxy-Connection:");
    for (const QByteArray& line : request.headers) {
        list = curl_slist_append(list, line.constData());
    }
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> guard(list, &curl_slist_free_all);
    exchange.easy = easy.get();
    exchange.bodySize = body.size();
    exchange.stallLimit = std::max(TheState().stallLimit, 1);
    exchange.sinceProgress.start();
    SetRequest(easy.get(), request, body);
    SetLimits(easy.get(), exchange);
    curl_easy_setopt(easy.get(), CURLOPT_HTTPHEADER, list);
    curl_easy_perform(easy.get());
    return exchange.statusSeen;
}

bool LeadsOut(const ifaddrs& interface) {
    if (interface.ifa_addr == nullptr || (interface.ifa_flags & IFF_UP) == 0 ||
        (interface.ifa_flags & IFF_RUNNING) == 0 || (interface.ifa_flags & IFF_LOOPBACK) != 0) {
        return false;
    }
    if (interface.ifa_addr->sa_family == AF_INET6) {
        const auto* address = reinterpret_cast<const sockaddr_in6*>(interface.ifa_addr);
        return !IN6_IS_ADDR_LINKLOCAL(&address->sin6_addr);
    }
    return interface.ifa_addr->sa_family == AF_INET;
}

quint32 ConnectionKinds() {
    if (TheState().connectionSource) {
        return TheState().connectionSource();
    }
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) {
        return 0;
    }
    quint32 kinds = 0;
    for (const ifaddrs* interface = list; interface != nullptr; interface = interface->ifa_next) {
        if (LeadsOut(*interface)) {
            const QByteArray name(interface->ifa_name);
            const bool modem = name.startsWith("ppp") || name.startsWith("ww");
            kinds |= modem ? INTERNET_CONNECTION_MODEM : INTERNET_CONNECTION_LAN;
        }
    }
    freeifaddrs(list);
    return kinds;
}

} // namespace

bool InternetAutodial(quint32, quintptr) { return ConnectionKinds() != 0; }

HInternet InternetOpenA(const QByteArray& agent, quint32, const QByteArray&, const QByteArray&, quint32) {
    return IsClean(agent) ? Open(Session{agent}) : 0;
}

HInternet InternetConnectA(HInternet session, const QByteArray& host, int port, const QByteArray&, const QByteArray&,
                           quint32 service, quint32, quintptr) {
    const Session* owner = Find<Session>(session);
    if (owner == nullptr || !IsHost(host) || port < 1 || port > 65535 || service != INTERNET_SERVICE_HTTP) {
        return 0;
    }
    return Open(Connection{owner->agent, host, port});
}

HInternet HttpOpenRequestA(HInternet connection, const QByteArray& verb, const QByteArray& path,
                           const QByteArray& version, const QByteArray&, const QByteArray&, quint32, quintptr) {
    const Connection* owner = Find<Connection>(connection);
    const bool served = version == "HTTP/1.0" || version == "HTTP/1.1";
    if (owner == nullptr || !served || !IsClean(verb) || verb.isEmpty() || verb.contains(' ')) {
        return 0;
    }
    return Open(Request{*owner, verb, EscapePath(path), version == "HTTP/1.0", {}});
}

bool HttpAddRequestHeadersA(HInternet request, const QByteArray& headers, int length, quint32) {
    Request* owner = Find<Request>(request);
    const QByteArray text = headers.first(std::clamp<qsizetype>(length, 0, headers.size()));
    if (owner == nullptr || !text.endsWith("\r\n")) {
        return false;
    }
    QByteArray rest = text;
    while (!rest.isEmpty()) {
        const QByteArray line = rest.first(rest.indexOf("\r\n"));
        rest = rest.sliced(line.size() + 2);
        if (!IsClean(line) || HeaderName(line).isEmpty()) {
            return false;
        }
        owner->headers.removeIf([&line](const QByteArray& old) { return HeaderName(old) == HeaderName(line); });
        owner->headers.append(line);
    }
    return true;
}

bool HttpSendRequestA(HInternet request, const QByteArray& headers, const QByteArray& body, int length) {
    if (!headers.isEmpty() &&
        !HttpAddRequestHeadersA(request, headers, static_cast<int>(headers.size()), HTTP_ADDREQ_FLAG_ADD)) {
        return false;
    }
    const Request* owner = Find<Request>(request);
    return owner != nullptr && Perform(*owner, body.first(std::clamp<qsizetype>(length, 0, body.size())));
}

bool InternetCloseHandle(HInternet handle) { return TheState().entries.remove(handle); }

bool InternetGetConnectedState(quint32& flags, quint32) {
    flags = ConnectionKinds();
    return flags != 0;
}

void SetConnectionSource(std::function<quint32()> source) { TheState().connectionSource = std::move(source); }

void SetSendLimits(int connect, int stall) {
    TheState().connectLimit = connect;
    TheState().stallLimit = stall;
}

} // namespace net
