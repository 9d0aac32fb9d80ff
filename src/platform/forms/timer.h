// A timer of a form. Its tick never runs nested in itself, also when the handler stops and starts the timer and then
// yields; the next tick comes after the handler has ended.
#pragma once

#include "forms/component.h"

#include <QTimer>

namespace forms {

class Timer : public Component {
    Q_OBJECT
    Q_PROPERTY(int Interval READ Interval WRITE SetInterval)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(QString Tag READ Tag WRITE SetTag)

  public:
    Timer(Form* form, const QString& name, int intervalMilliseconds, bool enabled);
    // A timer inside a control: owned by `owner`, on no form's list.
    Timer(QObject* owner, const QString& name, int intervalMilliseconds);

    int Interval() const { return timer_.interval(); }
    void SetInterval(int milliseconds);
    bool Enabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    QString Tag() const { return tag_; }
    void SetTag(const QString& tag) { tag_ = tag; }

  Q_SIGNALS:
    void Tick();

  private:
    void Elapsed();

    QTimer timer_;
    QString tag_;
    bool enabled_ = false;
    bool inTick_ = false;
};

} // namespace forms
