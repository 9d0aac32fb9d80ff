#include "suite/list_model.h"

namespace suite {

ListModel::ListModel(const ListItems& items, QObject* parent) : QAbstractTableModel(parent), items_(items) {}

void ListModel::Attach() {
    beginResetModel();
    attached_ = true;
    rows_ = items_.Count();
    endResetModel();
}

void ListModel::Detach() {
    if (!attached_)
        return;
    beginResetModel();
    attached_ = false;
    rows_ = 0;
    endResetModel();
}

void ListModel::RowInserted(int row) {
    beginInsertRows({}, row, row);
    ++rows_;
    endInsertRows();
}

void ListModel::RowRemoved(int row) {
    beginRemoveRows({}, row, row);
    --rows_;
    endRemoveRows();
}

void ListModel::Reordered() {
    if (rows_ != items_.Count()) {
        Attach();
        return;
    }
    Q_EMIT layoutAboutToBeChanged();
    Q_EMIT layoutChanged();
}

void ListModel::ColumnsChanged() {
    beginResetModel();
    columns_ = items_.ColumnCount();
    endResetModel();
}

const ListItem* ListModel::ItemAt(const QModelIndex& index) const {
    return index.isValid() ? items_.Item(index.row() + 1) : nullptr;
}

int ListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }
int ListModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : columns_; }

QVariant ListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    const ListItem* item = ItemAt(index);
    return item ? item->CellText(index.column()) : QVariant();
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= items_.ColumnCount())
        return {};
    // What the arrow shows to those who see it.
    if (role == Qt::AccessibleDescriptionRole && items_.Sorted() && items_.SortKey() == section)
        return items_.SortOrder() == SortOrder::Descending ? QStringLiteral("Sorted descending")
                                                           : QStringLiteral("Sorted ascending");
    if (role != Qt::DisplayRole)
        return {};
    return items_.Column(section + 1).Caption;
}

} // namespace suite
