#include "forms/component.h"

#include "forms/form.h"

namespace forms {

Component::Component(Form* form, const QString& name) : QObject(form), form_(form) {
    setObjectName(name);
    if (form_ != nullptr)
        form_->AddControl(this);
}

Component::~Component() {
    if (form_ != nullptr)
        form_->RemoveControl(this);
}

} // namespace forms
