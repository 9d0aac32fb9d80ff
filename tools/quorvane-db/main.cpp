// quorvane-db: builds, shows, checks and merges device databases. One sub-command, one file.
#include "base/standard_streams.h"
#include "command.h"
#include "values/addresses.h"
#include "values/program_values.h"

#include <QCoreApplication>

namespace {

constexpr tool::SubCommand subCommands[] = {
    {"build", "--output FILE [--version V] [--pci-ids F] [--usb-ids F]",
     "make a database from the PCI and USB ID files", tool::Build},
    {"info", "DATABASE", "show what a database holds", tool::Info},
    {"check", "[--db DATABASE] FILE...", "report malformed, suspicious, duplicate and known lines of contributions",
     tool::Check},
    {"merge", "[--dry-run] [--include-suspicious] [--version V] DATABASE FILE...", "add contributions to a database",
     tool::Merge},
    {"pack", "--output DIR [--program-version V] [--key FILE [--old-key FILE]] DATABASE",
     "make the files that an update server hands out", tool::Pack},
    {"keygen", "--output FILE | FILE", "make a key that signs databases, or show the public part of one", tool::Keygen},
    {"export", "[--output FILE] DATABASE", "print a database as sorted lines of text", tool::Export},
    {"import-jet", "--output FILE FILE.mdb", "make a database from a Jet 4 file (needs mdbtools)", tool::ImportJet},
};

int PrintHelp() {
    tool::Print(QStringLiteral("Usage: quorvane-db COMMAND [OPTIONS]\n\nCommands:"));
    for (const tool::SubCommand& command : subCommands) {
        tool::Print(
            QStringLiteral("  %1 %2\n      %3")
                .arg(QLatin1String(command.Name), QLatin1String(command.Arguments), QLatin1String(command.Summary)));
    }
    tool::Print(QStringLiteral("  --help, --version\n\nStatus: 0 done, 1 failed, 2 bad usage, 3 lines were refused."));
    return tool::Finish();
}

int RunSubCommand(const QStringList& arguments) {
    if (arguments.isEmpty()) {
        return tool::RefuseUsage(QStringLiteral("no command given"));
    }
    const QString& name = arguments.first();
    if (name == QLatin1String("--help") || name == QLatin1String("-h") ||
        arguments.contains(QStringLiteral("--help"))) {
        return PrintHelp();
    }
    if (name == QLatin1String("--version")) {
        tool::Print(QStringLiteral("quorvane-db ") + values::BuiltVersion());
        tool::Print(values::UpdateKeysText());
        return tool::Finish();
    }
    for (const tool::SubCommand& command : subCommands) {
        if (name == QLatin1String(command.Name)) {
            return command.Run(arguments.mid(1));
        }
    }
    return tool::RefuseUsage(QStringLiteral("unknown command %1").arg(name));
}

} // namespace

int main(int argc, char** argv) {
    base::PrepareStandardStreams();
    const QCoreApplication application(argc, argv);
    return RunSubCommand(QCoreApplication::arguments().mid(1));
}
