#include "inventory/clean_text.h"
#include "inventory/device_lists.h"
#include "inventory/list_text.h"
#include "inventory/problem_text.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

std::string Clean(const QVariant& value) { return inventory::CleanText(value).toStdString(); }

std::string Problem(const char* text) { return inventory::GetProblemText(QString::fromLatin1(text)).toStdString(); }

} // namespace

TEST(CleanText, LeavesSingleBlanks) {
    EXPECT_EQ(Clean(QStringLiteral("\ta\t\tb  \u00A0 c \u00A0")), "a b c");
    EXPECT_EQ(Clean(QStringLiteral(" \t\u00A0\t ")), "");
    EXPECT_EQ(Clean(QString(1001, QLatin1Char(' ')) + QStringLiteral("x")), "x");
    EXPECT_EQ(Clean(28), "28");
    EXPECT_EQ(Clean(QVariant()), "");
}

TEST(ProblemText, KeepsTheNumberInFront) {
    EXPECT_EQ(Problem("0"), "(0) OK");
    EXPECT_EQ(Problem("28"), "(28) Drivers are not installed");
    EXPECT_EQ(Problem("49"), "(49) System hive is too large (exceeds the Registry Size Limit)");
    EXPECT_EQ(Problem("52"),
              "(52) Windows cannot verify the digital signature for the drivers required for this device");
    for (const char* unknown : {"2", "4", "30", "53", "", "028", " 28"})
        EXPECT_EQ(Problem(unknown), std::string("(") + unknown + ") Unknown Error");
}

TEST(ListText, RowsMayVanishInItsYields) {
    suite::ListItems list;
    inventory::AddDeviceColumns(list);
    for (int i = 0; i < 50; ++i)
        list.Add(QString::number(i));
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&list] { list.Remove(1); });
    timer.start(0);
    const QString text = inventory::WholeListText(list, inventory::ListTextScope::WholeRow);
    EXPECT_TRUE(text.endsWith(QStringLiteral("\r\n")));
    EXPECT_LT(list.Count(), 50);
}
