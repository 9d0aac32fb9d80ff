// The icons that all lists share, each under a number. One store a process, reached through SharedIconStore(); lists
// that show it are told of a change by being given it again.
#pragma once

#include "suite/icon_modules.h"

#include <QHash>
#include <QtGlobal>
#include <optional>

namespace suite {

class IconStore {
  public:
    void RemoveAll();

    // Puts an icon under `id`; a second icon under the same id replaces the first. A null handle leaves the store as it
    // is and gives false. Only state 0, the normal one, is shown; other states are accepted and not kept.
    bool AddIcon(const IconHandle& icon, qint32 id, int state = 0);

    // The same with the icon of `resource` in a loaded module; false where the module is not loaded or lacks it.
    bool LoadIcon(ModuleHandle module, qint32 resource, qint32 id, int state = 0);

    std::optional<IconHandle> Icon(qint32 id) const;
    int Count() const { return int(icons_.size()); }

    // Grows with every change; a view keeps what it drew for as long as it stands still.
    quint64 Revision() const { return revision_; }

  private:
    QHash<qint32, IconHandle> icons_;
    quint64 revision_ = 1;
};

IconStore& SharedIconStore();

} // namespace suite
