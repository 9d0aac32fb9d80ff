#include "base/clock.h"
#include "base/numbers.h"
#include "values/format_byte_size.h"

#include <QLocale>
#include <QTime>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

TEST(Numbers, RoundsHalfToEvenAndClamps) {
    EXPECT_EQ(base::RoundToInt(0.5), 0);
    EXPECT_EQ(base::RoundToInt(1.5), 2);
    EXPECT_EQ(base::RoundToInt(-0.5), 0);
    EXPECT_EQ(base::RoundToInt(-2.5), -2);
    EXPECT_EQ(base::RoundToInt(22.500001), 23);
    EXPECT_EQ(base::RoundToInt(1e20), std::numeric_limits<qint32>::max());
    EXPECT_EQ(base::RoundToInt(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(base::Int(-0.5), -1);
    EXPECT_EQ(base::Fix(-0.5), 0);
}

TEST(Numbers, Patterns) {
    EXPECT_EQ(base::FormatNumber(12.0, "00000"), "00012");
    EXPECT_EQ(base::FormatNumber(100000.0, "00000"), "100000");
    EXPECT_EQ(base::FormatNumber(QStringLiteral("beta"), "00000"), "beta");
    EXPECT_EQ(base::FormatNumber(QStringLiteral("7"), "000"), "007");
    EXPECT_EQ(base::FormatNumber(0.0, "###,###,###,###"), "");
    EXPECT_EQ(base::FormatNumber(999.0, "###,###,###,###"), "999");
    EXPECT_EQ(base::FormatNumber(1234567.0, "###,###,###,###"), "1,234,567");
    EXPECT_EQ(base::FormatNumber(-1234567.0, "###,###,###,###"), "-1,234,567");
    EXPECT_EQ(base::FormatNumber(-1e30, "###,###,###,###"), "-9,223,372,036,854,775,807");
    EXPECT_EQ(base::FormatNumber(-7.0, "000"), "-007");
    EXPECT_EQ(base::FormatNumber(-0.2, "000"), "000");
    EXPECT_EQ(base::FormatNumber(0.125, "0.00"), "0.13");
    EXPECT_EQ(base::FormatNumber(1.005, "0.00"), "1.01");
    EXPECT_EQ(base::FormatNumber(0.5, "0"), "1");
    EXPECT_EQ(base::FormatNumber(-0.2, "0"), "0");
    EXPECT_EQ(base::FormatNumber(-1.005, "0.00"), "-1.01");
    EXPECT_EQ(base::FormatNumber(0.004, "0.00"), "0.00");
    EXPECT_EQ(base::FormatNumber(-0.05, "0.00"), "-0.05");
    EXPECT_EQ(base::FormatNumber(-1234567.891, "0.00"), "-1234567.89");
    EXPECT_EQ(base::FormatNumber(1e18, "0.00"), "1000000000000000000.00");
    EXPECT_EQ(base::FormatNumber(2.5, "0"), "3");
    EXPECT_EQ(base::FormatNumber(1.4999999, "0"), "1");
    EXPECT_EQ(base::FormatNumber(8.115, "0.00"), "8.12");
}

TEST(Numbers, WhatReadsAsANumber) {
    EXPECT_EQ(base::TextToInt(" 16750899 "), 16750899);
    EXPECT_EQ(base::TextToInt("-2147483643"), -2147483643);
    EXPECT_EQ(base::TextToInt("4294967296"), std::nullopt);
    EXPECT_EQ(base::TextToInt("&H80000005"), qint32(0x80000005U));
    for (const char* text : {"", "12x", "red", "inf", "nan", "0x10", "--1", "1 2"})
        EXPECT_EQ(base::TextToNumber(text), std::nullopt) << text;
    EXPECT_EQ(base::TextToBool("1"), true);
    EXPECT_EQ(base::TextToBool("True"), true);
    EXPECT_EQ(base::TextToBool("0"), false);
    EXPECT_EQ(base::TextToBool("on"), std::nullopt);
}

TEST(FormatByteSize, BordersOfTheRanges) {
    EXPECT_EQ(values::FormatByteSize(1023), "1023 Bytes");
    EXPECT_EQ(values::FormatByteSize(1024), "1.00 KB");
    EXPECT_EQ(values::FormatByteSize(1048576), "1024.00 KB");
    EXPECT_EQ(values::FormatByteSize(1048577), "1.00 MB");
}

TEST(Numbers, DecimalsFollowTheLocaleOfTheMoment) {
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(base::FormatNumber(-1234.5, "0.00"), "-1234,50");
    // A minus sign of its own, which must not be taken for a digit.
    QLocale::setDefault(QLocale(QLocale::Swedish));
    EXPECT_EQ(base::FormatNumber(-7.0, "000"), QString::fromUtf16(u"\u2212007"));
    EXPECT_TRUE(base::FormatNumber(-1234.0, "###,###,###,###").startsWith(u'\u2212'));
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(base::FormatNumber(-1234.5, "0.00"), "-1234.50");
    QLocale::setDefault(QLocale::system());
}

TEST(ClockTest, CountsTheSecondsOfTheLocalDay) {
    // Twice, as the second answer rests on what was found out for the first.
    for (int round = 0; round < 2; ++round) {
        const double apart =
            double(base::SecondsSinceMidnight()) - QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
        EXPECT_LT(std::abs(std::remainder(apart, 86400.0)), 1.0);
    }
}
