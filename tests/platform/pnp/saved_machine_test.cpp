// Machines that are saved: what the readers see of one is what they saw of the machine, and what tells one machine from
// its like is not in it.
#include "device_fixture.h"
#include "pnp/device_tree.h"
#include "pnp/saved_machine.h"
#include "pnp/saving_rules.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <set>

namespace {

// One of each bus. What begins with SECRET, and the address, must not be saved; several lack a driver.
constexpr char Machine[] = R"(
/devices/system/cpu
  modalias = cpu:type:x86,ven0000fam0006mod008E:feature:,003D,
/devices/system/cpu/cpu0
/devices/LNXSYSTM:00/PNP0C0A:00 @ bus/acpi
  hid = PNP0C0A
  uid = 1
  status = 31
/devices/LNXSYSTM:00/PNP0C0A:00/power_supply/hid-00:1f:20:ab:cd:ef-battery
  model_name = Battery
  manufacturer = Maker
  serial_number = SECRET
/devices/pnp0/00:01 @ bus/pnp
  id = PNP0501
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0002
  class = 0x030000
  modalias = pci:vFFF0loaded
/devices/pci0000:00/0000:00:02.0/drm/card0/card0-eDP-1 @ class/drm
  status = connected
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0003
  class = 0x020000
  modalias = pci:vFFF0idle
/devices/pci0000:00/0000:00:04.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0004
  class = 0x040300
  modalias = pci:vFFF0banned
/devices/pci0000:00/0000:00:05.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0005
  class = 0x028000
  modalias = pci:vFFF0unknown
/devices/pci0000:00/0000:00:05.0/net/SECRETvpn @ class/net
  address = 00:1f:20:ab:cd:ef
/devices/virtual/net/SECRETbridge @ class/net
/devices/pci0000:00/0000:00:06.0/hdaudioC0D0 @ bus/hdaudio
  vendor_id = 0x10ec0257
  revision_id = 0x100001
  subsystem_id = 0x17aa38bf
  afg = 0x1
  chip_name = ALC257
/devices/pci0000:00/0000:00:07.0/nvme/nvme0 @ class/nvme
  model = Fast
  firmware_rev = 1
  serial = SECRET
  state = live
/devices/pci0000:00/0000:00:1f.2/ata1/host0/target0:0:0/0:0:0:0 @ bus/scsi
  type = 0
  vendor = ATA
  model = Disk
  rev = 12
  state = running
  vpd_pg80 = SECRET
  driver -> /bus/scsi/drivers/sd
/devices/pci0000:00/0000:00:0d.0/domain0/0-0/0-301 @ bus/thunderbolt
  vendor = 0x8086
  device = 0x1234
  unique_id = SECRET
  device_name = Dock
/devices/pci0000:00/0000:00:08.0/mmc_host/mmc0/mmc0:0001 @ bus/mmc
  type = SD
  name = SU04G
  serial = SECRET
  cid = SECRET
/devices/pci0000:00/0000:00:08.0/mmc_host/mmc1/mmc1:0001/mmc1:0001:2 @ bus/sdio
  vendor = 0x02d0
  device = 0x4329
  class = 0x00
/devices/pci0000:00/0000:00:14.0/usb1 @ bus/usb
  manufacturer = Linux 6.1.0-13 xhci-hcd
  idProduct = 0003
  serial = SECRET
/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb
  idVendor = 1532
  idProduct = 029f
  bDeviceClass = 00
  bNumInterfaces = 1
  serial = SECRET
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0 @ bus/usb
  bInterfaceNumber = 00
  bInterfaceClass = 03
  driver -> /bus/usb/drivers/usbhid
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/0005:1532:029F.0004 @ bus/hid
  report_descriptor : 05 01 09 06 A1 01 05 07 19 E0 29 E7 81 02 C0
/devices/platform/floppy.0 @ bus/platform
/devices/pci0000:00/0000:00:0a.0/fw1 @ bus/firewire
  guid = SECRET
  is_local = 0
  vendor_name = Maker
  model_name = Camera
/devices/pci0000:00/0000:00:1f.2/ata2/host1/target1:0:0/1:0:0:0 @ bus/scsi
  type = 0
  vendor = ATA
  model = Second
  driver -> /bus/scsi/drivers/sd
/bus/usb/drivers/usbhid
/module/loaded
)";

// The machine with its modules, as the running kernel's.
class SavedMachineTest : public testing::Test {
  protected:
    void SetUp() override {
        fixture_.Write(QStringLiteral("/bus/usb/drivers/usbhid/module/version"), "2.6\n");
        fixture_.Write(QStringLiteral("/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/0005:1532:029F.0004/uevent"),
                       "HID_ID=0005:00001532:0000029F\nHID_NAME=Keyboard 00:1f:20:ab:cd:ef\nHID_UNIQ=SECRET\n"
                       "HID_PHYS=SECRET\nDRIVER=hid\n");
        fixture_.Write(QStringLiteral("/devices/pci0000:00/0000:00:02.0/drm/card0/card0-eDP-1/edid"), Edid());
        // The words of "SECRET" where the serial number stands, of "A Model" where the model does.
        QByteArray words;
        for (int i = 0; i < 256; ++i)
            words += i == 10   ? "5345 "
                     : i == 11 ? "4352 "
                     : i == 27 ? "4120 "
                     : i == 28 ? "4d6f "
                     : i == 29 ? "6465 "
                     : i == 30 ? "6c20 "
                               : "2020 ";
        fixture_.Write(QStringLiteral("/devices/pci0000:00/0000:00:1f.2/ata2/link2/dev2.0/ata_device/dev2.0/id"),
                       words);
        const QString beside = fixture_.Beside(QStringLiteral("modules"));
        for (const auto& [name, text] :
             {std::pair{"modules.alias", "alias pci:vFFF0lo* loaded\nalias pci:vFFF0id* idle-one\n"
                                         "alias pci:vFFF0ba* banned\nalias pci:vFFF0ba* other\n"},
              std::pair{"no.conf", "blacklist banned\n"}, std::pair{"cpuinfo", "model name : Quick CPU\n"}}) {
            ASSERT_TRUE(QDir().mkpath(beside));
            QFile file(beside + QLatin1Char('/') + QLatin1String(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
        }
        pnp::Sources sources = pnp::CurrentSources();
        sources.live = true;
        sources.kernelRelease = QStringLiteral("6.1.0-test");
        sources.modulesFolder = beside;
        sources.modprobeFolders = QStringList{beside};
        sources.processorInfo = beside + QStringLiteral("/cpuinfo");
        pnp::SetSources(sources);
    }

    static QByteArray Edid() {
        QByteArray edid = QByteArray::fromHex("00FFFFFFFFFFFF0010ACF4404142434401140104") + QByteArray(34, '\1') +
                          QByteArray::fromHex("000000FF00") + "SECRET\n      " + QByteArray::fromHex("000000FC00") +
                          "DELL U2410\n  " + QByteArray(36, '\0') + QByteArray(2, '\1');
        return edid + QByteArray(128, 'S');
    }

    DeviceFixture fixture_{Machine};
};

// All that is shown of devices, but for the instance, which may come from a serial number.
QStringList Shown(const std::vector<pnp::Device>& devices) {
    QStringList shown;
    for (const pnp::Device& device : devices) {
        if (device.bus != QStringLiteral("net"))
            shown += QStringList{device.instancePath.section(QLatin1Char('\\'), 0, 1),
                                 device.name,
                                 device.manufacturer,
                                 device.classGuid,
                                 QString::number(device.problemCode),
                                 Joined(device.hardwareIds),
                                 device.service,
                                 device.driverVersion,
                                 device.fittingModule,
                                 device.bus,
                                 device.address}
                         .join(QStringLiteral(" ; "));
    }
    return shown;
}

std::string AllOf(const pnp::SavedMachine& machine) {
    std::string all = FactsText(machine.facts);
    machine.tree->ForEach([&all](const std::string& path, const pnp::SavedTree::Entry& entry) {
        all += path + "\n" + entry.bytes + "\n";
    });
    return all;
}

// Notes the names of the attributes that are asked for, whether they are there or not.
class AskedFolder : public pnp::TreeFolder {
  public:
    AskedFolder(std::shared_ptr<const TreeFolder> folder, std::set<std::string>& asked)
        : folder_(std::move(folder)), asked_(asked) {}
    std::optional<std::string> Read(const std::string& name, std::size_t limit) const override {
        asked_.insert(name.substr(name.rfind('/') + 1));
        return folder_->Read(name, limit);
    }
    std::string ReadLink(const std::string& name) const override { return folder_->ReadLink(name); }
    bool Has(const std::string& name) const override { return folder_->Has(name); }
    bool IsFolder(const std::string& name) const override { return folder_->IsFolder(name); }
    std::vector<std::string> List(const std::string& name) const override { return folder_->List(name); }
    std::shared_ptr<const TreeFolder> Open(const std::string& name) const override {
        const auto folder = folder_->Open(name);
        return folder == nullptr ? nullptr : std::make_shared<AskedFolder>(folder, asked_);
    }

  private:
    std::shared_ptr<const TreeFolder> folder_;
    std::set<std::string>& asked_;
};

} // namespace

TEST_F(SavedMachineTest, IsSeenAsTheMachineWas) {
    const QStringList before = Shown(fixture_.Devices());
    EXPECT_GE(before.size(), 17);
    for (const char* part : {" ; 10 ; ", " ; 28 ; ", " ; 31 ; ", " ; 32 ; ", "Quick CPU", "6.1.0-test", " ; 2.6 ; ",
                             "idle_one", "DELL U2410", "Battery", "A Model", "Camera"})
        EXPECT_TRUE(before.join(QLatin1Char('\n')).contains(QLatin1String(part))) << part;

    pnp::SavedMachine machine = SaveMachine(pnp::CurrentSources());
    pnp::MachineFacts facts;
    std::string complaint;
    ASSERT_TRUE(ParseFacts(FactsText(machine.facts), facts, complaint)) << complaint;
    machine.facts = facts;
    const QString ids = pnp::CurrentSources().idFolder;
    pnp::Sources saved = SavedSources(machine, QStringLiteral("saved"));
    saved.idFolder = ids;
    pnp::SetSources(saved);
    QStringList after = Shown(fixture_.Devices());
    // A name of its own for each address, and not the address.
    after.replaceInStrings(QStringLiteral("00:00:00:00:00:02"), QStringLiteral("00:1f:20:ab:cd:ef"));
    after.replaceInStrings(QStringLiteral("00:00:00:00:00:01"), QStringLiteral("00:1f:20:ab:cd:ef"));
    EXPECT_EQ(Plain(after.join(QLatin1Char('\n'))), Plain(before.join(QLatin1Char('\n'))));

    const std::string all = AllOf(machine);
    for (const char* secret : {"SECRET", "ab:cd:ef", "ABCD", "SSSS", "5345 4352"})
        EXPECT_EQ(all.find(secret), std::string::npos) << secret;
}

// A new attribute is saved, or left out, because somebody thought about it.
TEST_F(SavedMachineTest, EveryAttributeIsDecided) {
    std::set<std::string> asked;
    pnp::Sources sources = pnp::CurrentSources();
    sources.tree = std::make_shared<AskedFolder>(pnp::OpenFolder(Plain(fixture_.Root())), asked);
    pnp::SetSources(sources);
    EXPECT_FALSE(fixture_.Devices().empty());
    EXPECT_GT(asked.size(), 40U);
    for (const std::string& attribute : asked)
        EXPECT_TRUE(pnp::IsDecided(attribute)) << attribute;
}

TEST(SavingRules, PagesOfDisksKeepTheModelAlone) {
    const std::string model = "Model of forty characters ..............";
    const std::string name = "ATA     " + model + "SECRETSECRETSECRET12";
    const std::string page = std::string("\0\x83\0\x58", 4) + std::string("\x02\x01\0\x44", 4) + name +
                             std::string("\x01\x03\0\x08", 4) + "SECRETSE";
    EXPECT_EQ(pnp::Page83WithoutIdentity(page), std::string("\0\x83\0\x58", 4) + std::string("\x02\x01\0\x44", 4) +
                                                    "ATA     " + model + std::string(20, ' ') +
                                                    std::string("\x01\x03\0\x08", 4) + std::string(8, '\0'));
    std::string identity(572, 'S');
    identity.replace(60 + 46, 48, "FIRMWARE" + model);
    const std::string kept = pnp::Page89WithoutIdentity(identity);
    EXPECT_EQ(kept.substr(60), std::string(46, '\0') + "FIRMWARE" + model + std::string(418, '\0'));
    // Cut anywhere, they stay as long as they were, and hold no more than the whole ones.
    for (std::size_t length = 0; length < page.size(); ++length) {
        EXPECT_EQ(pnp::Page83WithoutIdentity(page.substr(0, length)).size(), length);
        EXPECT_EQ(pnp::Page83WithoutIdentity(page.substr(0, length)).find("SECRET"), std::string::npos);
    }
    for (std::size_t length = 0; length < identity.size(); length += 7)
        EXPECT_EQ(pnp::Page89WithoutIdentity(identity.substr(0, length)), kept.substr(0, length));
}

TEST(SavedTree, StaysInsideAndATree) {
    struct Row {
        const char* path;
        const char* target; // null for a file
        bool taken;
    };
    const std::string deep = [] {
        std::string path;
        for (int i = 0; i < 61; ++i)
            path += "/a";
        return path;
    }();
    const Row rows[] = {
        {"/a/b", nullptr, true},          {"/a/b", "x", false},       {"/a/b/c", nullptr, false},
        {"/../x", nullptr, false},        {"/a/./x", nullptr, false}, {"/", nullptr, false},
        {"/a/l", "../b/../a", true},      {"/a/l", "other", false},   {"/a/l/x", nullptr, false},
        {"/a/out", "../..", false},       {"/a/out", "/etc", false},  {"/a/out", "", false},
        {"/a/out", "../../sys/a", false}, {"/a/self", "self", true},  {"/a\n", nullptr, false},
        {deep.c_str(), nullptr, false},
    };
    const auto tree = std::make_shared<pnp::SavedTree>();
    for (const Row& row : rows)
        EXPECT_EQ(row.target == nullptr ? tree->AddFile(row.path, "x") : tree->AddLink(row.path, row.target), row.taken)
            << row.path;
    const auto root = OpenSavedTree(tree);
    EXPECT_EQ(root->Open("a/self"), nullptr);
    EXPECT_EQ(root->Open(".."), nullptr);
    EXPECT_EQ(root->Read("a/../../a/b", 9), std::nullopt);
    EXPECT_EQ(root->Open("a")->Open("../a")->Read("b", 9), "x");
}

TEST(MachineFacts, TellWhatTheyCannotRead) {
    struct Row {
        const char* text;
        const char* complaint;
    };
    for (const Row& row : {Row{"quorvane-machine 1\nnew\tthing\n\nlive", ""}, Row{"", "it is no saved machine"},
                           Row{"quorvane-machine x\n", "it is no saved machine"},
                           Row{"quorvane-machine 2\n", "it was saved by a newer version of this program"}}) {
        pnp::MachineFacts facts;
        std::string complaint;
        const bool good = ParseFacts(row.text, facts, complaint);
        EXPECT_EQ(good, complaint.empty());
        EXPECT_EQ(complaint, row.complaint);
    }
}
