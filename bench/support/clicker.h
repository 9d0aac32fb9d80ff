// A hand on the mouse while the program works: a thread that clicks the main window's tabs, one after the other, at
// irregular times, and measures how long each click waits until the handler of the tab strip is entered. The events
// are posted as the window system's are, so that only the program's own event loop and yields serve them.
#pragma once

#include <QMetaObject>
#include <QPoint>
#include <atomic>
#include <thread>
#include <vector>

class QTabBar;

namespace suite {
class TabControl;
}

namespace bench {

class Clicker {
  public:
    // `tabs` must be shown and live as long as this.
    explicit Clicker(suite::TabControl& tabs);
    ~Clicker();
    Clicker(const Clicker&) = delete;
    Clicker& operator=(const Clicker&) = delete;

    // Clicks only while a job runs.
    void Resume();
    void Pause();
    int Count() const { return int(waits_.size()); }
    // Milliseconds: what 99 of 100 clicks did not exceed, and the longest.
    double Percentile99() const;
    double Longest() const;
    // The same of the processor time that this process used meanwhile: without what a loaded machine adds.
    double BusyPercentile99() const;

  private:
    void Run();
    void Served();

    QTabBar* strip_;
    std::vector<QPoint> places_;
    size_t next_ = 1; // tab 0 is selected
    std::vector<double> waits_;
    std::vector<double> busy_;
    std::atomic<bool> ending_ = false;
    std::atomic<bool> running_ = false;
    std::atomic<qint64> clickedAt_ = 0; // microseconds; 0 while none waits
    std::atomic<qint64> busyAtClick_ = 0;
    QMetaObject::Connection served_;
    std::thread thread_;
};

} // namespace bench
