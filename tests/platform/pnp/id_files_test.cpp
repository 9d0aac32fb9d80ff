#include "device_fixture.h"
#include "pnp/id_files.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

class IdFiles : public testing::Test {
  protected:
    QString Written(const QString& name, const QByteArray& bytes) {
        QFile file(folder_.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }

    QTemporaryDir folder_;
};

} // namespace

TEST_F(IdFiles, BrokenLinesCostThemselves) {
    pnp::IdFile file(Written(QStringLiteral("pci.ids"), "# comment\n"
                                                        "8086  Intel Corporation\n"
                                                        "\t1234  First\n"
                                                        "\t\t17aa 2001  Subsystem, no device\n"
                                                        "\t1234  Again\n"
                                                        "\t12x4  Broken\n"
                                                        "# between\n"
                                                        "\n"
                                                        "\t5678  Caf\xE9\n"
                                                        "80z6  No vendor\n"
                                                        "\t9999  Of nobody\n"
                                                        "10de  \xC3\x84nvidia\r\n"
                                                        "\t0001  Last\n"
                                                        "8086  Twice\n"
                                                        "\tabcd  Late\n"
                                                        "C 03  Display controller\n"
                                                        "\t0000  No device\n"
                                                        "\t"));
    EXPECT_EQ(Plain(file.VendorName(0x8086)), "Intel Corporation");
    EXPECT_EQ(Plain(file.DeviceName(0x8086, 0x1234)), "First");
    EXPECT_EQ(file.DeviceName(0x8086, 0x5678), QStringLiteral("Caf\u00e9"));
    EXPECT_EQ(Plain(file.DeviceName(0x8086, 0xABCD)), "Late");
    EXPECT_EQ(file.DeviceName(0x8086, 0x9999), QString());
    EXPECT_EQ(file.DeviceName(0x8086, 0x17AA), QString());
    EXPECT_EQ(file.VendorName(0x10DE), QStringLiteral("\u00c4nvidia"));
    EXPECT_EQ(Plain(file.DeviceName(0x10DE, 0x0001)), "Last");
    EXPECT_EQ(file.DeviceName(0x10DE, 0x0000), QString());
    EXPECT_EQ(file.VendorName(0x0003), QString());
}

TEST_F(IdFiles, MissingAndEmptyFilesKnowNothing) {
    EXPECT_EQ(pnp::IdFile(folder_.filePath(QStringLiteral("none"))).VendorName(0x8086), QString());
    EXPECT_EQ(pnp::IdFile(folder_.path()).VendorName(0x8086), QString());
    EXPECT_EQ(pnp::IdFile(Written(QStringLiteral("empty"), "")).DeviceName(0x8086, 1), QString());
    EXPECT_EQ(pnp::PnpVendorFile(folder_.filePath(QStringLiteral("none"))).VendorName(QStringLiteral("DEL")),
              QString());
}

TEST_F(IdFiles, MonitorsAndFirmwareKnowThreeLetters) {
    pnp::PnpVendorFile file(Written(QStringLiteral("pnp.ids"), "DEL\tDell Inc.\nIBM\tIBM\nDEL\tTwice\nXX\tShort"));
    EXPECT_EQ(Plain(file.VendorName(QStringLiteral("DEL"))), "Dell Inc.");
    EXPECT_EQ(file.VendorName(QStringLiteral("XX")), QString());
    EXPECT_EQ(file.VendorName(QStringLiteral("ell")), QString());
}
