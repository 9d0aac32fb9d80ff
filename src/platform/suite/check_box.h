// A check box with a caption. Its value is 0 or 1. A change by the user, with mouse or keyboard, is reported by Click
// and then by MouseUp, both after the value has changed; a change by the program is not reported.
#pragma once

#include "suite/hosted_control.h"

class QCheckBox;

namespace suite {

class CheckBox : public HostedControl {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(int Value READ Value WRITE SetValue)

  public:
    CheckBox(QWidget* container, const QString& name, const QString& caption = QString());

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);
    int Value() const;
    void SetValue(int value);

  protected:
    QString ShownText() const override;
    int TextRoom() const override;

  private:
    void TellChange();

    QCheckBox* box_;
    QString caption_;
};

} // namespace suite
