#include "inventory/column_sizes.h"

#include "base/yield.h"
#include "forms/form.h"
#include "forms/screen.h"
#include "suite/list_header.h"
#include "suite/list_view.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

class ColumnSizes : public testing::Test {
  protected:
    ColumnSizes()
        : form(QStringLiteral("FrmTest"), 12000, 6000), list(new suite::ListView(form.Client(), QStringLiteral("LV"))) {
        list->Move(0, 0, 12000, 6000);
        for (const char* key : {"Name", "Error Code", "L"})
            list->ListItems().AddColumn(QString::fromLatin1(key), QString::fromLatin1(key), 0);
    }
    double Width(int column) { return list->ListItems().Column(column).Width; }
    double Least(int column) { return form.TextWidth(list->ListItems().Column(column).Caption) + 600; }

    forms::Form form;
    suite::ListView* list;
};

TEST_F(ColumnSizes, NoColumnIsNarrowerThanItsCaptionAndSixHundredTwips) {
    list->ListItems().Add(QStringLiteral("a"))->SetSubItems(1, QStringLiteral("(0) OK"));
    inventory::AutoSizeColumns(*list);
    EXPECT_EQ(Width(1), Least(1));
    EXPECT_EQ(Width(2), Least(2));
    EXPECT_GE(Width(3), Least(3));
}

TEST_F(ColumnSizes, TheIconWidensTheFirstColumnAlone) {
    auto* row = list->ListItems().Add(QString(60, QLatin1Char('m')));
    row->SetSubItems(1, QString(60, QLatin1Char('m')));
    inventory::AutoSizeColumns(*list);
    const double first = Width(1), second = Width(2);
    list->SetIconSize(16);
    inventory::AutoSizeColumns(*list);
    EXPECT_NEAR(Width(1) - first, 16 * forms::TwipsPerPixel(), 0.01);
    EXPECT_EQ(Width(2), second);
}

TEST_F(ColumnSizes, TheLastColumnKeepsItsWidthInTheOtherRoutine) {
    auto* row = list->ListItems().Add(QStringLiteral("name"));
    row->SetSubItems(2, QStringLiteral("036"));
    list->SetIconSize(16);
    inventory::AutoSizeColumnsButLast(*list);
    EXPECT_EQ(Width(3), 0);
    EXPECT_TRUE(list->Header()->isSectionHidden(2));
    // No least width here, and no room for the icon.
    EXPECT_LT(Width(1), Least(1));
}

TEST_F(ColumnSizes, YieldsBetweenTheColumns) {
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        EXPECT_GT(base::YieldDepth(), 0);
        ++ticks;
    });
    timer.start(0);
    inventory::AutoSizeColumns(*list);
    EXPECT_GE(ticks, 6);
    ticks = 0;
    inventory::AutoSizeColumnsButLast(*list);
    EXPECT_GE(ticks, 3);
}

} // namespace
