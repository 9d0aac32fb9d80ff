// The rows, columns, order and selection of one list, without any widget: a scan can fill it and a copy routine can
// read it where no display is. The list owns its items; a pointer to one stays good until that item is removed. A view
// may watch it through ListObserver; without one, changes cost nothing beyond themselves.
#pragma once

#include "base/colour.h"

#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace suite {

class IconStore;
class ListItems;

// One column. Width in twips; a column of width 0 holds texts that are never shown, to sort by.
struct ListColumn {
    QString Key;
    QString Caption;
    double Width = 0;
};

enum class SortOrder { Ascending = 0, Descending = 1 };

// One row: a text, an icon id and sub-items, counted from 1. Made by ListItems alone.
class ListItem {
  public:
    ListItem(const ListItem&) = delete;
    ListItem& operator=(const ListItem&) = delete;

    const QString& Text() const { return text_; }
    void SetText(const QString& text);

    // The id under which the icon store holds the row's icon; 0 for none.
    qint32 Icon() const { return icon_; }

    // The text of sub-item `index`. An item has one sub-item fewer than the list has columns: beyond them, nothing.
    std::optional<QString> SubItems(int index) const;
    // False where the list has no such sub-item; the row is then as it was.
    bool SetSubItems(int index, const QString& text);
    // The text of cell `column`, counted from 0 (0 is the item's text); empty where there is none.
    QString CellText(int column) const;

    const QString& Key() const { return key_; }
    const QVariant& Tag() const { return tag_; }
    void SetTag(const QVariant& tag) { tag_ = tag; }

    // The text colour of one cell (0 the item's text, n sub-item n); nothing where the list's own colour holds.
    std::optional<base::Colour> CellForeColor(int column) const;
    void SetForeColor(base::Colour colour) { SetCellForeColor(0, colour); }
    void SetSubItemForeColor(int index, base::Colour colour) { SetCellForeColor(index, colour); }

    bool Selected() const;
    void SetSelected(bool selected);
    // Asks the view, if there is one, to scroll this row into sight.
    void EnsureVisible();
    // The row's present place, counted from 1.
    int Index() const;

  private:
    friend class ListItems;
    explicit ListItem(ListItems& owner) : owner_(owner) {}
    void SetCellForeColor(int column, base::Colour colour);

    ListItems& owner_;
    QString text_;
    QString key_;
    std::vector<QString> subItems_;
    std::vector<std::pair<int, base::Colour>> colours_;
    QVariant tag_;
    qint32 icon_ = 0;
    mutable int index_ = 0;
};

// What a view is told. Rows are counted from 0. Every call comes after the change.
class ListObserver {
  public:
    virtual ~ListObserver() = default;
    virtual void RowInserted(int row) = 0;
    virtual void RowRemoved(int row) = 0;
    virtual void RowChanged(const ListItem& item) = 0;
    // Cleared or in a new order.
    virtual void RowsReset() = 0;
    virtual void ColumnsChanged() = 0;
    virtual void ColumnWidthChanged(int column) = 0;
    virtual void SelectionChanged() = 0;
    virtual void IconsChanged() = 0;
    virtual void EnsureVisible(const ListItem& item) = 0;
};

class ListItems {
  public:
    ListItems();
    ~ListItems();
    ListItems(const ListItems&) = delete;
    ListItems& operator=(const ListItems&) = delete;

    // Appends a row, or puts it in its place while Sorted. Never null.
    ListItem* Add(const QString& text, qint32 icon = 0);
    // The same under a key of its own. Null where the key is taken: the list is then as it was.
    ListItem* AddWithKey(const QString& key, const QString& text, qint32 icon = 0);

    // Removes row `index`, counted from 1; false where there is none. If it was the selected one, the selection moves
    // to the row that takes its place, or to the new last row.
    bool Remove(int index);
    void Clear();
    int Count() const { return int(items_.size()); }
    // Row `index`, counted from 1; null where there is none.
    ListItem* Item(int index) const;
    ListItem* ItemByKey(const QString& key) const;

    // False where the key is taken. Width in twips.
    bool AddColumn(const QString& key, const QString& caption, double width);
    int ColumnCount() const { return int(columns_.size()); }
    // Column `index`, counted from 1, which must be there.
    const ListColumn& Column(int index) const { return columns_[size_t(index) - 1]; }
    // Negative widths count as 0; a column that is not there is passed over.
    void SetColumnWidth(int index, double twips);

    // A text sort: without regard to case, accented letters beside their base letters, equal texts in their former
    // order. While Sorted, rows keep their place by it when they are added and when key or order changes.
    bool Sorted() const { return sorted_; }
    void SetSorted(bool sorted);
    // 0 sorts by the item's text, n by sub-item n.
    int SortKey() const { return sortKey_; }
    void SetSortKey(int key);
    suite::SortOrder SortOrder() const { return sortOrder_; }
    void SetSortOrder(suite::SortOrder order);

    ListItem* SelectedItem() const { return selected_; }
    // Null clears the selection; an item of another list is passed over.
    void SetSelectedItem(ListItem* item);

    // The store that the rows' icon ids belong to; not owned.
    const IconStore* Icons() const { return icons_; }
    void SetIcons(const IconStore* store);

    // One observer, or null.
    void SetObserver(ListObserver* observer) { observer_ = observer; }

  private:
    friend class ListItem;
    QString SortText(const ListItem& item) const;
    size_t SortedPlace(const ListItem& item) const;
    void Sort();
    void NumberRows() const;
    void NoteChange(const ListItem& item);

    std::vector<std::unique_ptr<ListItem>> items_;
    std::vector<std::unique_ptr<ListItem>> removed_; // by Clear; destroyed while new rows are added, or by the next one
    std::vector<ListColumn> columns_;
    QHash<QString, ListItem*> keys_;
    ListItem* selected_ = nullptr;
    ListObserver* observer_ = nullptr;
    const IconStore* icons_ = nullptr;
    quint64 iconsRevision_ = 0;
    int sortKey_ = 0;
    suite::SortOrder sortOrder_ = suite::SortOrder::Ascending;
    bool sorted_ = false;
    mutable bool numbered_ = true;
};

} // namespace suite
