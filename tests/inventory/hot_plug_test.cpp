// Devices that come and go while a scan runs: every row tells of one device, never of a mix of two that stood in the
// same place one after the other.
#include "device_fixture.h"
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "pnp/device_tree.h"
#include "suite/icon_store.h"
#include "support/long_form.h"
#include "values/program_values.h"

#include <QRegularExpression>
#include <QSet>
#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;

// Mouse, generic desktop page: one top-level collection.
constexpr char MouseDescriptor[] = "\x05\x01\x09\x02\xA1\x01\xC0";
constexpr int Kinds = 9; // devices that take turns, 1 to 9; every value of a device holds its number

// The other side: plugs and unplugs as the kernel does, folder first and link last, link first when a device goes.
class Plugger {
  public:
    explicit Plugger(fs::path root) : root_(std::move(root)) {
        for (int kind = 1; kind <= Kinds; ++kind)
            Attribute(root_ / "bus/any/drivers" / ("driver" + std::to_string(kind)) / "module", "version",
                      std::to_string(kind) + ".7");
    }

    void Turn() {
        const int slot = int(random_() % slots_.size());
        Unplug(slots_[std::size_t(slot)]);
        // A place stays empty now and then.
        if (random_() % 5 != 0)
            Plug(slot, 1 + int(random_() % Kinds));
    }

  private:
    struct Slot {
        fs::path folder;
        std::vector<fs::path> links;
    };

    void Unplug(Slot& slot) {
        std::error_code ignored;
        for (auto link = slot.links.rbegin(); link != slot.links.rend(); ++link)
            fs::remove(*link, ignored);
        slot.links.clear();
        if (!slot.folder.empty())
            fs::remove_all(slot.folder, ignored);
    }

    void Plug(int slot, int kind) {
        const std::string number = std::to_string(slot % 4 + 1);
        const std::string mark = std::to_string(kind);
        if (slot < 4)
            PlugFunction(slots_[std::size_t(slot)], "0000:00:1" + number + ".0", mark);
        else if (slot < 8)
            PlugUsb(slots_[std::size_t(slot)], "1-" + number, mark, slot % 2 == 0);
        else
            PlugDisk(slots_[std::size_t(slot)], number + ":0:0:0", mark);
    }

    void PlugFunction(Slot& slot, const std::string& name, const std::string& mark) {
        slot.folder = root_ / "devices/pci0000:00" / name;
        Attributes(slot.folder, {{"vendor", "0xa00" + mark},
                                 {"device", "0xb00" + mark},
                                 {"subsystem_vendor", "0xc00" + mark},
                                 {"subsystem_device", "0xd00" + mark},
                                 {"revision", "0x0" + mark},
                                 {"class", "0x020000"}});
        Driver(slot.folder, mark);
        Link(slot, "bus/pci/devices", slot.folder);
    }

    // A composite device with two functions, or a mouse with a HID device below its interface.
    void PlugUsb(Slot& slot, const std::string& name, const std::string& mark, bool composite) {
        slot.folder = root_ / "devices/pci0000:00/0000:00:14.0/usb1" / name;
        Attributes(slot.folder, {{"idVendor", "a00" + mark},
                                 {"idProduct", "b00" + mark},
                                 {"bcdDevice", "000" + mark},
                                 {"bDeviceClass", "00"},
                                 {"bNumInterfaces", composite ? " 2" : " 1"},
                                 {"manufacturer", "Maker " + mark},
                                 {"product", "Device " + mark},
                                 {"serial", "SERIAL" + mark}});
        Driver(slot.folder, mark);
        Link(slot, "bus/usb/devices", slot.folder);
        for (int i = 0; i < (composite ? 2 : 1); ++i) {
            const fs::path function = slot.folder / (name + ":1." + std::to_string(i));
            Attributes(function, {{"bInterfaceNumber", "0" + std::to_string(i)},
                                  {"bInterfaceClass", composite ? "ff" : "03"},
                                  {"bInterfaceSubClass", "00"},
                                  {"bInterfaceProtocol", "00"},
                                  {"modalias", "usb:vA00" + mark + "pB00" + mark + "d000" + mark}});
            Driver(function, mark);
            Link(slot, "bus/usb/devices", function);
            if (!composite) {
                const fs::path hid = function / ("0003:A00" + mark + ":B00" + mark + ".0001");
                Attributes(hid, {{"uevent", "HID_ID=0003:0000A00" + mark + ":0000B00" + mark + "\nHID_NAME=Device " +
                                                mark + "\nHID_UNIQ="},
                                 {"report_descriptor", MouseDescriptor}});
                Link(slot, "bus/hid/devices", hid);
            }
        }
    }

    void PlugDisk(Slot& slot, const std::string& name, const std::string& mark) {
        slot.folder = root_ / "devices/pci0000:00/0000:00:1f.2/ata1/host0/target" / name;
        Attributes(slot.folder,
                   {{"type", "0"}, {"vendor", "Maker " + mark}, {"model", "Device " + mark}, {"rev", "R00" + mark}});
        Driver(slot.folder, mark);
        Link(slot, "bus/scsi/devices", slot.folder);
    }

    void Attributes(const fs::path& folder, const std::vector<std::pair<std::string, std::string>>& values) {
        for (const auto& [name, value] : values)
            Attribute(folder, name, value);
    }
    static void Attribute(const fs::path& folder, const std::string& name, const std::string& value) {
        fs::create_directories(folder);
        std::ofstream(folder / name) << value << '\n';
    }
    void Driver(const fs::path& folder, const std::string& mark) {
        std::error_code ignored;
        fs::create_symlink(fs::relative(root_ / "bus/any/drivers" / ("driver" + mark), folder), folder / "driver",
                           ignored);
    }
    void Link(Slot& slot, const std::string& place, const fs::path& folder) {
        const fs::path link = root_ / place / folder.filename();
        fs::create_directories(link.parent_path());
        std::error_code ignored;
        fs::create_symlink(fs::relative(folder, link.parent_path()), link, ignored);
        slot.links.push_back(link);
    }

    fs::path root_;
    std::array<Slot, 10> slots_;
    std::minstd_rand random_{3};
};

// The numbers of the devices that a row tells of.
QSet<QString> DevicesIn(const suite::ListItem& row) {
    static const QRegularExpression marks(
        QStringLiteral("(?:VEN_A00|DEV_B00|SUBSYS_D00|SUBSYS_D00.C00|VID_A00|PID_B00|REV_0+|Device[ _]|Maker[ _]|"
                       "R00|VID&A00)([1-9])"));
    QString text = row.Text();
    for (int column = 1; column <= 5; ++column)
        text += u'\n' + row.SubItems(column).value_or(QString());
    QSet<QString> devices;
    for (auto match = marks.globalMatch(text); match.hasNext();)
        devices.insert(match.next().captured(1));
    const QString version = row.SubItems(4).value_or(QString());
    if (version.endsWith(QStringLiteral(".7")))
        devices.insert(version.chopped(2));
    return devices;
}

std::string Text(const suite::ListItem& row) {
    QString text = row.Text();
    for (int column = 1; column <= 5; ++column)
        text += QStringLiteral(" / ") + row.SubItems(column).value_or(QString());
    return text.toStdString();
}

} // namespace

TEST(HotPlug, NoRowIsAMixOfTwoDevices) {
    const DeviceFixture fixture;
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);

    std::atomic<bool> ended = false;
    std::atomic<int> turns = 0;
    std::thread plugging([&] {
        for (Plugger plugger(fixture.Root().toStdString()); !ended; ++turns)
            plugger.Turn();
    });
    int rows = 0;
    int told = 0;
    const int scans = support::Rounds(60, 5000);
    for (int scan = 0; scan < scans || turns < scans; ++scan) {
        for (suite::ListItems& list : lists)
            list.Clear();
        QString last;
        inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                              lists[inventory::NoSystemDevices], [&](const QString& status) { last = status; });
        EXPECT_EQ(last, QStringLiteral("Status: Done"));
        for (const suite::ListItems& list : lists) {
            for (int i = 1; i <= list.Count(); ++i) {
                const QSet<QString> devices = DevicesIn(*list.Item(i));
                EXPECT_LE(devices.size(), 1) << Text(*list.Item(i));
                ++rows;
                told += devices.size() == 1 ? 1 : 0;
            }
        }
    }
    ended = true;
    plugging.join();
    // The tree did change, and the rows did tell whose they are.
    EXPECT_GT(turns, scans);
    EXPECT_GT(told, scans);
    EXPECT_GT(told, rows / 2);
    RecordProperty("scans", scans);
    RecordProperty("turns", turns);
    RecordProperty("rows", rows);
    suite::SharedIconStore().RemoveAll();
}
