// A text box of one or many lines. What the program puts in is given back unchanged, line ends included, until the user
// edits it; an edited text has CR LF between its lines.
#pragma once

#include "base/colour.h"
#include "forms/control.h"

class QPlainTextEdit;

namespace forms {

class TextBox : public Control {
    Q_OBJECT
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)

  public:
    TextBox(QWidget* container, const QString& name);

    QString Text() const { return text_; }
    void SetText(const QString& text);
    // A locked box can be read, selected and copied, and not edited.
    bool Locked() const;
    void SetLocked(bool locked);
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour);
    // What screen readers call the box.
    void SetAccessibleLabel(const QString& label);
    QPlainTextEdit* Editor() const { return editor_; }

  Q_SIGNALS:
    void Change();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ApplyColours();

    QPlainTextEdit* editor_;
    QString text_;
    base::Colour backColor_{0x80000005U};
    base::Colour foreColor_{0x80000008U};
    bool setting_ = false;
};

} // namespace forms
