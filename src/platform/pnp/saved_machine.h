// A machine as it can be put into a file and looked at elsewhere: what the readers asked of it and the answers they
// got, without what would tell this one machine from others of its kind (serial numbers, network addresses). The same
// readers, given the saved machine, come to the same lists.
#pragma once

#include "pnp/machine_facts.h"
#include "pnp/saved_tree.h"
#include "pnp/sources.h"

namespace pnp {

struct SavedMachine {
    MachineFacts facts;
    std::shared_ptr<const SavedTree> tree;
};

// Walks all devices of the sources once.
SavedMachine SaveMachine(const Sources& sources);

// Sources that answer from a saved machine; `name` stands for its root in messages.
Sources SavedSources(const SavedMachine& machine, const QString& name);

// The tree behind `root`, which writes down in `record` all that it is asked for, with the folders and links on the
// way. A record that takes no more is no fault for whoever asks.
std::shared_ptr<const TreeFolder> RecordTree(std::shared_ptr<const TreeFolder> root, std::shared_ptr<SavedTree> record);

} // namespace pnp
