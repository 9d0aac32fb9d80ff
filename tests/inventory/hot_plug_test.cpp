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
#include <cstdio>
#include <gtest/gtest.h>
#include <thread>

namespace {

// Two places of each kind, and two devices for each place: one that stands there, and one aside.
class Places {
  public:
    explicit Places(DeviceFixture& fixture) : aside_(fixture.Beside(QStringLiteral("aside")).toStdString()) {
        QFile file(QStringLiteral(HOT_PLUG_FILE));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QStringList kinds = QString::fromUtf8(file.readAll()).split(QStringLiteral("\nkind\n")).mid(1);
        for (int i = 0; i < 2 * kinds.size(); ++i) {
            const QString place = kinds[i / 2].arg(i % 2 + 1);
            folders_.push_back((fixture.Root() + place.section(QLatin1Char(' '), 0, 0)).toStdString());
            fixture.Add(place.arg(i + 1).toUtf8());
            EXPECT_EQ(std::rename(folders_.back().c_str(), (aside_ + std::to_string(i)).c_str()), 0);
            fixture.Add(place.arg(i == 0 ? 9 : i).toUtf8());
        }
    }

    void Exchange(std::size_t place) {
        const std::string other = aside_ + std::to_string(place);
        std::rename(folders_[place].c_str(), aside_.c_str());
        std::rename(other.c_str(), folders_[place].c_str());
        std::rename(aside_.c_str(), other.c_str());
    }

    std::size_t Count() const { return folders_.size(); }

  private:
    const std::string aside_;
    std::vector<std::string> folders_;
};

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
    for (int mark = 1; mark <= 9; ++mark)
        fixture.Add(QStringLiteral("/bus/any/drivers/driver%1/module\nversion = %1.7\n").arg(mark).toLatin1());
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);

    Places places(fixture);
    std::atomic<bool> ended = false;
    std::atomic<int> turns = 0;
    std::thread plugging([&] {
        for (; !ended; ++turns)
            places.Exchange(std::size_t(turns) % places.Count());
    });
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
