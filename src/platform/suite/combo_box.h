// A drop-down list of texts; the chosen one is its Text. Click is raised when the user chooses an entry, the same one
// included, and when the program changes ListIndex.
#pragma once

#include "suite/hosted_control.h"

class QComboBox;

namespace suite {

class ComboBox : public HostedControl {
    Q_OBJECT
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    Q_PROPERTY(int ListIndex READ ListIndex WRITE SetListIndex)
    Q_PROPERTY(int ListCount READ ListCount)

  public:
    ComboBox(QWidget* container, const QString& name);

    void AddItem(const QString& text);
    // Removes all entries and with them the choice; raises nothing.
    void Clear();
    int ListCount() const;
    // Counted from 0; empty where there is none.
    QString List(int index) const;

    // The chosen entry's text; empty without a choice.
    QString Text() const;
    // Chooses the first entry with exactly this text without raising Click; a text that is not there clears the choice.
    void SetText(const QString& text);
    // The chosen entry, or -1.
    int ListIndex() const;
    void SetListIndex(int index);

    QComboBox* Box() const { return box_; }

  protected:
    void ApplyColours() override;
    QString ShownText() const override;
    int TextRoom() const override;

  private:
    QComboBox* box_;
};

} // namespace suite
