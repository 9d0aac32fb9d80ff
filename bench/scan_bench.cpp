// The whole scan of a made-up machine, all four lists filled, by the number of its devices. "longest_stall_ms" is the
// longest time for which no event was served.
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "inventory/list_text.h"
#include "pnp/device_tree.h"
#include "pnp/sources.h"
#include "support/made_up_machine.h"
#include "support/settings.h"
#include "values/program_values.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace {

void Scan(std::array<suite::ListItems, inventory::DeviceListCount>& lists) {
    for (suite::ListItems& list : lists) {
        list.SetSorted(false);
        list.Clear();
    }
    inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                          lists[inventory::NoSystemDevices], [](const QString&) {});
    for (suite::ListItems& list : lists)
        inventory::SortByName(list);
}

void WholeScan(benchmark::State& state) {
    const int devices = int(state.range(0));
    pnp::SetDeviceRoot(bench::MadeUpMachine(devices));
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    QElapsedTimer sinceServed;
    qint64 longest = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceServed.nsecsElapsed());
        sinceServed.start();
    });
    timer.start(0);
    for (auto _ : state) {
        sinceServed.start();
        Scan(lists);
    }
    state.counters["longest_stall_ms"] = double(longest) / 1e6;
    state.counters["rows"] = lists[inventory::Hardware].Count();
}

// What 100 scans leave behind of the memory in use, after the first few have filled what is kept.
void HundredScans(benchmark::State& state) {
    pnp::SetDeviceRoot(bench::MadeUpMachine(200));
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    const auto scan = [&lists](int times) {
        for (int i = 0; i < times; ++i)
            Scan(lists);
        return double(mallinfo2().uordblks) / 1024;
    };
    for (auto _ : state) {
        const double before = scan(5);
        state.counters["more_KiB"] = scan(bench::Size(100, 2)) - before;
    }
}

void Bind(benchmark::State& state) {
    pnp::SetDeviceRoot(bench::MadeUpMachine(int(state.range(0))));
    for (auto _ : state)
        pnp::BindTree();
}

void WholeListText(benchmark::State& state) {
    pnp::SetDeviceRoot(bench::MadeUpMachine(int(state.range(0))));
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    Scan(lists);
    for (auto _ : state)
        benchmark::DoNotOptimize(inventory::WholeListText(lists[0], inventory::ListTextScope::WholeRow));
}

} // namespace

BENCHMARK(WholeScan)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(HundredScans)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Bind)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(WholeListText)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
