// The base of what stands on a form without being seen: timers, transfer controls, layout anchors. It registers itself
// with the form that owns it, in order of creation.
#pragma once

#include <QObject>

namespace forms {

class Form;

class Component : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name)

  public:
    // `form` owns the component; null makes one that stands alone.
    Component(Form* form, const QString& name);
    ~Component() override;

    QString Name() const { return objectName(); }
    Form* ParentForm() const { return form_; }

  private:
    Form* form_ = nullptr;
};

} // namespace forms
