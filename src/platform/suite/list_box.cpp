#include "suite/list_box.h"

#include <QListView>
#include <QStringListModel>

namespace suite {

ListBox::ListBox(QWidget* container, const QString& name)
    : HostedControl(container, name), shown_(new QStringListModel(this)) {
    auto* view = new QListView(this);
    view->setFrameShape(QFrame::NoFrame);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setUniformItemSizes(true);
    view->setModel(shown_);
    Host(view);
}

void ListBox::showEvent(QShowEvent* event) {
    HostedControl::showEvent(event);
    shown_->setStringList(texts_);
}

} // namespace suite
