#include "options.h"

#include "inventory/device_lists.h"

namespace list_tool {

namespace {

template <typename Value> struct Named {
    const char* name;
    Value value;
};

constexpr Named<int> ListNames[] = {
    {"hardware", inventory::Hardware},
    {"nodrivers", inventory::NoDrivers},
    {"problems", inventory::Problems},
    {"nosystem", inventory::NoSystemDevices},
    {"all", AllLists},
};

constexpr Named<Format> FormatNames[] = {{"csv", Format::Csv}, {"json", Format::Json}, {"table", Format::Table}};

template <typename Value, size_t Count>
bool FindNamed(const Named<Value> (&rows)[Count], const std::string& name, Value& value) {
    for (const Named<Value>& row : rows) {
        if (row.name == name) {
            value = row.value;
            return true;
        }
    }
    return false;
}

void TakeList(const std::string& name, Options& options) {
    if (!FindNamed(ListNames, name, options.list))
        options.complaint = "there is no list \"" + name + "\"";
}

void TakeFormat(const std::string& name, Options& options) {
    if (!FindNamed(FormatNames, name, options.format))
        options.complaint = "there is no format \"" + name + "\"";
}

void TakeRoot(const std::string& folder, Options& options) {
    options.root = folder;
    if (folder.empty())
        options.complaint = "--root needs a folder or a file";
}

void TakeSave(const std::string& file, Options& options) {
    options.save = file;
    if (file.empty())
        options.complaint = "--save needs a file";
}

void TakeDatabase(const std::string& file, Options& options) {
    options.lookup = true;
    options.database = file;
    if (file.empty())
        options.complaint = "--db needs a file";
}

constexpr Named<void (*)(const std::string&, Options&)> ValuedOptions[] = {
    {"--list", TakeList}, {"--format", TakeFormat}, {"--root", TakeRoot}, {"--save", TakeSave}, {"--db", TakeDatabase}};

constexpr Named<bool Options::*> Flags[] = {
    {"--lookup", &Options::lookup}, {"--help", &Options::help}, {"--version", &Options::version}};

// Takes one argument, and the next if that is its value. False where there is no such option.
bool TakeArgument(int count, char** arguments, int& at, Options& options) {
    const std::string argument = arguments[at];
    bool Options::*flag = nullptr;
    if (FindNamed(Flags, argument, flag)) {
        options.*flag = true;
        return true;
    }
    const size_t equals = argument.find('=');
    void (*take)(const std::string&, Options&) = nullptr;
    if (!FindNamed(ValuedOptions, argument.substr(0, equals), take))
        return false;
    if (equals != std::string::npos)
        take(argument.substr(equals + 1), options);
    else if (at + 1 < count)
        take(arguments[++at], options);
    else
        options.complaint = argument + " needs a value";
    return true;
}

} // namespace

Options ReadOptions(int count, char** arguments) {
    Options options;
    for (int at = 1; at < count && options.complaint.empty(); ++at)
        if (!TakeArgument(count, arguments, at, options))
            options.complaint = "unknown option \"" + std::string(arguments[at]) + "\"";
    if (options.complaint.empty() && !options.save.empty() && options.lookup)
        options.complaint = "--save looks nothing up";
    return options;
}

const char* ListName(int list) {
    for (const Named<int>& row : ListNames)
        if (row.value == list)
            return row.name;
    return "";
}

} // namespace list_tool
