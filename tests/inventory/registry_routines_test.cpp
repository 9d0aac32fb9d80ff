#include "inventory/registry_routines.h"

#include <QDateTime>
#include <gtest/gtest.h>

namespace {

class Registry : public testing::Test {
  protected:
    Registry() {
        registry.SetKeyRoot(inventory::HKEY_LOCAL_MACHINE);
        registry.SetSubkey(QStringLiteral("SOFTWARE\\Routines"));
        EXPECT_EQ(registry.CreateKey(), QStringLiteral("0"));
    }
    ~Registry() override {
        registry.SetSubkey(QStringLiteral("SOFTWARE"));
        registry.DeleteKey(QStringLiteral("Routines"));
    }

    QVariant RoundTrip(const QVariant& value, qint32 type, bool hex = false) {
        EXPECT_TRUE(registry.SetRegistryValue(name, value, type, hex));
        qint32 found = 0;
        const QVariant read = registry.GetRegistryValue(name, QStringLiteral("default"), &found);
        EXPECT_EQ(found, type);
        return read;
    }

    const QString name = QStringLiteral("Value");
    inventory::RegistryRoutines registry;
};

const QString Zero = QString(QChar(u'\0'));

} // namespace

TEST_F(Registry, TextsComeBack) {
    EXPECT_EQ(RoundTrip(QStringLiteral("Ports"), inventory::RegistryText), QVariant(QStringLiteral("Ports")));
    EXPECT_EQ(RoundTrip(QString(), inventory::RegistryText), QVariant(QStringLiteral("default")));
    EXPECT_EQ(RoundTrip(QStringLiteral("a") + Zero + QStringLiteral("b"), inventory::RegistryText),
              QVariant(QStringLiteral("a")));
    EXPECT_EQ(registry.GetRegistryValue(QStringLiteral("Other"), 7), QVariant(7));
    EXPECT_FALSE(registry.GetRegistryValue(QStringLiteral("Other")).isValid());
    // Longer than the first buffer.
    const QString text(5000, QLatin1Char('x'));
    EXPECT_EQ(RoundTrip(text, inventory::RegistryText), QVariant(text));
    // Several strings keep the zeros between them.
    const QString two = QStringLiteral("A") + Zero + QStringLiteral("B") + Zero;
    EXPECT_EQ(RoundTrip(two + Zero, inventory::RegistryMultiText), QVariant(two));
    EXPECT_EQ(RoundTrip(Zero + Zero, inventory::RegistryMultiText), QVariant(QStringLiteral("default")));
    EXPECT_EQ(registry.GetStringValue(name), QString());
    registry.SetRegistryValue(name, QStringLiteral("%SystemRoot%\\a"), inventory::RegistryExpandText);
    EXPECT_EQ(registry.GetStringValue(name), QStringLiteral("%SystemRoot%\\a"));
    EXPECT_EQ(registry.GetStringValue(name, true), QStringLiteral("C:\\Windows\\a"));
}

TEST_F(Registry, NumbersAndBytes) {
    EXPECT_EQ(RoundTrip(-5, inventory::RegistryWord), QVariant(-5));
    EXPECT_EQ(RoundTrip(QStringLiteral("1F"), inventory::RegistryWord, true), QVariant(31));
    EXPECT_EQ(registry.GetRegistryValue(name, {}, nullptr, false, true), QVariant(QStringLiteral("1F")));
    EXPECT_EQ(RoundTrip(QByteArray("\x05\xA0\x00", 3), inventory::RegistryBinary),
              QVariant(QStringLiteral("05 A0 00 ")));
    EXPECT_EQ(RoundTrip(4294967295.0, inventory::RegistryWord), QVariant(-1));
    for (const char* text : {"no number", "4294967296", "-2147483649", "1E300"})
        EXPECT_FALSE(registry.SetRegistryValue(name, QString::fromLatin1(text), inventory::RegistryWord)) << text;
    EXPECT_FALSE(registry.SetRegistryValue(name, 1, 11));
}

TEST_F(Registry, KeysAndValuesAreListedAndDeleted) {
    EXPECT_EQ(registry.CreateKey(QStringLiteral("Inner")), QStringLiteral("0"));
    EXPECT_EQ(registry.CreateKey(QStringLiteral("Inner")), QStringLiteral("0"));
    const QString path = registry.Subkey();
    EXPECT_EQ(registry.EnumRegistryKeys(inventory::HKEY_LOCAL_MACHINE, path), QStringList{QStringLiteral("Inner")});
    const QStringList dated = registry.EnumRegistryKeysWithLastModified(inventory::HKEY_LOCAL_MACHINE, path);
    ASSERT_EQ(dated.size(), 1);
    EXPECT_TRUE(dated[0].startsWith(QStringLiteral("Inner|")));
    EXPECT_TRUE(dated[0].contains(QDateTime::currentDateTime().toString(QStringLiteral(" HH:"))) ||
                dated[0].contains(QDateTime::currentDateTime().addSecs(-60).toString(QStringLiteral(" HH:"))))
        << dated[0].toStdString();
    registry.SetRegistryValue(name, 1, inventory::RegistryWord);
    EXPECT_EQ(registry.EnumRegistryValues(inventory::HKEY_LOCAL_MACHINE, path), QStringList{name});
    EXPECT_EQ(registry.DeleteValue(name), 0);
    EXPECT_EQ(registry.DeleteValue(name), 2);
    EXPECT_EQ(registry.DeleteKey(QStringLiteral("Inner")), 0);
    EXPECT_EQ(registry.DeleteKey(QStringLiteral("Inner")), 2);
    EXPECT_TRUE(registry.KeyExists());
    registry.SetSubkey(QStringLiteral("SOFTWARE\\None"));
    EXPECT_FALSE(registry.KeyExists());
    EXPECT_EQ(registry.DeleteValue(name), 2);
    EXPECT_TRUE(registry.EnumRegistryKeys(inventory::HKEY_LOCAL_MACHINE, registry.Subkey()).isEmpty());
    EXPECT_FALSE(registry.SetRegistryValue(name, 1, inventory::RegistryWord));
}
