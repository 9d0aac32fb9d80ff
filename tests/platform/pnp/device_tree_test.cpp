#include "device_fixture.h"
#include "pnp/acpi_ids.h"
#include "pnp/class_table.h"
#include "pnp/device_tree.h"
#include "pnp/sysfs.h"

#include <QFile>
#include <QSet>
#include <gtest/gtest.h>
#include <sys/stat.h>

// Attributes are read when a device comes up, not when the snapshot is taken.
TEST(DeviceTree, ReadsDevicesWhenTheyComeUp) {
    DeviceFixture fixture("/devices/virtual/net/eth0 @ class/net\n/devices/platform/a @ bus/platform\n"
                          "/devices/platform/b @ bus/platform\n/devices/platform/c @ bus/platform\n");
    const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
    ASSERT_NE(tree->At(1), nullptr);
    fixture.Link(QStringLiteral("/devices/platform/a/driver"), QStringLiteral("/bus/platform/drivers/late"));
    fixture.Link(QStringLiteral("/devices/platform/b/driver"), QStringLiteral("/bus/platform/drivers/late"));
    fixture.Remove(QStringLiteral("/devices/platform/c"));
    EXPECT_EQ(Plain(tree->At(2)->service), "late");
    // Once read, a device stays as it was; one that is gone is left out.
    EXPECT_EQ(Plain(tree->At(1)->service), "");
    EXPECT_EQ(tree->At(3), nullptr);
    EXPECT_EQ(tree->Find(QStringLiteral("ROOT\\C\\0000")), nullptr);
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

// A pipe that nobody writes to must not hold up the scan, and absolute links do not lead out of the tree.
TEST(DeviceTree, PipesAndLinksOutAreNothing) {
    DeviceFixture fixture("/devices/usb1/1-1 @ bus/usb\nidVendor = 0951\nidProduct = 1666\n");
    const QString folder = fixture.Root() + QStringLiteral("/devices/usb1/1-1/");
    ASSERT_EQ(mkfifo(QFile::encodeName(folder + QStringLiteral("manufacturer")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc"), fixture.Root() + QStringLiteral("/bus/usb/devices/1-2")));
    ASSERT_TRUE(QFile::link(folder, fixture.Root() + QStringLiteral("/bus/usb/devices/1-3")));
    const std::vector<pnp::Device> devices = fixture.Devices();
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(Plain(devices[0].manufacturer), "");
    EXPECT_EQ(Plain(devices[1].address), "1-1");
    pnp::SetDeviceRoot(QStringLiteral("/nonexistent/sys"));
    EXPECT_EQ(pnp::BindTree()->At(0), nullptr);
}

// Icons are kept under their resource id alone, and GUIDs are compared in upper case.
TEST(ClassTable, KeepsItsPromises) {
    QSet<int> resources;
    QSet<QString> guids;
    for (const pnp::SetupClass& entry : pnp::SetupClasses()) {
        const QString guid = QString::fromUtf16(entry.guid);
        EXPECT_TRUE(guid == guid.toUpper() && guid.size() == 38 && !guids.contains(guid)) << Plain(guid);
        EXPECT_TRUE(entry.iconResource > 0 && !resources.contains(entry.iconResource)) << entry.iconResource;
        guids.insert(guid);
        resources.insert(entry.iconResource);
    }
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
