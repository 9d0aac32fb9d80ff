// A plain list of texts, such as the keywords that a scan skips. Usually hidden; what it shows are the texts that it
// had when it was last shown.
#pragma once

#include "suite/hosted_control.h"

class QStringListModel;

namespace suite {

class ListBox : public HostedControl {
    Q_OBJECT
    Q_PROPERTY(int ListCount READ ListCount)

  public:
    ListBox(QWidget* container, const QString& name);

    // Appends the text as it stands.
    void AddItem(const QString& text) { texts_.append(text); }
    void Clear() { texts_.clear(); }
    int ListCount() const { return int(texts_.size()); }
    // Counted from 0; empty where there is none.
    QString List(int index) const { return texts_.value(index); }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    QStringListModel* shown_;
    QStringList texts_;
};

} // namespace suite
