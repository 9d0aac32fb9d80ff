// Devices that come and go while a scan runs: every row tells of one device, never of a mix of two that stood in the
// same place one after the other.
#include "device_fixture.h"
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "suite/icon_store.h"
#include "support/long_form.h"
#include "values/program_values.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace {

constexpr int Marks = 9; // devices that take turns, 1 to 9; every value of a device holds its number

// The kinds of hot_plug.txt as trees.
QStringList ReadKinds() {
    QFile file(QStringLiteral(HOT_PLUG_FILE));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll()).split(QStringLiteral("\nkind\n")).mid(1);
}

// The other side: plugs and unplugs, the links first when a device goes.
void PlugUntil(const std::atomic<bool>& ended, std::atomic<int>& turns, DeviceFixture& fixture) {
    const QStringList kinds = ReadKinds();
    std::array<QString, 8> slots;
    std::minstd_rand random(3);
    for (; !ended; ++turns) {
        const std::size_t slot = random() % slots.size();
        const QStringList lines = slots[slot].split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QString folder;
        for (const QString& line : lines.filter(QRegularExpression(QStringLiteral("^/bus/|-> /devices/")))) {
            if (line.startsWith(QStringLiteral("/bus")))
                folder = line + QLatin1Char('/');
            else
                fixture.Remove(folder + line.trimmed().section(QLatin1Char(' '), 0, 0));
        }
        if (!lines.isEmpty())
            fixture.Remove(lines.first());
        slots[slot].clear();
        // A place stays empty now and then.
        if (random() % 5 != 0)
            slots[slot] = kinds[qsizetype(slot) % kinds.size()].arg(slot / 4 + 1).arg(1 + random() % Marks);
        fixture.Add(slots[slot].toUtf8());
    }
}

QString Text(const suite::ListItem& row) {
    QString text = row.Text();
    for (int column = 1; column <= 5; ++column)
        text += u'\n' + row.SubItems(column).value_or(QString());
    return text;
}

// The numbers of the devices that a row tells of.
QSet<QString> DevicesIn(const QString& row) {
    static const QRegularExpression marks(
        QStringLiteral(
            "(?:VEN_A00|DEV_B00|SUBSYS_D00|SUBSYS_D00.C00|VID_A00|PID_B00|REV_0+|Device[ _]|Maker[ _]|R00)([1-9])"
            "|^([1-9])\\.7$"),
        QRegularExpression::MultilineOption);
    QSet<QString> devices;
    for (auto match = marks.globalMatch(row); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        devices.insert(found.captured(1) + found.captured(2));
    }
    return devices;
}

} // namespace

TEST(HotPlug, NoRowIsAMixOfTwoDevices) {
    DeviceFixture fixture;
    for (int mark = 1; mark <= Marks; ++mark)
        fixture.Add(QStringLiteral("/bus/any/drivers/driver%1/module\nversion = %1.7\n").arg(mark).toLatin1());
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);

    std::atomic<bool> ended = false;
    std::atomic<int> turns = 0;
    std::thread plugging([&] { PlugUntil(ended, turns, fixture); });
    int rows = 0;
    int told = 0;
    const int scans = support::Rounds(60, 5000);
    for (int scan = 0; scan < scans || turns < scans; ++scan) {
        for (suite::ListItems& list : lists)
            list.Clear();
        inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                              lists[inventory::NoSystemDevices], [](const QString&) {});
        for (const suite::ListItems& list : lists) {
            for (int i = 1; i <= list.Count(); ++i) {
                const qsizetype devices = DevicesIn(Text(*list.Item(i))).size();
                EXPECT_LE(devices, 1) << Plain(Text(*list.Item(i)));
                ++rows;
                told += devices == 1 ? 1 : 0;
            }
        }
    }
    ended = true;
    plugging.join();
    // The tree did change, and the rows did tell whose they are.
    EXPECT_GT(told, scans);
    EXPECT_GT(told, rows / 2);
    suite::SharedIconStore().RemoveAll();
}
