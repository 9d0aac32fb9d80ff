// quorvane-list: the program's device lists as text, from the same scan, without a window.
#include "base/standard_streams.h"
#include "database/store.h"
#include "formats.h"
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "machine_file.h"
#include "matches.h"
#include "options.h"
#include "pnp/sources.h"
#include "root.h"
#include "values/addresses.h"
#include "values/program_values.h"

#include <QCoreApplication>
#include <QString>
#include <array>
#include <cstdio>
#include <string>

namespace {

using list_tool::Format;
using list_tool::Matches;
using list_tool::Options;

enum Status {
    Done = 0,
    Failed = 1,  // the database cannot be used, or standard output or the file did not take what was to be in it
    Refused = 2, // bad options, or a folder or a file that is no machine's
};

constexpr char Help[] = "Usage: quorvane-list [--list NAME] [--format csv|json|table] [--lookup] [--db FILE]\n"
                        "                     [--root DIR|FILE]\n"
                        "       quorvane-list --save FILE.tar.xz [--root DIR|FILE]\n"
                        "Prints the devices of this machine, or saves what tells of them.\n"
                        "\n"
                        "  --list NAME   hardware: all devices (the default); nodrivers: devices without\n"
                        "                drivers; problems: devices with problems; nosystem: all except\n"
                        "                standard system devices; all: the four of them\n"
                        "  --format F    csv: comma-separated with a header row (the default); json; table:\n"
                        "                for reading\n"
                        "  --lookup      add the best matches that the database knows\n"
                        "  --db FILE     look them up in this database; implies --lookup\n"
                        "  --root DIR    read a captured tree; DIR stands for /sys\n"
                        "  --root FILE   read a machine that --save has saved\n"
                        "  --save FILE   save this machine, without serial numbers and network addresses;\n"
                        "                the guide lists what is in the file\n"
                        "  --help        print this text\n"
                        "  --version     print the version\n"
                        "\n"
                        "Status: 0 done, 1 failed, 2 bad usage, or a DIR or FILE that is none.\n";

int Complain(const std::string& complaint, Status status) {
    std::fprintf(stderr, "quorvane-list: %s\n", complaint.c_str());
    return status;
}

// Output that nobody could take is a failure of its own.
int Print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    return base::StandardOutputWritten() ? int(Done) : Complain("standard output cannot be written", Failed);
}

QString FormatList(const suite::ListItems& list, const Options& options) {
    std::vector<Matches> matches;
    for (int row = 1; options.lookup && row <= list.Count(); ++row)
        matches.push_back(list_tool::BestMatches(*list.Item(row)));
    const list_tool::ListText text{list, options.lookup ? &matches : nullptr};
    switch (options.format) {
    case Format::Json:
        return list_tool::JsonText(text);
    case Format::Table:
        return list_tool::TableText(text);
    case Format::Csv:
        break;
    }
    return list_tool::CsvText(text);
}

// A list among others: under its title, or its name as JSON has it.
QString HeadedList(int at, const suite::ListItems& list, const Options& options) {
    const QString text = FormatList(list, options);
    if (options.format == Format::Json)
        return (at == 0 ? QStringLiteral("{") : QStringLiteral(",\n")) +
               list_tool::JsonString(QLatin1String(list_tool::ListName(at))) + QLatin1Char(':') + text +
               (at + 1 == inventory::DeviceListCount ? QStringLiteral("}") : QString());
    const QString lineBreak = options.format == Format::Csv ? QStringLiteral("\r\n") : QStringLiteral("\n");
    return (at == 0 ? QString() : lineBreak) +
           inventory::DeviceListCaption(inventory::DeviceListTitle(inventory::DeviceList(at)), list.Count()) +
           lineBreak + text;
}

int Scan(const Options& options) {
    // What the main window sets when it loads; the modules with the class icons answer to names below it.
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);
    inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                          lists[inventory::NoSystemDevices], [](const QString&) {});
    QString text;
    for (int at = 0; at < inventory::DeviceListCount; ++at) {
        suite::ListItems& list = lists[std::size_t(at)];
        inventory::SortByName(list);
        if (options.list == list_tool::AllLists)
            text += HeadedList(at, list, options);
        else if (options.list == at)
            text += FormatList(list, options);
    }
    if (options.format == Format::Json)
        text += QLatin1Char('\n');
    return Print(text.toStdString());
}

int Run(const Options& options) {
    if (!options.complaint.empty())
        return Complain(options.complaint, Refused);
    if (options.help)
        return Print(Help);
    if (options.version)
        return Print("quorvane-list " + values::BuiltVersion().toStdString() + "\n" +
                     values::UpdateKeysText().toStdString() + "\n");
    std::string fault = list_tool::UseRoot(options.root);
    if (!fault.empty())
        return Complain(fault, Refused);
    if (!options.save.empty()) {
        fault = list_tool::WriteMachine(pnp::SaveMachine(pnp::CurrentSources()), options.save);
        return fault.empty() ? int(Done) : Complain(fault, Failed);
    }
    // Before the scan, so that a failure does not come after the work.
    fault = options.lookup ? list_tool::OpenDatabase(options.database) : std::string();
    if (!fault.empty())
        return Complain(fault, Failed);
    const int status = Scan(options);
    database::CloseDeviceDatabase();
    return status;
}

} // namespace

int main(int count, char** arguments) {
    base::PrepareStandardStreams();
    const Options options = list_tool::ReadOptions(count, arguments);
    // Knows where the programs stand, and with them the database.
    const QCoreApplication application(count, arguments);
    return Run(options);
}
