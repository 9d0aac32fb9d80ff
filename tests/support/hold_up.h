// How long a click has to wait: the longest time between two events of a timer that is always due. What the thread
// spent waiting for a processor is not counted, as that is the machine's doing and not the program's.
#pragma once

#include <QFile>
#include <QTimer>
#include <algorithm>
#include <ctime>

namespace support {

class HoldUp {
  public:
    HoldUp() : last_(Now()) {
        QObject::connect(&tick_, &QTimer::timeout, [this] { Look(); });
        tick_.start(0);
    }

    // Milliseconds since this was made, up to now.
    int Longest() {
        Look();
        return int(longest_ / 1'000'000);
    }

  private:
    void Look() {
        const qint64 now = Now();
        longest_ = std::max(longest_, now - last_);
        last_ = now;
    }
    static qint64 Now() {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        QFile statistics(QStringLiteral("/proc/thread-self/schedstat"));
        const bool told = statistics.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        const qint64 waited = told ? statistics.readLine(100).split(' ').value(1).toLongLong() : 0;
        return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec - waited;
    }

    QTimer tick_;
    qint64 last_;
    qint64 longest_ = 0;
};

} // namespace support
