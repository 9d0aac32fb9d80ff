#include "suite/list_items.h"

#include "suite/icon_store.h"

#include <algorithm>

namespace suite {

namespace {

// A list is made for people to read; more sub-items than this are a mistake of the caller.
constexpr int mostSubItems = 255;

// Taking apart 10,000 rows at once would hold up the window for a dozen milliseconds.
constexpr size_t removedWithEach = 2;

// Folded text compares as people sort: "É" stands beside "e", not behind "z".
QString Folded(const QString& text) {
    const bool plain = std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
    return plain ? text.toCaseFolded() : text.normalized(QString::NormalizationForm_KD).toCaseFolded();
}

} // namespace

void ListItem::SetText(const QString& text) {
    if (text_ == text)
        return;
    text_ = text;
    owner_.NoteChange(*this);
}

std::optional<QString> ListItem::SubItems(int index) const {
    if (index < 1)
        return std::nullopt;
    if (size_t(index) <= subItems_.size())
        return subItems_[size_t(index) - 1];
    if (index < owner_.ColumnCount())
        return QString();
    return std::nullopt;
}

bool ListItem::SetSubItems(int index, const QString& text) {
    // A list without columns takes any sub-item, so that rows can be made before their columns.
    const int last = owner_.ColumnCount() > 0 ? owner_.ColumnCount() - 1 : mostSubItems;
    if (index < 1 || index > last)
        return false;
    if (size_t(index) > subItems_.size())
        subItems_.resize(size_t(std::max(index, owner_.ColumnCount() - 1)));
    QString& place = subItems_[size_t(index) - 1];
    if (place == text)
        return true;
    place = text;
    owner_.NoteChange(*this);
    return true;
}

QString ListItem::CellText(int column) const {
    if (column == 0)
        return text_;
    return SubItems(column).value_or(QString());
}

std::optional<base::Colour> ListItem::CellForeColor(int column) const {
    for (const auto& [cell, colour] : colours_) {
        if (cell == column)
            return colour;
    }
    return std::nullopt;
}

void ListItem::SetCellForeColor(int column, base::Colour colour) {
    const auto found = std::find_if(colours_.begin(), colours_.end(), [&](const auto& c) { return c.first == column; });
    if (found == colours_.end())
        colours_.emplace_back(column, colour);
    else
        found->second = colour;
    owner_.NoteChange(*this);
}

bool ListItem::Selected() const { return owner_.selected_ == this; }

void ListItem::SetSelected(bool selected) {
    if (selected)
        owner_.SetSelectedItem(this);
    else if (Selected())
        owner_.SetSelectedItem(nullptr);
}

void ListItem::EnsureVisible() {
    if (owner_.observer_)
        owner_.observer_->EnsureVisible(*this);
}

int ListItem::Index() const {
    owner_.NumberRows();
    return index_;
}

ListItems::ListItems() = default;
ListItems::~ListItems() = default;

ListItem* ListItems::Add(const QString& text, qint32 icon) { return AddWithKey(QString(), text, icon); }

ListItem* ListItems::AddWithKey(const QString& key, const QString& text, qint32 icon) {
    if (!key.isEmpty() && keys_.contains(key))
        return nullptr;
    std::unique_ptr<ListItem> made(new ListItem(*this));
    ListItem* item = made.get();
    item->text_ = text;
    item->key_ = key;
    item->icon_ = icon;
    if (!key.isEmpty())
        keys_.insert(key, item);
    removed_.resize(removed_.size() - std::min(removed_.size(), removedWithEach));
    const size_t place = sorted_ ? SortedPlace(*item) : items_.size();
    item->index_ = int(place) + 1;
    if (place != items_.size())
        numbered_ = false;
    items_.insert(items_.begin() + std::ptrdiff_t(place), std::move(made));
    if (observer_)
        observer_->RowInserted(int(place));
    return item;
}

bool ListItems::Remove(int index) {
    if (index < 1 || index > Count())
        return false;
    const auto place = items_.begin() + (index - 1);
    // Kept until the observer knows, so that nothing it still holds dangles.
    const std::unique_ptr<ListItem> removed = std::move(*place);
    if (!removed->key_.isEmpty())
        keys_.remove(removed->key_);
    items_.erase(place);
    numbered_ = false;
    const bool wasSelected = selected_ == removed.get();
    if (wasSelected)
        selected_ = Item(std::min(index, Count()));
    if (observer_) {
        observer_->RowRemoved(index - 1);
        if (wasSelected)
            observer_->SelectionChanged();
    }
    return true;
}

void ListItems::Clear() {
    if (items_.empty())
        return;
    removed_ = std::move(items_);
    items_.clear();
    keys_.clear();
    selected_ = nullptr;
    numbered_ = true;
    if (observer_) {
        observer_->RowsReset();
        observer_->SelectionChanged();
    }
}

ListItem* ListItems::Item(int index) const {
    return index >= 1 && index <= Count() ? items_[size_t(index) - 1].get() : nullptr;
}

ListItem* ListItems::ItemByKey(const QString& key) const { return keys_.value(key, nullptr); }

bool ListItems::AddColumn(const QString& key, const QString& caption, double width) {
    const bool taken = std::any_of(columns_.begin(), columns_.end(), [&](const ListColumn& c) { return c.Key == key; });
    if (taken && !key.isEmpty())
        return false;
    columns_.push_back({key, caption, std::max(0.0, width)});
    if (observer_)
        observer_->ColumnsChanged();
    return true;
}

void ListItems::SetColumnWidth(int index, double twips) {
    if (index < 1 || index > ColumnCount())
        return;
    double& width = columns_[size_t(index) - 1].Width;
    const double wanted = std::max(0.0, twips);
    if (qFuzzyCompare(width + 1, wanted + 1))
        return;
    width = wanted;
    if (observer_)
        observer_->ColumnWidthChanged(index - 1);
}

void ListItems::SetSorted(bool sorted) {
    sorted_ = sorted;
    if (sorted_)
        Sort();
}

void ListItems::SetSortKey(int key) {
    sortKey_ = std::max(0, key);
    if (sorted_)
        Sort();
}

void ListItems::SetSortOrder(suite::SortOrder order) {
    sortOrder_ = order;
    if (sorted_)
        Sort();
}

void ListItems::SetSelectedItem(ListItem* item) {
    if (item == selected_ || (item && &item->owner_ != this))
        return;
    selected_ = item;
    if (observer_)
        observer_->SelectionChanged();
}

void ListItems::SetIcons(const IconStore* store) {
    const quint64 revision = store ? store->Revision() : 0;
    if (store == icons_ && revision == iconsRevision_)
        return;
    icons_ = store;
    iconsRevision_ = revision;
    if (observer_)
        observer_->IconsChanged();
}

QString ListItems::SortText(const ListItem& item) const { return Folded(item.CellText(sortKey_)); }

// Behind all rows that are not greater: equal texts stay in the order in which they came.
size_t ListItems::SortedPlace(const ListItem& item) const {
    const QString text = SortText(item);
    const auto place = std::upper_bound(items_.begin(), items_.end(), text, [this](const QString& a, const auto& b) {
        const QString other = SortText(*b);
        return sortOrder_ == suite::SortOrder::Ascending ? a < other : other < a;
    });
    return size_t(place - items_.begin());
}

void ListItems::Sort() {
    // Each text is folded once, not once for each comparison.
    std::vector<std::pair<QString, std::unique_ptr<ListItem>>> rows;
    rows.reserve(items_.size());
    for (auto& item : items_) {
        QString text = SortText(*item);
        rows.emplace_back(std::move(text), std::move(item));
    }
    const bool ascending = sortOrder_ == suite::SortOrder::Ascending;
    std::stable_sort(rows.begin(), rows.end(), [ascending](const auto& a, const auto& b) {
        return ascending ? a.first < b.first : b.first < a.first;
    });
    for (size_t i = 0; i < rows.size(); ++i)
        items_[i] = std::move(rows[i].second);
    numbered_ = false;
    if (observer_)
        observer_->RowsReset();
}

void ListItems::NumberRows() const {
    if (numbered_)
        return;
    for (size_t i = 0; i < items_.size(); ++i)
        items_[i]->index_ = int(i) + 1;
    numbered_ = true;
}

// A changed text does not move its row: a list sorts when rows are added and when sorting is switched on.
void ListItems::NoteChange(const ListItem& item) {
    if (observer_)
        observer_->RowChanged(item);
}

} // namespace suite
