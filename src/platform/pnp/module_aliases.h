// What the installed kernel modules say about a device that no driver has taken. Meaningful for the running kernel's
// own tree only. The files are read at the first question.
#pragma once

#include "pnp/sources.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QSet>
#include <string>
#include <vector>

namespace pnp {

class ModuleAliases {
  public:
    explicit ModuleAliases(const Sources& sources) : sources_(sources) {}

    // Whether modules.alias could be read, or a saved machine's could.
    bool Available();
    // The names of the modules whose aliases match, "-" written as "_".
    QByteArrayList Matching(const std::string& modalias);
    bool Blacklisted(const QByteArray& module);

  private:
    struct Alias {
        QByteArray pattern;
        QByteArray module;
    };

    void Load();
    QByteArrayList MatchingAliases(const QByteArray& modalias) const;
    void LoadBlacklists();

    Sources sources_;
    bool loaded_ = false;
    bool available_ = false;
    bool blacklistsLoaded_ = false;
    // By the first characters of the pattern where they hold no wildcard; all others under the empty key.
    QHash<QByteArray, std::vector<Alias>> aliases_;
    QSet<QByteArray> blacklist_;
};

} // namespace pnp
