#include "net/transfer.h"

#include "base/yield.h"

#include <algorithm>

namespace net {

namespace {

// In bytes.
constexpr qsizetype unreadLimit = 256 * 1024;
// All header lines of all answers to one request; a flood beyond it ends the transfer.
constexpr qsizetype headerLimit = 256 * 1024;
constexpr long receiveBuffer = 100 * 1024;

bool IsInterim(const QByteArray& headers) {
    const qsizetype blank = headers.indexOf(' ');
    return blank > 0 && blank + 1 < headers.size() && headers.at(blank + 1) == '1';
}

} // namespace

Transfer::Transfer(const QByteArray& url, const QList<QByteArray>& headers, int stallLimit) : stallLimit_(stallLimit) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { Act(CURL_SOCKET_TIMEOUT, 0); });
    connect(&stallTimer_, &QTimer::timeout, this, [this] { CheckForStall(); });
    sinceStart_.start();
    sinceProgress_.start();
    multi_ = curl_multi_init();
    easy_ = curl_easy_init();
    if (multi_ == nullptr || easy_ == nullptr) {
        End(CURLE_FAILED_INIT);
        return;
    }
    for (const QByteArray& line : headers) {
        headerList_ = curl_slist_append(headerList_, line.constData());
    }
    SetOptions(url);
    stallTimer_.start(std::clamp(stallLimit / 10, 10, 1000));
    if (curl_multi_add_handle(multi_, easy_) != CURLM_OK) {
        End(CURLE_FAILED_INIT);
    }
}

Transfer::~Transfer() {
    const base::NoYieldScope noYield;
    if (easy_ != nullptr) {
        curl_multi_remove_handle(multi_, easy_);
        curl_easy_cleanup(easy_);
    }
    if (multi_ != nullptr) {
        curl_multi_cleanup(multi_);
    }
    curl_slist_free_all(headerList_);
    const QList<curl_socket_t> sockets = notifiers_.keys();
    for (const curl_socket_t socket : sockets) {
        Unwatch(socket);
    }
}

void Transfer::SetOptions(const QByteArray& url) {
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &Transfer::OnSocket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &Transfer::OnTimer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
    curl_easy_setopt(easy_, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy_, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(easy_, CURLOPT_DEFAULT_PROTOCOL, "http");
    curl_easy_setopt(easy_, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(easy_, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(easy_, CURLOPT_PROXY, "");
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    // A name that is still being looked up must not hold up the one who cancels.
    curl_easy_setopt(easy_, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy_, CURLOPT_FORBID_REUSE, 1L);
    curl_easy_setopt(easy_, CURLOPT_USERAGENT, "Quorvane");
    curl_easy_setopt(easy_, CURLOPT_BUFFERSIZE, receiveBuffer);
    curl_easy_setopt(easy_, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(stallLimit_));
    if (headerList_ != nullptr) {
        curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headerList_);
    }
    curl_easy_setopt(easy_, CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
    curl_easy_setopt(easy_, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, this);
}

QByteArray Transfer::Take(qsizetype count) {
    QByteArray taken = buffer_.mid(readPosition_, std::min(count, Unread()));
    readPosition_ += taken.size();
    if (Unread() == 0) {
        // Keeps what was reserved, so a steady transfer allocates nothing.
        buffer_.resize(0);
        readPosition_ = 0;
    }
    if (paused_ && !ended_ && Unread() < unreadLimit / 2) {
        paused_ = false;
        sinceProgress_.restart();
        const base::NoYieldScope noYield;
        curl_easy_pause(easy_, CURLPAUSE_CONT);
        timer_.start(0);
    }
    return taken;
}

void Transfer::Act(curl_socket_t socket, int events) {
    if (ended_) {
        return;
    }
    const base::NoYieldScope noYield;
    int running = 0;
    curl_multi_socket_action(multi_, socket, events, &running);
    int queued = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &queued)) {
        if (message->msg == CURLMSG_DONE) {
            End(message->data.result);
        }
    }
}

void Transfer::Watch(curl_socket_t socket, int what) {
    Notifiers& pair = notifiers_[socket];
    Watch(pair.read, socket, QSocketNotifier::Read, (what & CURL_POLL_IN) != 0);
    Watch(pair.write, socket, QSocketNotifier::Write, (what & CURL_POLL_OUT) != 0);
}

void Transfer::Watch(QSocketNotifier*& notifier, curl_socket_t socket, QSocketNotifier::Type type, bool wanted) {
    if (notifier == nullptr && wanted) {
        notifier = new QSocketNotifier(socket, type, this);
        const int events = type == QSocketNotifier::Read ? CURL_CSELECT_IN : CURL_CSELECT_OUT;
        connect(notifier, &QSocketNotifier::activated, this, [this, socket, events] { Act(socket, events); });
    } else if (notifier != nullptr) {
        notifier->setEnabled(wanted);
    }
}

void Transfer::Unwatch(curl_socket_t socket) {
    const Notifiers pair = notifiers_.take(socket);
    for (QSocketNotifier* notifier : {pair.read, pair.write}) {
        if (notifier != nullptr) {
            // It may be the very one whose notification is being served.
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    }
}

void Transfer::CheckForStall() {
    // A transfer that waits for its reader has no progress to make. Headers that trickle in are none either.
    const bool late = !headersComplete_ && sinceStart_.hasExpired(stallLimit_);
    if (!paused_ && !ended_ && (late || sinceProgress_.hasExpired(stallLimit_))) {
        End(CURLE_OPERATION_TIMEDOUT);
    }
}

void Transfer::End(CURLcode result) {
    ended_ = true;
    result_ = result;
    timer_.stop();
    stallTimer_.stop();
    for (const Notifiers& pair : std::as_const(notifiers_)) {
        for (QSocketNotifier* notifier : {pair.read, pair.write}) {
            if (notifier != nullptr) {
                notifier->setEnabled(false);
            }
        }
    }
}

bool Transfer::AcceptHeader(const QByteArray& line) {
    sinceProgress_.restart();
    headerBytes_ += line.size();
    if (headerBytes_ > headerLimit) {
        return false;
    }
    if (headersComplete_) {
        // Lines behind a chunked body.
        return true;
    }
    if (line == "\r\n" || line == "\n") {
        headersComplete_ = !IsInterim(headers_);
        if (!headersComplete_) {
            headers_.clear();
        }
        return true;
    }
    headers_ += line;
    return true;
}

size_t Transfer::AcceptBody(const char* data, size_t size) {
    if (Unread() > unreadLimit) {
        paused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    sinceProgress_.restart();
    if (readPosition_ > unreadLimit / 2) {
        buffer_.remove(0, readPosition_);
        readPosition_ = 0;
    }
    buffer_.append(data, static_cast<qsizetype>(size));
    return size;
}

size_t Transfer::OnHeader(char* data, size_t size, size_t count, void* self) {
    const size_t length = size * count;
    const QByteArray line(data, static_cast<qsizetype>(length));
    return static_cast<Transfer*>(self)->AcceptHeader(line) ? length : 0;
}

size_t Transfer::OnBody(char* data, size_t size, size_t count, void* self) {
    return static_cast<Transfer*>(self)->AcceptBody(data, size * count);
}

int Transfer::OnSocket(CURL*, curl_socket_t socket, int what, void* self, void*) {
    auto* transfer = static_cast<Transfer*>(self);
    if (what == CURL_POLL_REMOVE) {
        transfer->Unwatch(socket);
    } else {
        transfer->Watch(socket, what);
    }
    return 0;
}

int Transfer::OnTimer(CURLM*, long milliseconds, void* self) {
    QTimer& timer = static_cast<Transfer*>(self)->timer_;
    if (milliseconds < 0) {
        timer.stop();
    } else {
        timer.start(static_cast<int>(std::min<long>(milliseconds, 60'000)));
    }
    return 0;
}

} // namespace net
