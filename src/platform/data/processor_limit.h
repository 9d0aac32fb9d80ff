// How much of a processor one call to the store may take. What a crafted file can make endless is computing, never
// waiting, so a slow disk or a busy machine ends nothing.
#pragma once

#include <QtGlobal>
#include <ctime>
#include <sqlite3.h>

namespace data {

// Of the thread that makes the calls. Outlives the handle, or the handle is let go of by another Watch.
class ProcessorLimit {
  public:
    // Every statement of the handle ends with SQLITE_INTERRUPT once the limit is over.
    void Watch(sqlite3* handle) {
        constexpr int stepsPerLook = 100;
        sqlite3_progress_handler(handle, stepsPerLook, IsOver, this);
    }
    // Nanoseconds from now.
    void Begin(qint64 limit) { end_ = Used() + limit; }

  private:
    static qint64 Used() {
        timespec used{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        return qint64(used.tv_sec) * 1'000'000'000 + used.tv_nsec;
    }
    static int IsOver(void* limit) { return Used() > static_cast<const ProcessorLimit*>(limit)->end_ ? 1 : 0; }

    qint64 end_ = 0;
};

} // namespace data
