#include "device_fixture.h"
#include "pnp/acpi_ids.h"
#include "pnp/class_table.h"
#include "pnp/device_tree.h"
#include "pnp/identity.h"
#include "pnp/sysfs.h"

#include <QSet>
#include <gtest/gtest.h>

namespace {

QByteArray Function(int number) {
    const QByteArray slot = QByteArray::number(number / 8, 16).rightJustified(2, '0');
    return "/devices/pci0000:00/0000:00:" + slot + "." + QByteArray::number(number % 8) +
           " @ bus/pci\nvendor = 0x8086\ndevice = 0x" + QByteArray::number(0x1000 + number, 16) +
           "\nclass = 0x020000\ndriver -> /bus/pci/drivers/e1000\n";
}

} // namespace

// Attributes are read when a device comes up, not when the snapshot is taken.
TEST(DeviceTree, ReadsDevicesWhenTheyComeUp) {
    DeviceFixture fixture;
    fixture.Add(Function(0) + Function(1));
    const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
    ASSERT_NE(tree->At(0), nullptr);
    fixture.Write(QStringLiteral("/devices/pci0000:00/0000:00:00.1/device"), "0x4242\n");
    ASSERT_NE(tree->At(1), nullptr);
    EXPECT_TRUE(tree->At(1)->instancePath.startsWith(QStringLiteral("PCI\\VEN_8086&DEV_4242")));
    // Once read, a device stays as it was.
    fixture.Write(QStringLiteral("/devices/pci0000:00/0000:00:00.0/device"), "0x4343\n");
    EXPECT_TRUE(tree->At(0)->instancePath.startsWith(QStringLiteral("PCI\\VEN_8086&DEV_1000")));
}

TEST(DeviceTree, FindsByPathInAnyCase) {
    DeviceFixture fixture;
    fixture.Add(Function(0) + Function(1) + Function(2));
    const QString last = fixture.Devices().at(2).instancePath;
    const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
    ASSERT_NE(tree->Find(last.toLower()), nullptr);
    EXPECT_EQ(tree->Find(last.toLower())->instancePath, last);
    EXPECT_EQ(tree->Find(last + QStringLiteral("x")), nullptr);
}

TEST(DeviceTree, PathsAreStableAndDriverKeysCount) {
    DeviceFixture fixture;
    fixture.Add(Function(0) + Function(1) + Function(2));
    const std::vector<pnp::Device> first = fixture.Devices();
    const std::vector<pnp::Device> second = fixture.Devices();
    ASSERT_EQ(first.size(), second.size());
    QSet<QString> keys;
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first[i].instancePath, second[i].instancePath);
        keys.insert(first[i].driverKey);
    }
    EXPECT_EQ(keys.size(), 3);
}

// A device that was pulled while its record is made, and another in the same place.
TEST(DeviceTree, WhatStandsAboveAFolderIsTheSameDevices) {
    DeviceFixture fixture("/devices/usb1/1-1\nproduct = First\n/devices/usb1/1-1/1-1:1.0\ninterface = Function\n");
    const pnp::Sysfs files(fixture.Root());
    const pnp::Node function(files, "/devices/usb1/1-1/1-1:1.0");
    ASSERT_TRUE(function.Exists());
    EXPECT_EQ(function.Parent().Text("product"), QStringLiteral("First"));
    EXPECT_EQ(function.Ancestor("/devices/usb1/1-1").Text("product"), QStringLiteral("First"));
    fixture.Remove(QStringLiteral("/devices/usb1/1-1"));
    fixture.Add("/devices/usb1/1-1\nproduct = Second\n/devices/usb1/1-1/1-1:1.0\ninterface = Function\n");
    EXPECT_EQ(function.Parent().Text("product"), QString());
    EXPECT_EQ(function.Ancestor("/devices/usb1/1-1").Text("product"), QString());
    EXPECT_EQ(pnp::Node(files, function.Path()).Parent().Text("product"), QStringLiteral("Second"));
}

TEST(DeviceTree, LevelsFollowTheTree) {
    EXPECT_EQ(pnp::TreeLevel("/devices/pci0000:00/0000:00:16.0"), 3);
    EXPECT_EQ(pnp::TreeLevel("/devices/pci0000:00/0000:00:1c.0/0000:02:00.0"), 4);
    EXPECT_EQ(pnp::TreeLevel("/devices/pci0000:00/0000:00:14.0/usb1/1-2"), 5);
    EXPECT_EQ(pnp::TreeLevel("/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0"), 6);
    EXPECT_EQ(pnp::TreeLevel("/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/0003:1532:029F.0004"), 7);
}

// Icons are kept under their resource id alone, and GUIDs are compared in upper case.
TEST(ClassTable, KeepsItsPromises) {
    QSet<int> resources;
    QSet<QString> guids;
    bool extracted = false;
    for (const pnp::SetupClass& entry : pnp::SetupClasses()) {
        const QString guid = QString::fromUtf16(entry.guid);
        EXPECT_EQ(guid, guid.toUpper());
        EXPECT_EQ(guid.size(), 38);
        EXPECT_FALSE(guids.contains(guid)) << Plain(guid);
        EXPECT_FALSE(resources.contains(entry.iconResource)) << entry.iconResource;
        EXPECT_GT(entry.iconResource, 0);
        guids.insert(guid);
        resources.insert(entry.iconResource);
        extracted = extracted || !QString::fromUtf16(entry.iconModule).endsWith(QStringLiteral("dll"));
    }
    EXPECT_TRUE(extracted) << "no class uses the way of extracted icons";
}

// A row that stands twice would hide what the other says.
TEST(AcpiTable, NoIdentifierStandsTwice) {
    QSet<QString> seen;
    for (const pnp::AcpiKind& kind : pnp::AcpiKinds()) {
        for (const QString& id : QString::fromLatin1(kind.ids).split(QLatin1Char(' '))) {
            EXPECT_FALSE(seen.contains(id)) << Plain(id);
            EXPECT_EQ(id, id.toUpper());
            EXPECT_TRUE(pnp::FindAcpiKind(id) == &kind) << Plain(id);
            seen.insert(id);
        }
    }
}
