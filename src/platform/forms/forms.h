// The collection of loaded forms, one for the process. It makes the windows that exist once by their names, owns every
// form, buries unloaded ones when no handler is left on the stack, and ends the process when the last one is gone.
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

namespace forms {

class Form;

class Forms {
  public:
    static Forms& Instance();

    using Maker = std::function<std::unique_ptr<Form>()>;
    // Tells how a window is made; a later maker of the same name replaces the earlier one.
    void RegisterMaker(const QString& name, const Maker& maker);

    // The shared instance of a window: the one that exists, else a new one. Null if nobody registered the name.
    Form* Shared(const QString& name);
    // A new instance, whatever exists.
    Form* New(const QString& name);
    // The newest instance that has not been unloaded, or null; makes nothing.
    Form* Find(const QString& name) const;

    // All forms that exist and have not been unloaded, in order of creation.
    QList<Form*> Loaded() const;

    // Destroys unloaded forms now, if no yield is on the stack. For tests; the running program does it by itself.
    void Bury();
    // Destroys everything. For tests.
    void Clear();
    // Called once the last form is gone and buried; by default ends the event loop.
    void SetAllGone(std::function<void()> allGone);

  private:
    friend class Form;
    Forms();
    Form* Adopt(std::unique_ptr<Form> form);
    void TakeOut(Form* form);
    void BurialTick();

    QHash<QString, Maker> makers_;
    std::vector<std::unique_ptr<Form>> forms_;
    std::vector<std::unique_ptr<Form>> graveyard_;
    QTimer burial_;
    std::function<void()> allGone_;
};

} // namespace forms
