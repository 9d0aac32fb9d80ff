// The options of quorvane-list, read strictly: what is not named here is refused.
#pragma once

#include <string>

namespace list_tool {

enum class Format { Csv, Json, Table };

inline constexpr int AllLists = -1;

struct Options {
    int list = 0; // an inventory::DeviceList, or AllLists
    Format format = Format::Csv;
    // A folder or the file of a saved machine; empty for the running system.
    std::string root;
    // Where to save the machine, in place of printing it; empty to print.
    std::string save;
    bool lookup = false;
    // Empty for the program's own.
    std::string database;
    bool help = false;
    bool version = false;
    // Why the options are refused; empty if they are good.
    std::string complaint;
};

Options ReadOptions(int count, char** arguments);

// The name under which a list is asked for.
const char* ListName(int list);

} // namespace list_tool
