#include "suite/tab_control.h"

#include "suite/paint_tools.h"
#include "suite/tab_strip.h"

#include <QEvent>
#include <QPainter>

namespace suite {

TabPaintManager::TabPaintManager(TabControl* owner)
    : QObject(owner), colours_(new TabColorSet(this)), font_(owner->font()) {}

void TabPaintManager::SetEnlarged(bool enlarged) {
    if (enlarged_ == enlarged)
        return;
    enlarged_ = enlarged;
    Q_EMIT MetricsChanged();
}

void TabPaintManager::SetFont(const QFont& font) {
    font_ = font;
    Q_EMIT MetricsChanged();
}

void TabPaintManager::SetItemMetrics(int width, int height) {
    itemWidth_ = std::max(0, width);
    itemHeight_ = std::max(0, height);
    Q_EMIT MetricsChanged();
}

TabItem::TabItem(TabControl* owner, int index, const QString& caption)
    : QObject(owner), owner_(*owner), caption_(caption), tag_(caption), index_(index) {}

void TabItem::SetCaption(const QString& caption) {
    if (caption_ == caption)
        return;
    caption_ = caption;
    owner_.CaptionChanged(*this);
}

bool TabItem::Selected() const { return owner_.SelectedIndex() == index_; }

void TabItem::SetSelected(bool selected) {
    if (selected)
        owner_.SetSelectedIndex(index_);
}

TabControlPage::TabControlPage(TabControl* tabs, const QString& name) : Control(tabs, name) { hide(); }

void TabControlPage::SetBackColor(base::Colour colour) {
    if (backColor_ == colour)
        return;
    backColor_ = colour;
    update();
}

void TabControlPage::paintEvent(QPaintEvent*) { QPainter(this).fillRect(rect(), ToQColor(backColor_)); }

TabControl::TabControl(QWidget* container, const QString& name)
    : Control(container, name), paintManager_(new TabPaintManager(this)), strip_(new TabStrip(*paintManager_, this)) {
    setFocusProxy(strip_);
    strip_->show();
    connect(paintManager_->ColorSet(), &TabColorSet::Changed, this, &TabControl::Refresh);
    connect(paintManager_, &TabPaintManager::MetricsChanged, this, [this] {
        strip_->Relayout();
        LayOut();
    });
    connect(strip_, &QTabBar::currentChanged, this, [this](int index) {
        ShowSelectedPage();
        Q_EMIT SelectedChanged(index);
    });
}

TabItem* TabControl::AddItem(const QString& caption, TabControlPage* page) {
    auto* item = new TabItem(this, ItemCount(), caption);
    items_.push_back(item);
    pages_.push_back(page);
    strip_->addTab(caption);
    if (page)
        page->setAccessibleName(ShownCaption(caption));
    LayOut();
    ShowSelectedPage();
    return item;
}

TabItem* TabControl::Item(int index) const {
    return index >= 0 && index < ItemCount() ? items_[size_t(index)] : nullptr;
}

TabControlPage* TabControl::Page(int index) const {
    return index >= 0 && index < ItemCount() ? pages_[size_t(index)] : nullptr;
}

int TabControl::SelectedIndex() const { return strip_->currentIndex(); }

void TabControl::SetSelectedIndex(int index) {
    if (index >= 0 && index < ItemCount())
        strip_->setCurrentIndex(index);
}

void TabControl::SetBackColor(base::Colour colour) {
    if (backColor_ == colour)
        return;
    backColor_ = colour;
    update();
}

QTabBar* TabControl::Strip() const { return strip_; }

QRect TabControl::PaneRect() const {
    return QRect(0, strip_->height(), width(), std::max(0, height() - strip_->height())).adjusted(1, 0, -1, -1);
}

void TabControl::Refresh() {
    strip_->update();
    update();
}

void TabControl::CaptionChanged(const TabItem& item) { strip_->setTabText(item.Index(), item.Caption()); }

void TabControl::ShowSelectedPage() {
    for (int index = 0; index < ItemCount(); ++index) {
        if (TabControlPage* page = Page(index))
            page->QWidget::setVisible(index == SelectedIndex());
    }
}

void TabControl::LayOut() {
    strip_->setGeometry(0, 0, width(), strip_->sizeHint().height());
    for (TabControlPage* page : pages_) {
        if (page)
            page->setGeometry(PaneRect());
    }
}

void TabControl::paintEvent(QPaintEvent*) {
    const TabColorSet& colours = *paintManager_->ColorSet();
    QPainter painter(this);
    painter.fillRect(rect(), ToQColor(backColor_));
    const QRect pane(0, strip_->height(), width(), height() - strip_->height());
    painter.fillRect(pane, ToQColor(colours.PaneFace));
    const QColor frame = ToQColor(colours.FrameBorder);
    painter.fillRect(QRect(pane.left(), pane.top(), 1, pane.height()), frame);
    painter.fillRect(QRect(pane.right(), pane.top(), 1, pane.height()), frame);
    painter.fillRect(QRect(pane.left(), pane.bottom(), pane.width(), 1), frame);
}

void TabControl::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    LayOut();
}

void TabControl::changeEvent(QEvent* event) {
    Control::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        paintManager_->SetFont(font());
}

} // namespace suite
