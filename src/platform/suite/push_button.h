// A plain push button in two colours.
#pragma once

#include "suite/hosted_control.h"

class QPushButton;

namespace suite {

class PushButton : public HostedControl {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)

  public:
    PushButton(QWidget* container, const QString& name, const QString& caption = QString());

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);

  protected:
    QString ShownText() const override;
    int TextRoom() const override;

  private:
    QPushButton* button_;
    QString caption_;
};

} // namespace suite
