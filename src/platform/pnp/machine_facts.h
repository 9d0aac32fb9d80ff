// What a saved machine tells beside the files of its tree: what else the readers asked for, and the answers they got.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <map>
#include <set>
#include <string>

namespace pnp {

struct MachineFacts {
    // Whether the tree was that of the kernel then running, so that its release and modules say something about it.
    bool live = false;
    QString kernelRelease;
    // The brand name of the processors.
    QString processor;
    // Whether there was a modules.alias to ask.
    bool modulesKnown = false;
    // The modules that fit a modalias; only those that were asked for and have any.
    std::map<std::string, QByteArrayList> modules;
    std::set<QByteArray> blacklisted;
};

// As lines of text, behind a line with the version of the form.
std::string FactsText(const MachineFacts& facts);
// False, with the reason, for another text and for one of a newer form. Lines that it does not know are passed over.
bool ParseFacts(const std::string& text, MachineFacts& facts, std::string& complaint);

} // namespace pnp
