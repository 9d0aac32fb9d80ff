#include "forms/form.h"
#include "forms/screen.h"
#include "suite/icon_store.h"
#include "suite/list_header.h"
#include "suite/list_model.h"
#include "suite/list_tree.h"
#include "suite/list_view.h"
#include "suite/paint_tools.h"

#include <QAccessible>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

using suite::ListView;

class ListViewTest : public testing::Test {
  protected:
    ListViewTest()
        : form(QStringLiteral("FrmTest"), 9000, 6000), list(new ListView(form.Client(), QStringLiteral("LV"))) {
        list->Move(0, 0, 9000, 6000);
        for (const char* key : {"Name", "Manufacturer", "IDs"})
            items().AddColumn(QString::fromLatin1(key), QString::fromLatin1(key), 1500);
    }

    suite::ListItems& items() { return list->ListItems(); }
    ListView* view() { return list; }
    void Fill(int rows) {
        for (int i = 0; i < rows; ++i)
            items()
                .Add(QStringLiteral("row %1").arg(i, 4, 10, QLatin1Char('0')))
                ->SetSubItems(1, QStringLiteral("maker"));
    }
    void Show() {
        form.Show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    }
    QAbstractItemModel* Model() { return list->Tree()->model(); }
    QPoint RowCentre(int row) { return list->Tree()->visualRect(Model()->index(row, 0)).center(); }
    QImage Picture() { return list->grab().toImage(); }

    forms::Form form;
    ListView* list;
};

TEST_F(ListViewTest, HoldsNoRowsUntilItIsSeenAndLetsGoWhenHidden) {
    Fill(50);
    EXPECT_EQ(Model()->rowCount(), 0);
    Show();
    EXPECT_EQ(Model()->rowCount(), 50);
    list->SetVisible(false);
    items().Clear();
    Fill(3);
    EXPECT_EQ(Model()->rowCount(), 0);
    items().Item(2)->SetSelected(true);
    list->SetVisible(true);
    EXPECT_EQ(Model()->rowCount(), 3);
    EXPECT_EQ(list->Tree()->currentIndex().row(), 1);
}

TEST_F(ListViewTest, FollowsInsertionRemovalAndSortWhileSeen) {
    Show();
    Fill(5);
    EXPECT_EQ(Model()->rowCount(), 5);
    items().Item(1)->SetSelected(true);
    items().SetSortOrder(suite::SortOrder::Descending);
    items().SetSorted(true);
    EXPECT_EQ(list->Tree()->currentIndex().row(), 4);
    EXPECT_EQ(Model()->index(0, 0).data().toString(), QStringLiteral("row 0004"));
    // The removed row was the last one: the selection goes to the new last one, in the tree too.
    items().Remove(5);
    EXPECT_EQ(Model()->rowCount(), 4);
    EXPECT_EQ(list->Tree()->currentIndex().row(), 3);
    EXPECT_EQ(list->SelectedItem()->Text(), QStringLiteral("row 0001"));
    items().Clear();
    EXPECT_EQ(Model()->rowCount(), 0);
    EXPECT_FALSE(list->Tree()->currentIndex().isValid());
}

TEST_F(ListViewTest, RightReleaseFindsTheClickedRowSelected) {
    Fill(5);
    Show();
    QString selected;
    int button = 0;
    QPointF place;
    QObject::connect(list, &ListView::MouseUp, list, [&](int which, int, double x, double y) {
        button = which;
        place = QPointF(x, y);
        selected = list->SelectedItem() ? list->SelectedItem()->Text() : QString();
    });
    QTest::mouseClick(list->Tree()->viewport(), Qt::RightButton, {}, RowCentre(3));
    EXPECT_EQ(button, 2);
    EXPECT_EQ(selected, QStringLiteral("row 0003"));
    EXPECT_EQ(place.toPoint(), list->Tree()->viewport()->mapTo(list, RowCentre(3)));
}

TEST_F(ListViewTest, MenuKeyAndShiftF10AreRightReleasesAtTheSelectedRow) {
    Fill(200);
    Show();
    items().Item(150)->SetSelected(true);
    int released = 0;
    QPoint place;
    QObject::connect(list, &ListView::MouseUp, list, [&](int which, int, double x, double y) {
        EXPECT_EQ(which, 2);
        place = QPointF(x, y).toPoint();
        ++released;
    });
    QTest::keyClick(list->Tree(), Qt::Key_Menu);
    EXPECT_EQ(released, 1);
    EXPECT_TRUE(list->rect().contains(place)) << place.x() << "," << place.y();
    EXPECT_GT(place.y(), list->Header()->height());
    QTest::keyClick(list->Tree(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(released, 2);
    QTest::keyClick(list->Tree(), Qt::Key_F10);
    EXPECT_EQ(released, 2);
}

TEST_F(ListViewTest, DeleteIsReportedOnceAndMayRemoveTheRow) {
    Fill(3);
    Show();
    items().Item(2)->SetSelected(true);
    int calls = 0;
    QObject::connect(list, &ListView::KeyDown, list, [&](int code, int) {
        ++calls;
        EXPECT_EQ(code, 46);
        items().Remove(list->SelectedItem()->Index());
    });
    QTest::keyClick(list->Tree(), Qt::Key_Delete);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(items().Count(), 2);
    EXPECT_EQ(list->SelectedItem()->Text(), QStringLiteral("row 0002"));
}

TEST_F(ListViewTest, DoubleClickIsReportedOnRowsAlone) {
    Fill(2);
    Show();
    int calls = 0;
    QObject::connect(list, &ListView::DblClick, list, [&] { ++calls; });
    QTest::mouseDClick(list->Tree()->viewport(), Qt::LeftButton, {}, RowCentre(1));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(list->SelectedItem()->Text(), QStringLiteral("row 0001"));
    QTest::mouseDClick(list->Tree()->viewport(), Qt::LeftButton, {},
                       list->Tree()->viewport()->rect().bottomLeft() - QPoint(-20, 40));
    EXPECT_EQ(calls, 1);
}

TEST_F(ListViewTest, TypingFindsARow) {
    for (const char* text : {"Audio device", "Battery", "Bluetooth radio", "Camera"})
        items().Add(QString::fromLatin1(text));
    Show();
    QTest::keyClicks(list->Tree(), QStringLiteral("bl"));
    ASSERT_NE(list->SelectedItem(), nullptr);
    EXPECT_EQ(list->SelectedItem()->Text(), QStringLiteral("Bluetooth radio"));
}

TEST_F(ListViewTest, ColumnsAreClickedByMouseAndByKey) {
    items().AddColumn(QStringLiteral("L"), QStringLiteral("L"), 0);
    Show();
    QList<int> clicked;
    QObject::connect(list, &ListView::ColumnClick, list, [&](int column) { clicked << column; });
    auto* header = list->Header();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(1) + 20, 8));
    header->setFocus();
    QTest::keyClick(header, Qt::Key_Space);
    // The hidden column is never reached.
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(header, Qt::Key_Right);
    QTest::keyClick(header, Qt::Key_Return);
    EXPECT_EQ(clicked, QList<int>({2, 1, 3}));
    EXPECT_TRUE(header->isSectionHidden(3));
}

TEST_F(ListViewTest, AutomaticWidthsFitTextsCaptionsAndTheView) {
    items().Add(QStringLiteral("a"))->SetSubItems(1, QString(60, QLatin1Char('W')));
    Show();
    const auto width = [&](int column) { return list->Header()->sectionSize(column); };
    const QFontMetrics metrics = list->Tree()->fontMetrics();
    list->SetColumnWidthPixels(1, suite::autoSize);
    EXPECT_GE(width(1), metrics.horizontalAdvance(QString(60, QLatin1Char('W'))));
    list->SetColumnWidthPixels(0, suite::autoSize);
    EXPECT_LT(width(0), metrics.horizontalAdvance(QStringLiteral("Name")));
    list->SetColumnWidthPixels(0, suite::autoSizeUseHeader);
    EXPECT_GE(width(0), metrics.horizontalAdvance(QStringLiteral("Name")));
    // The icon is left out of the first column, the last one fills the view.
    const int bare = width(0);
    list->SetIconSize(32);
    list->SetColumnWidthPixels(0, suite::autoSizeUseHeader);
    EXPECT_EQ(width(0), bare);
    list->SetColumnWidthPixels(1, 80);
    list->SetColumnWidthPixels(2, suite::autoSizeUseHeader);
    EXPECT_EQ(width(0) + width(1) + width(2), list->Tree()->viewport()->width());
    EXPECT_EQ(items().Column(2).Width, forms::ToTwips(80));
    list->SetColumnWidthPixels(7, 10);
    list->SetColumnWidthPixels(-1, suite::autoSize);
}

TEST_F(ListViewTest, TheLongestTextIsMeasuredWhereverItStands) {
    Fill(5000);
    items().Item(4321)->SetText(QString(80, QLatin1Char('m')));
    list->SetColumnWidthPixels(0, suite::autoSize);
    EXPECT_GE(list->Header()->sectionSize(0),
              list->Tree()->fontMetrics().horizontalAdvance(QString(80, QLatin1Char('m'))));
}

TEST_F(ListViewTest, DraggingAColumnIsKeptInTheItems) {
    Show();
    list->Header()->resizeSection(0, 333);
    EXPECT_EQ(items().Column(1).Width, forms::ToTwips(333));
}

TEST_F(ListViewTest, EnsureVisibleScrollsAndSortingKeepsThePlace) {
    Fill(500);
    Show();
    items().Item(400)->EnsureVisible();
    EXPECT_TRUE(list->Tree()->viewport()->rect().contains(RowCentre(399)));
    const int scrolled = list->Tree()->verticalScrollBar()->value();
    EXPECT_GT(scrolled, 0);
    items().SetSorted(true);
    EXPECT_EQ(list->Tree()->verticalScrollBar()->value(), scrolled);
}

TEST_F(ListViewTest, PaintsTheTwoColoursTheCellColourAndTheIcon) {
    list->SetBackColor(base::Colour::FromRgb(0, 0, 64));
    list->SetForeColor(base::Colour::FromRgb(255, 255, 255));
    list->SetIconSize(16);
    suite::IconStore store;
    store.AddIcon(suite::IconOfModule(1, 1), 4999);
    items().Add(QString(12, QChar(0x2588)), 4999);
    items().Add(QString(12, QChar(0x2588)))->SetForeColor(base::Colour::FromRgb(255, 0, 0));
    items().SetIcons(&store);
    Show();
    const QImage picture = Picture();
    const auto has = [&](int row, const QColor& colour, int fromX, int toX) {
        const QRect cell = list->Tree()->visualRect(Model()->index(row, 0));
        const QPoint corner = list->Tree()->viewport()->mapTo(list, cell.topLeft());
        for (int y = corner.y(); y < corner.y() + cell.height(); ++y)
            for (int x = fromX; x < toX; ++x)
                if (picture.pixelColor(x, y).rgb() == colour.rgb())
                    return true;
        return false;
    };
    EXPECT_TRUE(has(0, Qt::white, 26, 90));
    EXPECT_TRUE(has(1, Qt::red, 26, 90));
    EXPECT_FALSE(has(1, Qt::white, 26, 90));
    EXPECT_EQ(picture.pixelColor(picture.width() - 30, picture.height() - 30), QColor(0, 0, 64));
    // The green board of the display adapter's glyph, on the first row alone.
    EXPECT_TRUE(has(0, QColor(0x2E, 0x8B, 0x45), 2, 20));
    EXPECT_FALSE(has(1, QColor(0x2E, 0x8B, 0x45), 2, 20));

    // Without the keyboard too one sees on black which row is chosen.
    list->SetBackColor(base::Colour(0));
    items().Item(2)->SetSelected(true);
    const QRect row = list->Tree()->visualRect(Model()->index(1, 0));
    const QPoint edge = list->Tree()->viewport()->mapTo(list, QPoint(0, row.center().y()));
    EXPECT_GE(suite::Contrast(Picture().pixelColor(edge), Qt::black), 3);
}

TEST_F(ListViewTest, ReadsAsATreeWithItsRows) {
    Fill(2);
    Show();
    list->SetAccessibleLabel(QStringLiteral("All Hardware"));
    QAccessibleInterface* tree = QAccessible::queryAccessibleInterface(list->Tree());
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(tree->text(QAccessible::Name), QStringLiteral("All Hardware"));
    QStringList names;
    for (int i = 0; i < tree->childCount(); ++i)
        names << tree->child(i)->text(QAccessible::Name);
    EXPECT_TRUE(names.contains(QStringLiteral("row 0001"))) << names.join(QLatin1Char(',')).toStdString();
    EXPECT_TRUE(names.contains(QStringLiteral("Manufacturer")));
}

} // namespace
