#include "base/aside.h"

#include "base/yield.h"

#include <QThread>
#include <memory>

namespace base {

namespace {

constexpr int waitTurn = 20;         // milliseconds; the end of the work wakes the wait at once
constexpr uint stackSize = 2U << 20; // bytes; the sanitizers use several times what is used otherwise

} // namespace

void RunAside(const std::function<void(const std::atomic<bool>& stop)>& work, const std::function<bool()>& stopped) {
    std::atomic<bool> stop = false;
    bool begun = false;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        begun = true;
        work(stop);
    }));
    thread->setStackSize(stackSize);
    // The thread's own end is an event here, so the wait below ends with it.
    bool ended = false;
    QObject::connect(thread.get(), &QThread::finished, thread.get(), [&ended] { ended = true; });
    thread->start();
    while (!ended) {
        YieldBlocking(waitTurn);
        stop = stop || stopped();
        ended = ended || !thread->isRunning();
    }
    thread->wait();
    if (!begun) {
        work(stop);
    }
}

} // namespace base
