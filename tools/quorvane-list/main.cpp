// quorvane-list: the program's device lists as text, from the same scan, without a window.
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "inventory/list_text.h"
#include "pnp/sources.h"
#include "values/program_values.h"

#include <QString>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

constexpr int StatusDone = 0;
constexpr int StatusNotWritten = 1;
constexpr int StatusRefused = 2;

constexpr char Help[] = "Usage: quorvane-list [--list hardware|nodrivers|problems|nosystem|all] [--root DIR]\n"
                        "Prints the devices of this machine as comma-separated text with a header row.\n"
                        "\n"
                        "  --list NAME   the list to print: all hardware (the default), devices without\n"
                        "                drivers, devices with problems, all except standard system\n"
                        "                devices, or all four with their titles\n"
                        "  --root DIR    read a captured tree; DIR stands for /sys\n"
                        "  --help        print this text\n"
                        "  --version     print the version\n";

struct ListName {
    std::string_view name;
    int list;
};

constexpr int AllLists = -1;

constexpr ListName ListNames[] = {
    {"hardware", inventory::Hardware},
    {"nodrivers", inventory::NoDrivers},
    {"problems", inventory::Problems},
    {"nosystem", inventory::NoSystemDevices},
    {"all", AllLists},
};

struct Options {
    int list = inventory::Hardware;
    std::string root;
    bool help = false;
    bool version = false;
    // Why the options are refused; empty if they are good.
    std::string complaint;
};

void TakeList(const std::string& name, Options& options) {
    for (const ListName& row : ListNames) {
        if (row.name == name) {
            options.list = row.list;
            return;
        }
    }
    options.complaint = "there is no list \"" + name + "\"";
}

void TakeRoot(const std::string& folder, Options& options) {
    options.root = folder;
    if (folder.empty())
        options.complaint = "--root needs a folder";
}

// The value behind "--name=" or in the next argument.
bool TakeValue(int count, char** arguments, int& at, const std::string& name, std::string& value) {
    const std::string argument = arguments[at];
    if (argument.compare(0, name.size() + 1, name + "=") == 0) {
        value = argument.substr(name.size() + 1);
        return true;
    }
    if (argument != name || at + 1 >= count)
        return false;
    value = arguments[++at];
    return true;
}

Options ReadOptions(int count, char** arguments) {
    Options options;
    for (int at = 1; at < count && options.complaint.empty(); ++at) {
        const std::string argument = arguments[at];
        std::string value;
        if (argument == "--help")
            options.help = true;
        else if (argument == "--version")
            options.version = true;
        else if (TakeValue(count, arguments, at, "--list", value))
            TakeList(value, options);
        else if (TakeValue(count, arguments, at, "--root", value))
            TakeRoot(value, options);
        else
            options.complaint = argument == "--list" || argument == "--root" ? argument + " needs a value"
                                                                             : "unknown option \"" + argument + "\"";
    }
    return options;
}

int Refuse(const std::string& complaint) {
    std::fprintf(stderr, "quorvane-list: %s\n", complaint.c_str());
    return StatusRefused;
}

// Output that nobody could take is a failure of its own.
int Print(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return written ? StatusDone : StatusNotWritten;
}

std::string ListText(const suite::ListItems& list) {
    return inventory::WholeListText(list, inventory::ListTextScope::WholeRow).toStdString();
}

int Scan(const Options& options) {
    if (!options.root.empty())
        pnp::SetDeviceRoot(QString::fromLocal8Bit(options.root.c_str()));
    if (!pnp::DeviceRootReadable())
        return Refuse("the folder \"" + pnp::CurrentSources().deviceRoot.toStdString() + "\" cannot be read");
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                          lists[inventory::NoSystemDevices], [](const QString&) {});
    std::string text;
    for (int i = 0; i < inventory::DeviceListCount; ++i) {
        suite::ListItems& list = lists[std::size_t(i)];
        if (options.list != i && options.list != AllLists)
            continue;
        inventory::SortByName(list);
        if (options.list == AllLists)
            text += (i == 0 ? "" : "\r\n") +
                    inventory::DeviceListCaption(inventory::DeviceListTitle(inventory::DeviceList(i)), list.Count())
                        .toStdString() +
                    "\r\n";
        text += ListText(list);
    }
    return Print(text);
}

} // namespace

int main(int count, char** arguments) {
    const Options options = ReadOptions(count, arguments);
    if (!options.complaint.empty())
        return Refuse(options.complaint);
    if (options.help)
        return Print(Help);
    if (options.version)
        return Print("quorvane-list " + values::BuiltVersion().toStdString() + "\n");
    return Scan(options);
}
