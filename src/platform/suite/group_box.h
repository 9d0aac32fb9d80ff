// A captioned frame around other controls. Appearance 2 is the flat look and the only one drawn; other values are kept
// and look the same. Screen readers meet it as a group named by its caption.
#pragma once

#include "base/colour.h"
#include "forms/control.h"

namespace suite {

class GroupBox : public forms::Control {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(int Appearance READ Appearance WRITE SetAppearance)

  public:
    GroupBox(QWidget* container, const QString& name, const QString& caption = QString());

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour);
    int Appearance() const { return appearance_; }
    void SetAppearance(int appearance) { appearance_ = appearance; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    QString caption_;
    base::Colour backColor_{0x8000000FU};
    base::Colour foreColor_{0x80000012U};
    int appearance_ = 0;
};

} // namespace suite
