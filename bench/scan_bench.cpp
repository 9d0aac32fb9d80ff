// The whole scan of a made-up machine, all four lists filled, by the number of its devices. "per_device" is the time of
// one device; "longest_stall" is the longest time for which no event was served.
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "inventory/list_text.h"
#include "pnp/device_tree.h"
#include "pnp/sources.h"
#include "values/program_values.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <array>
#include <benchmark/benchmark.h>
#include <map>
#include <memory>

namespace {

constexpr int FunctionsPerDomain = 256;

void Write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
}

void AddFunction(const QString& root, int number) {
    const QString domain = QString::number(number / FunctionsPerDomain, 16).rightJustified(4, QLatin1Char('0'));
    const int place = number % FunctionsPerDomain;
    const QString address = QStringLiteral("%1:00:%2.%3")
                                .arg(domain, QString::number(place / 8, 16).rightJustified(2, QLatin1Char('0')))
                                .arg(place % 8);
    const QString relative = QStringLiteral("/devices/pci%1:00/%2").arg(domain, address);
    const QString folder = root + relative;
    QDir().mkpath(folder);
    const QByteArray device = QByteArray::number(0x1000 + number % 4000, 16).rightJustified(4, '0');
    Write(folder + QStringLiteral("/vendor"), "0x8086\n");
    Write(folder + QStringLiteral("/device"), "0x" + device + "\n");
    Write(folder + QStringLiteral("/subsystem_vendor"), "0x17aa\n");
    Write(folder + QStringLiteral("/subsystem_device"), "0x2001\n");
    Write(folder + QStringLiteral("/revision"), "0x02\n");
    Write(folder + QStringLiteral("/class"), "0x020000\n");
    Write(folder + QStringLiteral("/modalias"),
          "pci:v00008086d0000" + device.toUpper() + "sv000017AAsd00002001bc02sc00i00\n");
    // Every second one without a driver, so that it stands in all four lists.
    if (number % 2 != 0)
        QFile::link(QStringLiteral("../../../bus/pci/drivers/e1000e"), folder + QStringLiteral("/driver"));
    QFile::link(QStringLiteral("../../..") + relative, root + QStringLiteral("/bus/pci/devices/") + address);
}

// Made once for each size, in memory where there is such a folder.
const QString& Machine(int devices) {
    static std::map<int, std::unique_ptr<QTemporaryDir>> machines;
    static std::map<int, QString> roots;
    if (!machines.contains(devices)) {
        const QString memory = QStringLiteral("/dev/shm");
        const QString base = QDir(memory).exists() ? memory : QDir::tempPath();
        auto folder = std::make_unique<QTemporaryDir>(base + QStringLiteral("/scan-XXXXXX"));
        QDir().mkpath(folder->filePath(QStringLiteral("bus/pci/devices")));
        QDir().mkpath(folder->filePath(QStringLiteral("bus/pci/drivers/e1000e")));
        for (int i = 0; i < devices; ++i)
            AddFunction(folder->path(), i);
        roots[devices] = folder->path();
        machines[devices] = std::move(folder);
    }
    return roots[devices];
}

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
    pnp::SetDeviceRoot(Machine(devices));
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    QElapsedTimer sinceServed;
    qint64 longest = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout,
                     [&] { longest = std::max(longest, sinceServed.nsecsElapsed()), sinceServed.start(); });
    timer.start(0);
    for (auto _ : state) {
        sinceServed.start();
        Scan(lists);
    }
    state.counters["per_device"] = benchmark::Counter(double(devices), benchmark::Counter::kIsIterationInvariantRate |
                                                                           benchmark::Counter::kInvert);
    state.counters["longest_stall"] = double(longest) / 1e9;
    state.counters["rows"] = lists[inventory::Hardware].Count();
}

void Bind(benchmark::State& state) {
    pnp::SetDeviceRoot(Machine(int(state.range(0))));
    for (auto _ : state)
        pnp::BindTree();
}

void WholeListText(benchmark::State& state) {
    pnp::SetDeviceRoot(Machine(int(state.range(0))));
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    Scan(lists);
    for (auto _ : state)
        benchmark::DoNotOptimize(inventory::WholeListText(lists[0], inventory::ListTextScope::WholeRow));
}

} // namespace

BENCHMARK(WholeScan)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(Bind)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(WholeListText)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
