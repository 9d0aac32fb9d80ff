// A list with columns: shows a ListItems in a tree widget. The rows, their order and their selection live in the items
// (ListItems()); the view follows them, at once while it can be seen and not at all while it cannot, so a hidden list
// is filled at the cost of the items alone.
#pragma once

#include "suite/hosted_control.h"
#include "suite/list_items.h"

#include <vector>

namespace suite {

class ListHeader;
class ListModel;
class ListTree;

// Widths for ListView::SetColumnWidthPixels that size a column by what it shows (LVM_SETCOLUMNWIDTH).
constexpr int autoSize = -1;
constexpr int autoSizeUseHeader = -2;

class ListView : public HostedControl, private ListObserver {
    Q_OBJECT
    Q_PROPERTY(int IconSize READ IconSize WRITE SetIconSize)
    Q_PROPERTY(bool Sorted READ Sorted WRITE SetSorted)
    Q_PROPERTY(int SortKey READ SortKey WRITE SetSortKey)
    Q_PROPERTY(int SortOrder READ SortOrder WRITE SetSortOrder)

  public:
    ListView(QWidget* container, const QString& name);
    ~ListView() override;

    suite::ListItems& ListItems() { return items_; }
    const suite::ListItems& ListItems() const { return items_; }

    // Width and height of the rows' icons in pixels; 0 shows none.
    int IconSize() const { return iconSize_; }
    void SetIconSize(int pixels);

    // As in ListItems; the order is 0 for ascending and 1 for descending.
    bool Sorted() const { return items_.Sorted(); }
    void SetSorted(bool sorted);
    int SortKey() const { return items_.SortKey(); }
    void SetSortKey(int key) { items_.SetSortKey(key); }
    int SortOrder() const { return int(items_.SortOrder()); }
    void SetSortOrder(int order);
    ListItem* SelectedItem() const { return items_.SelectedItem(); }

    // Column `column`, counted from 0, gets a width in pixels, or one of the two automatic widths. Those leave out the
    // icon; autoSizeUseHeader also fits the caption and lets the last column fill what is left of the view.
    void SetColumnWidthPixels(int column, int width);

    void Refresh() override;
    ListTree* Tree() const { return tree_; }
    ListHeader* Header() const { return header_; }

  Q_SIGNALS:
    // The column is counted from 1.
    void ColumnClick(int column);

  protected:
    void ApplyColours() override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void RowInserted(int row) override;
    void RowRemoved(int row) override;
    void RowChanged(const ListItem& item) override;
    void RowsReset() override;
    void ColumnsChanged() override;
    void ColumnWidthChanged(int column) override;
    void SelectionChanged() override;
    void IconsChanged() override;
    void EnsureVisible(const ListItem& item) override;

    void ConnectTree();
    void TellRelease(Qt::MouseButton button, Qt::KeyboardModifiers keys, QPoint place);
    // Whether a change has to be shown now. Where nobody looks the tree lets go of the rows until it is shown again.
    bool Live();
    void CatchUp();
    void ShowSelection();
    void TakeSelection();
    void ShowSortMark();
    void ShowColumnWidth(int column);
    int ContentWidth(int column) const;
    int RoomForLastColumn() const;
    QPoint ToControl(const QPoint& place) const;

    suite::ListItems items_;
    ListModel* model_;
    ListTree* tree_;
    ListHeader* header_;
    int iconSize_ = 0;
    bool following_ = false; // the tree is being brought in line: what it reports is no choice of the user
};

} // namespace suite
