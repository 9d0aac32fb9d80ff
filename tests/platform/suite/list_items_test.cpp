#include "suite/icon_store.h"
#include "suite/list_items.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

using suite::ListItem;
using suite::ListItems;

QStringList Texts(const ListItems& list, int column = 0) {
    QStringList texts;
    for (int i = 1; i <= list.Count(); ++i)
        texts << list.Item(i)->CellText(column);
    return texts;
}

class Watcher : public suite::ListObserver {
  public:
    void RowInserted(int row) override { log << QStringLiteral("insert %1").arg(row); }
    void RowRemoved(int row) override { log << QStringLiteral("remove %1").arg(row); }
    void RowChanged(const ListItem&) override { log << QStringLiteral("row"); }
    void RowsReset() override { log << QStringLiteral("reset"); }
    void ColumnsChanged() override { log << QStringLiteral("columns"); }
    void ColumnWidthChanged(int column) override { log << QStringLiteral("width %1").arg(column); }
    void SelectionChanged() override { log << QStringLiteral("selection"); }
    void IconsChanged() override { log << QStringLiteral("icons"); }
    void EnsureVisible(const ListItem& item) override { log << QStringLiteral("show %1").arg(item.Index()); }
    QStringList Taken() { return std::exchange(log, {}); }
    QStringList log;
};

TEST(ListItems, SubItemsEndOneBeforeTheColumns) {
    ListItems list;
    for (const char* key : {"Name", "Manufacturer", "HardwareIDs"})
        list.AddColumn(QString::fromLatin1(key), QString::fromLatin1(key), 1500);
    EXPECT_FALSE(list.AddColumn(QStringLiteral("Name"), QStringLiteral("Again"), 1));
    ListItem* row = list.Add(QStringLiteral("disk"), 4995);
    EXPECT_EQ(row->SubItems(2), QString());
    EXPECT_FALSE(row->SubItems(3).has_value());
    EXPECT_FALSE(row->SubItems(0).has_value());
    EXPECT_TRUE(row->SetSubItems(2, QStringLiteral("A|B|")));
    EXPECT_FALSE(row->SetSubItems(3, QStringLiteral("x")));
    EXPECT_EQ(row->SubItems(2), QStringLiteral("A|B|"));
    EXPECT_EQ(row->SubItems(1), QString());
    EXPECT_EQ(row->Icon(), 4995);
}

TEST(ListItems, KeysAreTakenOnceAndFreedByRemoval) {
    ListItems list;
    ASSERT_NE(list.AddWithKey(QStringLiteral("a|b|c"), QStringLiteral("a")), nullptr);
    EXPECT_EQ(list.AddWithKey(QStringLiteral("a|b|c"), QStringLiteral("other")), nullptr);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.ItemByKey(QStringLiteral("a|b|c"))->Text(), QStringLiteral("a"));
    EXPECT_TRUE(list.Remove(1));
    EXPECT_NE(list.AddWithKey(QStringLiteral("a|b|c"), QStringLiteral("again")), nullptr);
    list.Clear();
    EXPECT_NE(list.AddWithKey(QStringLiteral("a|b|c"), QStringLiteral("once more")), nullptr);
    // Rows without a key never clash.
    list.Add(QStringLiteral("x"));
    EXPECT_NE(list.Add(QStringLiteral("x")), nullptr);
}

TEST(ListItems, SortsWithoutCaseAndKeepsEqualTextsInOrder) {
    ListItems list;
    list.AddColumn(QStringLiteral("Name"), QStringLiteral("Name"), 1500);
    list.AddColumn(QStringLiteral("Version"), QStringLiteral("Version"), 1500);
    const QStringList names{QStringLiteral("zeta"),  QStringLiteral("Éclair"), QStringLiteral("alpha"),
                            QStringLiteral("Alpha"), QStringLiteral("ALPHA"),  QStringLiteral("Fax")};
    const QStringList versions{QStringLiteral("9.0"), QStringLiteral("10.0"), QStringLiteral("2"),
                               QStringLiteral("1"),   QStringLiteral("3"),    QStringLiteral("10.0")};
    for (int i = 0; i < names.size(); ++i)
        list.Add(names[i])->SetSubItems(1, versions[i]);
    list.SetSorted(true);
    EXPECT_EQ(Texts(list), QStringList({QStringLiteral("alpha"), QStringLiteral("Alpha"), QStringLiteral("ALPHA"),
                                        QStringLiteral("Éclair"), QStringLiteral("Fax"), QStringLiteral("zeta")}));
    list.SetSortOrder(suite::SortOrder::Descending);
    EXPECT_EQ(Texts(list), QStringList({QStringLiteral("zeta"), QStringLiteral("Fax"), QStringLiteral("Éclair"),
                                        QStringLiteral("alpha"), QStringLiteral("Alpha"), QStringLiteral("ALPHA")}));
    // A text sort: 10.0 stands before 9.0.
    list.SetSortOrder(suite::SortOrder::Ascending);
    list.SetSortKey(1);
    EXPECT_EQ(Texts(list, 1).first(), QStringLiteral("1"));
    EXPECT_EQ(Texts(list, 1).last(), QStringLiteral("9.0"));
}

TEST(ListItems, AddsInPlaceWhileSortedAndAtTheEndOtherwise) {
    ListItems list;
    Watcher watcher;
    list.SetSorted(true);
    list.SetObserver(&watcher);
    for (const char* text : {"m", "b", "z", "B"})
        list.Add(QString::fromLatin1(text));
    EXPECT_EQ(Texts(list).join(QLatin1Char(',')), QStringLiteral("b,B,m,z"));
    EXPECT_EQ(watcher.Taken(), QStringList({QStringLiteral("insert 0"), QStringLiteral("insert 0"),
                                            QStringLiteral("insert 2"), QStringLiteral("insert 1")}));
    EXPECT_EQ(list.Item(3)->Index(), 3);
    list.SetSorted(false);
    list.Add(QStringLiteral("a"));
    EXPECT_EQ(list.Item(5)->Text(), QStringLiteral("a"));
}

TEST(ListItems, RemovalMovesTheSelectionToTheNextRow) {
    ListItems list;
    for (const char* text : {"a", "b", "c", "d"})
        list.Add(QString::fromLatin1(text));
    EXPECT_EQ(list.SelectedItem(), nullptr);
    list.Item(2)->SetSelected(true);
    Watcher watcher;
    list.SetObserver(&watcher);
    list.Remove(list.SelectedItem()->Index());
    EXPECT_EQ(list.SelectedItem()->Text(), QStringLiteral("c"));
    EXPECT_EQ(watcher.Taken(), QStringList({QStringLiteral("remove 1"), QStringLiteral("selection")}));
    // Another row than the selected one: the selection stays.
    list.Remove(1);
    EXPECT_EQ(list.SelectedItem()->Text(), QStringLiteral("c"));
    EXPECT_EQ(watcher.Taken(), QStringList(QStringLiteral("remove 0")));
    list.Item(2)->SetSelected(true);
    list.Remove(2);
    EXPECT_EQ(list.SelectedItem()->Text(), QStringLiteral("c"));
    list.Remove(1);
    EXPECT_EQ(list.SelectedItem(), nullptr);
    EXPECT_FALSE(list.Remove(1));
    EXPECT_FALSE(list.Remove(0));
}

TEST(ListItems, SelectionFollowsItsRowThroughSortingAndEndsWithClear) {
    ListItems list;
    for (const char* text : {"c", "a", "b"})
        list.Add(QString::fromLatin1(text));
    list.Item(1)->SetSelected(true);
    list.SetSorted(true);
    EXPECT_EQ(list.SelectedItem()->Index(), 3);
    ListItems other;
    other.SetSelectedItem(list.Item(1));
    EXPECT_EQ(other.SelectedItem(), nullptr);
    list.Clear();
    EXPECT_EQ(list.SelectedItem(), nullptr);
    EXPECT_EQ(list.Count(), 0);
    // What the user chose outlives the rows.
    EXPECT_TRUE(list.Sorted());
}

TEST(ListItems, CellColoursBelongToOneCell) {
    ListItems list;
    ListItem* row = list.Add(QStringLiteral("a"));
    row->SetForeColor(base::Colour(0x00C8FD));
    row->SetSubItemForeColor(2, base::Colour(0x123456));
    row->SetSubItemForeColor(2, base::Colour(0x654321));
    EXPECT_EQ(row->CellForeColor(0), base::Colour(0x00C8FD));
    EXPECT_FALSE(row->CellForeColor(1).has_value());
    EXPECT_EQ(row->CellForeColor(2), base::Colour(0x654321));
}

TEST(ListItems, TellsOfIconsOnlyWhenTheStoreChanged) {
    ListItems list;
    Watcher watcher;
    list.SetObserver(&watcher);
    suite::IconStore store;
    list.SetIcons(&store);
    list.SetIcons(&store);
    EXPECT_EQ(watcher.Taken(), QStringList(QStringLiteral("icons")));
    store.AddIcon(suite::IconHandle{1, 1}, 4999);
    list.SetIcons(&store);
    EXPECT_EQ(watcher.Taken(), QStringList(QStringLiteral("icons")));
}

} // namespace
