#include "forms/forms.h"

#include "base/yield.h"
#include "forms/form.h"

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <cstddef>
#include <new>

namespace forms {

namespace {

constexpr int burialIntervalMilliseconds = 20; // runs only while something waits for its burial

} // namespace

Forms& Forms::Instance() {
    // Never destroyed: at an exit from inside the toolkit (the display is gone) windows can no longer be destroyed.
    alignas(Forms) static std::byte place[sizeof(Forms)];
    static Forms* const forms = new (place) Forms;
    return *forms;
}

Forms::Forms() : allGone_([] { QCoreApplication::quit(); }) {
    burial_.setInterval(burialIntervalMilliseconds);
    QObject::connect(&burial_, &QTimer::timeout, &burial_, [this] { BurialTick(); });
}

void Forms::RegisterMaker(const QString& name, const Maker& maker) { makers_.insert(name, maker); }

Form* Forms::Adopt(std::unique_ptr<Form> form) {
    if (!form)
        return nullptr;
    forms_.push_back(std::move(form));
    return forms_.back().get();
}

Form* Forms::New(const QString& name) {
    const auto maker = makers_.constFind(name);
    return maker == makers_.constEnd() ? nullptr : Adopt((*maker)());
}

Form* Forms::Find(const QString& name) const {
    for (auto form = forms_.rbegin(); form != forms_.rend(); ++form)
        if ((*form)->Name() == name && !(*form)->IsUnloaded())
            return form->get();
    return nullptr;
}

Form* Forms::Shared(const QString& name) {
    Form* existing = Find(name);
    return existing != nullptr ? existing : New(name);
}

QList<Form*> Forms::Loaded() const {
    QList<Form*> loaded;
    for (const auto& form : forms_)
        if (!form->IsUnloaded())
            loaded.append(form.get());
    return loaded;
}

void Forms::TakeOut(Form* form) {
    const auto found =
        std::find_if(forms_.begin(), forms_.end(), [form](const auto& other) { return other.get() == form; });
    if (found == forms_.end())
        return;
    graveyard_.push_back(std::move(*found));
    forms_.erase(found);
    burial_.start();
}

void Forms::BurialTick() {
    // A nested loop (a popup, a message box, a yield) means that handlers are on the stack, perhaps those of the dead.
    if (base::YieldDepth() > 0 || QThread::currentThread()->loopLevel() > 1)
        return;
    Bury();
}

void Forms::Bury() {
    if (base::YieldDepth() > 0)
        return;
    burial_.stop();
    // Destructors may unload further forms.
    while (!graveyard_.empty()) {
        const std::unique_ptr<Form> form = std::move(graveyard_.back());
        graveyard_.pop_back();
    }
    if (forms_.empty() && allGone_)
        allGone_();
}

void Forms::Clear() {
    burial_.stop();
    graveyard_.clear();
    forms_.clear();
    makers_.clear();
}

void Forms::SetAllGone(std::function<void()> allGone) { allGone_ = std::move(allGone); }

} // namespace forms
