#include "pnp/saved_machine.h"

#include "pnp/device_tree.h"
#include "pnp/saving_rules.h"
#include "pnp/sysfs.h"

#include <QFile>

namespace pnp {

namespace {

// As many as the kernel follows.
constexpr int MostLinks = 40;

struct Recording {
    std::shared_ptr<const TreeFolder> root;
    std::shared_ptr<SavedTree> record;
};

using RecordingPtr = std::shared_ptr<const Recording>;

// The place of a path, without links: those on the way are written down. Empty where it leads out or nowhere.
std::string Place(const Recording& recording, const std::string& path, bool follow) {
    std::vector<std::string> left = Components(path);
    std::vector<std::string> at;
    int links = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (left[i] == ".")
            continue;
        if (left[i] == "..") {
            if (at.empty())
                return {};
            at.pop_back();
            continue;
        }
        std::string folder;
        for (const std::string& name : at)
            folder += "/" + name;
        const std::string here = folder + "/" + left[i];
        const std::string target =
            follow || i + 1 < left.size() ? recording.root->ReadLink(here.substr(1)) : std::string();
        if (target.empty()) {
            at.push_back(left[i]);
            continue;
        }
        if (++links > MostLinks || !recording.record->AddLink(here, target))
            return {};
        std::vector<std::string> rest = Components(target);
        rest.insert(rest.end(), left.begin() + std::ptrdiff_t(i) + 1, left.end());
        left = std::move(rest);
        i = std::size_t(-1);
    }
    std::string place;
    for (const std::string& name : at)
        place += "/" + name;
    return place;
}

class RecordingFolder : public TreeFolder {
  public:
    RecordingFolder(RecordingPtr recording, std::shared_ptr<const TreeFolder> folder, std::string place)
        : recording_(std::move(recording)), folder_(std::move(folder)), place_(std::move(place)) {}

    std::optional<std::string> Read(const std::string& name, std::size_t limit) const override {
        std::optional<std::string> bytes = folder_->Read(name, limit);
        if (bytes)
            recording_->record->AddFile(Below(name, true), *bytes);
        return bytes;
    }

    std::string ReadLink(const std::string& name) const override {
        std::string target = folder_->ReadLink(name);
        if (!target.empty())
            recording_->record->AddLink(Below(name, false), target);
        return target;
    }

    bool Has(const std::string& name) const override {
        const bool there = folder_->Has(name);
        if (there)
            Note(name, Below(name, false));
        return there;
    }

    bool IsFolder(const std::string& name) const override {
        const bool folder = folder_->IsFolder(name);
        if (folder)
            recording_->record->AddFolder(Below(name, false));
        return folder;
    }

    std::vector<std::string> List(const std::string& name) const override {
        std::vector<std::string> names = folder_->List(name);
        const std::string folder = Below(name, true);
        for (const std::string& child : names)
            Note(name + "/" + child, folder + "/" + child);
        return names;
    }

    std::shared_ptr<const TreeFolder> Open(const std::string& name) const override {
        std::shared_ptr<const TreeFolder> folder = folder_->Open(name);
        if (folder == nullptr)
            return folder;
        const std::string place = Below(name, true);
        recording_->record->AddFolder(place);
        return std::make_shared<RecordingFolder>(recording_, std::move(folder), place);
    }

  private:
    std::string Below(const std::string& name, bool follow) const {
        return Place(*recording_, place_ + "/" + name, follow);
    }

    // A name that was seen, of whatever kind.
    void Note(const std::string& name, const std::string& place) const {
        if (const std::string target = folder_->ReadLink(name); !target.empty())
            recording_->record->AddLink(place, target);
        else if (folder_->IsFolder(name))
            recording_->record->AddFolder(place);
        else
            recording_->record->AddFile(place, {});
    }

    RecordingPtr recording_;
    std::shared_ptr<const TreeFolder> folder_;
    std::string place_;
};

} // namespace

std::shared_ptr<const TreeFolder> RecordTree(std::shared_ptr<const TreeFolder> root,
                                             std::shared_ptr<SavedTree> record) {
    if (root == nullptr)
        return root;
    const auto recording = std::make_shared<Recording>(Recording{root, std::move(record)});
    return std::make_shared<RecordingFolder>(recording, std::move(root), std::string());
}

SavedMachine SaveMachine(const Sources& sources) {
    const auto record = std::make_shared<SavedTree>();
    const auto noted = std::make_shared<MachineFacts>();
    noted->live = sources.live;
    noted->kernelRelease = sources.live ? sources.kernelRelease : QString();
    Sources recorded = sources;
    recorded.tree = RecordTree(
        sources.tree != nullptr ? sources.tree : OpenFolder(QFile::encodeName(sources.deviceRoot).toStdString()),
        record);
    recorded.noted = noted;
    DeviceTree devices(recorded);
    for (std::size_t i = 0; devices.At(i) != nullptr;)
        ++i;
    return WithoutIdentity({*noted, record});
}

Sources SavedSources(const SavedMachine& machine, const QString& name) {
    Sources sources = SystemSources();
    sources.deviceRoot = name;
    sources.tree = OpenSavedTree(machine.tree);
    sources.facts = std::make_shared<MachineFacts>(machine.facts);
    sources.processorInfo.clear();
    sources.live = machine.facts.live;
    sources.kernelRelease = machine.facts.kernelRelease;
    return sources;
}

} // namespace pnp
