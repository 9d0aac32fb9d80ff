#include "support/clicker.h"

#include "suite/tab_control.h"
#include "support/child_process.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QTabBar>
#include <algorithm>
#include <chrono>

namespace bench {

namespace {

constexpr int leastPause = 2000; // microseconds between two clicks
constexpr int mostPause = 12000;

double Percentile99Of(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[(values.size() * 99 + 99) / 100 - 1];
}

void Sleep(int microseconds) { std::this_thread::sleep_for(std::chrono::microseconds(microseconds)); }

} // namespace

Clicker::Clicker(suite::TabControl& tabs) : strip_(tabs.Strip()) {
    tabs.Item(0)->SetSelected(true);
    for (int tab = 0; tab < strip_->count(); ++tab)
        places_.push_back(strip_->tabRect(tab).center());
    // Raised by every click, also by one that hits the selected tab, as the counts in the captions shift the tabs.
    served_ = QObject::connect(strip_, &QTabBar::tabBarClicked, [this] { Served(); });
    thread_ = std::thread([this] { Run(); });
}

Clicker::~Clicker() {
    ending_ = true;
    thread_.join();
    QObject::disconnect(served_);
}

void Clicker::Resume() { running_ = true; }

void Clicker::Pause() { running_ = false; }

void Clicker::Run() {
    QRandomGenerator random(3);
    while (!ending_) {
        Sleep(leastPause + int(random.bounded(mostPause - leastPause)));
        if (!running_ || clickedAt_ != 0)
            continue;
        const QPoint at = places_[next_];
        next_ = (next_ + 1) % places_.size();
        busyAtClick_ = ProcessorMicroseconds();
        clickedAt_ = NowMicroseconds();
        QCoreApplication::postEvent(
            strip_, new QMouseEvent(QEvent::MouseButtonPress, at, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
        QCoreApplication::postEvent(
            strip_, new QMouseEvent(QEvent::MouseButtonRelease, at, at, Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
    }
}

void Clicker::Served() {
    const qint64 clicked = clickedAt_;
    if (clicked == 0)
        return;
    waits_.push_back(double(NowMicroseconds() - clicked) / 1000);
    busy_.push_back(double(ProcessorMicroseconds() - busyAtClick_) / 1000);
    clickedAt_ = 0;
}

double Clicker::Percentile99() const { return Percentile99Of(waits_); }

double Clicker::BusyPercentile99() const { return Percentile99Of(busy_); }

double Clicker::Longest() const { return waits_.empty() ? 0 : *std::max_element(waits_.begin(), waits_.end()); }

} // namespace bench
