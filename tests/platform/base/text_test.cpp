#include "base/text.h"

#include "base/property_bag.h"

#include <gtest/gtest.h>

TEST(Text, SplitOfNothingHasNoElement) {
    EXPECT_TRUE(base::Split(QString(), QStringLiteral("|")).isEmpty());
    EXPECT_EQ(base::Split(QStringLiteral("A|B|"), QStringLiteral("|")), (QStringList{"A", "B", ""}));
    EXPECT_EQ(base::Split(QStringLiteral("A"), QStringLiteral("\r\n")), (QStringList{"A"}));
}

TEST(Text, TrimTakesBlanksAlone) {
    EXPECT_EQ(base::Trim(QStringLiteral("  a b\t ")), QStringLiteral("a b\t"));
    EXPECT_EQ(base::Trim(QStringLiteral("   ")), QString());
    EXPECT_EQ(base::Mid(QStringLiteral("HTTP/1.1 404 x"), 10, 3), QStringLiteral("404"));
    EXPECT_EQ(base::Mid(QStringLiteral("ab"), 3, 1), QString());
}

TEST(Text, CutAtNull) {
    EXPECT_EQ(base::CutAtNull(QString(QChar(0)) + "x"), QString());
    EXPECT_EQ(base::CutAtNull(QStringLiteral("ab") + QChar(0) + "x"), QStringLiteral("ab"));
    EXPECT_EQ(base::CutAtNull(QStringLiteral("ab")), QStringLiteral("ab"));
}

TEST(Text, AnsiIsWindows1252BothWays) {
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    EXPECT_EQ(base::ToAnsi(base::FromAnsi(all)), all);
    EXPECT_EQ(base::FromAnsi(QByteArray("\x80\x99")), QString::fromUtf8("€™"));
    EXPECT_EQ(base::ToAnsi(QString::fromUtf8("aЖ€😀b")), QByteArray("a?\x80?b"));
}

TEST(PropertyBag, KeysIgnoreCaseAndDefaultsAreNotKept) {
    base::PropertyBag bag;
    bag.WriteProperty("BackColorV2Begin", 7, 0);
    EXPECT_EQ(bag.Read<int>("backcolorv2begin", 0), 7);
    bag.WriteProperty("BACKCOLORV2BEGIN", 0, 0);
    EXPECT_EQ(bag.Count(), 0);
    bag.WriteProperty("n", QStringLiteral("words"), QVariant());
    EXPECT_EQ(bag.Read<int>("n", 5), 5);
}
