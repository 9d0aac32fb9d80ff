// A plain label: one text on one colour. "&&" shows as one ampersand, and a single one is dropped. Setting the text
// costs a mark only, however often it is done between two paints. A text that does not fit is elided and shown whole as
// a tool tip.
#pragma once

#include "base/colour.h"
#include "forms/control.h"

namespace forms {

class Label : public Control {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)

  public:
    enum Alignment { AlignLeft, AlignRight, AlignCentre };

    Label(QWidget* container, const QString& name, const QString& caption = QString());

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);
    // The same of two parts, which are joined only if they make another caption.
    void SetCaption(const QString& prefix, const QString& rest);
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour);
    void SetAlignment(Alignment alignment);
    // Breaks the text at blanks instead of eliding it.
    void SetWordWrap(bool wrap);
    // The caption as it is read: single ampersands are marks and go.
    QString ShownText() const;
    // Shows the grip mark of a window's corner instead of the caption.
    bool Grip() const { return grip_; }
    void SetGrip(bool grip);

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void TellName();

    QString caption_;
    base::Colour backColor_{0x8000000FU};
    base::Colour foreColor_{0x80000012U};
    Alignment alignment_ = AlignLeft;
    bool wrap_ = false;
    bool grip_ = false;
};

} // namespace forms
