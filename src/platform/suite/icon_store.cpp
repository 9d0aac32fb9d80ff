#include "suite/icon_store.h"

namespace suite {

void IconStore::RemoveAll() {
    if (icons_.isEmpty())
        return;
    icons_.clear();
    ++revision_;
}

bool IconStore::AddIcon(const IconHandle& icon, qint32 id, int state) {
    if (icon.IsNull())
        return false;
    if (state != 0)
        return true;
    const auto present = icons_.constFind(id);
    // The classes of a machine are few and its devices many: the same icon again is no change.
    if (present != icons_.constEnd() && *present == icon)
        return true;
    icons_.insert(id, icon);
    ++revision_;
    return true;
}

bool IconStore::LoadIcon(ModuleHandle module, qint32 resource, qint32 id, int state) {
    return AddIcon(IconOfModule(module, resource), id, state);
}

std::optional<IconHandle> IconStore::Icon(qint32 id) const {
    const auto found = icons_.constFind(id);
    return found == icons_.constEnd() ? std::nullopt : std::optional(*found);
}

IconStore& SharedIconStore() {
    static IconStore store;
    return store;
}

} // namespace suite
