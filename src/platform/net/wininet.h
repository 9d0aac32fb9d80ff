// The upload's calls under the platform's names, on libcurl. Handles belong to the caller until InternetCloseHandle;
// zero is failure. HttpSendRequestA blocks without dispatching events: at most 30 s to connect, 60 s without progress.
#pragma once

#include <QByteArray>
#include <functional>

namespace net {

using HInternet = quintptr;

constexpr quint32 INTERNET_AUTODIAL_FORCE_ONLINE = 1;
constexpr quint32 INTERNET_OPEN_TYPE_PRECONFIG = 0;
constexpr quint32 INTERNET_SERVICE_HTTP = 3;
constexpr quint32 INTERNET_FLAG_RELOAD = 0x80000000;
constexpr quint32 HTTP_ADDREQ_FLAG_ADD = 0x20000000;
constexpr quint32 HTTP_ADDREQ_FLAG_REPLACE = 0x80000000;

constexpr quint32 INTERNET_CONNECTION_MODEM = 1;
constexpr quint32 INTERNET_CONNECTION_LAN = 2;
constexpr quint32 INTERNET_CONNECTION_PROXY = 4;

// Dials nothing here; tells whether the machine is connected already.
bool InternetAutodial(quint32 flags, quintptr parentWindow);

// `agent` is sent as User-Agent. Proxies are those of the environment (http_proxy, all_proxy, no_proxy), whatever the
// access type.
HInternet InternetOpenA(const QByteArray& agent, quint32 accessType, const QByteArray& proxy,
                        const QByteArray& proxyBypass, quint32 flags);

// Connects nothing yet. Zero for an empty or malformed host, for a port outside 1 to 65535 and for any service but
// HTTP.
HInternet InternetConnectA(HInternet session, const QByteArray& host, int port, const QByteArray& user,
                           const QByteArray& password, quint32 service, quint32 flags, quintptr context);

// Versions "HTTP/1.0" and "HTTP/1.1". An empty path asks for "/". Bytes that a request line cannot hold are escaped.
HInternet HttpOpenRequestA(HInternet connection, const QByteArray& verb, const QByteArray& path,
                           const QByteArray& version, const QByteArray& referrer, const QByteArray& acceptTypes,
                           quint32 flags, quintptr context);

// One or more header lines, each ending in CR LF, of which the first `length` bytes count. A header of the same name is
// replaced.
bool HttpAddRequestHeadersA(HInternet request, const QByteArray& headers, int length, quint32 modifiers);

// Sends the request with the first `length` bytes of `body`. True if a status line came back, whatever it says; the
// response's body is not read. On the wire stand Host, User-Agent, the added headers and Content-Length, nothing else.
bool HttpSendRequestA(HInternet request, const QByteArray& headers, const QByteArray& body, int length);

// False for a handle that is not open.
bool InternetCloseHandle(HInternet handle);

// Whether a network interface that leads out is up, and of which kind (the flags above).
bool InternetGetConnectedState(quint32& flags, quint32 reserved);

// The connection kinds are asked of this function instead of the machine; null restores it.
void SetConnectionSource(std::function<quint32()> source);

// Limits of HttpSendRequestA in milliseconds: to connect, and without progress. For tests.
void SetSendLimits(int connect, int stall);

} // namespace net
