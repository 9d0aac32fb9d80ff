#include "forms/timer.h"

#include "forms/form.h"

#include <QPointer>

namespace forms {

Timer::Timer(Form* form, const QString& name, int intervalMilliseconds, bool enabled) : Component(form, name) {
    connect(&timer_, &QTimer::timeout, this, &Timer::Elapsed);
    if (form != nullptr)
        connect(form, &Form::Unloaded, this, [this] { SetEnabled(false); });
    SetInterval(intervalMilliseconds);
    SetEnabled(enabled);
}

Timer::Timer(QObject* owner, const QString& name, int intervalMilliseconds) : Component(nullptr, name) {
    setParent(owner);
    connect(&timer_, &QTimer::timeout, this, &Timer::Elapsed);
    SetInterval(intervalMilliseconds);
}

void Timer::SetInterval(int milliseconds) { timer_.setInterval(qMax(1, milliseconds)); }

void Timer::SetEnabled(bool enabled) {
    if (enabled_ == enabled)
        return;
    enabled_ = enabled;
    if (!enabled)
        timer_.stop();
    else if (!inTick_)
        timer_.start();
}

void Timer::Elapsed() {
    if (inTick_)
        return;
    const QPointer<Timer> alive(this);
    inTick_ = true;
    timer_.stop();
    Q_EMIT Tick();
    if (!alive)
        return;
    inTick_ = false;
    if (enabled_)
        timer_.start();
}

} // namespace forms
