// The file of a saved machine, as somebody may send it; the input is its archive, packed or not. What is taken in can
// be walked to its end, twice with the same result, and comes back from a file of our own as it was.
#include "fuzz_support.h"
#include "pnp/device_tree.h"
#include "pnp/saving_rules.h"
#include "quorvane-list/machine_file.h"

#include <map>

namespace {

using Contents = std::map<std::string, std::string>;

Contents ContentsOf(const pnp::SavedMachine& machine) {
    Contents contents{{"", FactsText(machine.facts)}};
    machine.tree->ForEach([&contents](const std::string& path, const pnp::SavedTree::Entry& entry) {
        contents[path] = std::to_string(int(entry.kind)) + entry.bytes;
    });
    return contents;
}

QStringList Walk(const pnp::SavedMachine& machine) {
    pnp::DeviceTree tree(pnp::SavedSources(machine, QStringLiteral("input")));
    QStringList seen;
    for (std::size_t i = 0; const pnp::Device* device = tree.At(i); ++i)
        seen += device->instancePath + u'|' + device->name + u'|' + device->hardwareIds.join(u'|') +
                QString::number(device->problemCode);
    return seen;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::NeedApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    pnp::EdidWithoutIdentity(bytes);
    pnp::Page83WithoutIdentity(bytes);
    pnp::Page89WithoutIdentity(bytes);
    pnp::SavedMachine machine;
    if (!list_tool::UnpackMachine(bytes, machine).empty())
        return 0;
    fuzz::Require(Walk(machine) == Walk(machine), "two walks over one machine see the same");
    const std::string file = (fuzz::Folder() + QStringLiteral("/saved.tar.xz")).toStdString();
    fuzz::Require(list_tool::WriteMachine(machine, file).empty(), "what was read can be written");
    pnp::SavedMachine again;
    fuzz::Require(list_tool::ReadMachine(file, again).empty(), "what was written can be read");
    fuzz::Require(ContentsOf(machine) == ContentsOf(again), "a machine comes back as it was");
    return 0;
}
