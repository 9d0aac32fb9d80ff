// What the list view's tree asks about rows: a thin cover over ListItems. It counts its rows itself, because the items
// change before the tree hears of it; while nobody looks it is detached and holds no rows at all, so filling costs
// nothing.
#pragma once

#include "suite/list_items.h"

#include <QAbstractTableModel>

namespace suite {

class ListModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    ListModel(const ListItems& items, QObject* parent);

    bool Attached() const { return attached_; }
    // Takes all rows as they are at present, attached already or not.
    void Attach();
    void Detach();
    // Follow a change of the items, rows counted from 0; only while attached.
    void RowInserted(int row);
    void RowRemoved(int row);
    void Reordered();
    // Columns follow whether attached or not.
    void ColumnsChanged();

    // The row's item, null where the row is gone.
    const ListItem* ItemAt(const QModelIndex& index) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    const ListItems& items_;
    int rows_ = 0;
    int columns_ = 0;
    bool attached_ = false;
};

} // namespace suite
