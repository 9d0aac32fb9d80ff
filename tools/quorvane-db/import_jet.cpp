// quorvane-db import-jet: a database of ours out of a Jet 4 file with the same four tables, read by the system's
// mdbtools.
#include "command.h"
#include "csv.h"
#include "database/database_builder.h"
#include "database/device_info.h"
#include "options.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <optional>

namespace tool {

namespace {

constexpr int exportTimeout = 600000; // milliseconds for one table

struct MdbTools {
    QString Export;
    QString Count;
};

struct JetTable {
    QStringList Names; // of the columns
    std::vector<QStringList> Rows;

    // The number of a column, in any case; -1 where there is none of that name.
    int Column(const QString& name) const {
        for (qsizetype i = 0; i < Names.size(); ++i) {
            if (Names[i].compare(name, Qt::CaseInsensitive) == 0) {
                return int(i);
            }
        }
        return -1;
    }
};

// What one of mdbtools' programs prints about a table; nothing where it fails.
std::optional<QByteArray> Ask(const QString& program, const QString& path, const QString& table) {
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"MDBICONV", "MDBOPTS", "MDB_JET3_CHARSET"}) {
        environment.remove(QLatin1String(name));
    }
    process.setProcessEnvironment(environment);
    process.start(program, {QFileInfo(path).absoluteFilePath(), table});
    if (!process.waitForFinished(exportTimeout)) {
        process.kill();
        process.waitForFinished();
        return std::nullopt;
    }
    const bool done = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return done ? std::optional(process.readAllStandardOutput()) : std::nullopt;
}

// Empty, or what failed.
QString ReadTable(const MdbTools& tools, const QString& path, const QString& name, const QStringList& columns,
                  JetTable& table) {
    const std::optional<QByteArray> text = Ask(tools.Export, path, name);
    std::vector<QStringList> rows;
    if (!text || !ParseCsv(*text, rows) || rows.empty()) {
        return QStringLiteral("%1: no Jet database with a table %2").arg(path, name);
    }
    // Of a damaged file the export gives what can be read, and calls that a success.
    const std::optional<QByteArray> count = Ask(tools.Count, path, name);
    if (!count || count->trimmed().toULongLong() != rows.size() - 1) {
        return QStringLiteral("%1: damaged, only %2 of the %3 rows of table %4 can be read")
            .arg(path)
            .arg(rows.size() - 1)
            .arg(QString::fromLatin1(count.value_or(QByteArray()).trimmed()), name);
    }
    table.Names = rows.front();
    table.Rows.assign(rows.begin() + 1, rows.end());
    for (const QString& column : columns) {
        if (table.Column(column) < 0) {
            return QStringLiteral("%1: table %2 has no column %3").arg(path, name, column);
        }
    }
    return QString();
}

QHash<QString, QString> TextsByNumber(const JetTable& table, const QString& column) {
    QHash<QString, QString> texts;
    const int number = table.Column(QStringLiteral("ID"));
    const int text = table.Column(column);
    for (const QStringList& row : table.Rows) {
        texts.insert(row.value(number).trimmed(), row.value(text));
    }
    return texts;
}

struct JetFile {
    JetTable Hwids;
    JetTable DeviceNames;
    JetTable Mfgs;
    JetTable Version;
};

QString ReadJetFile(const QString& path, JetFile& file) {
    const MdbTools tools{QStandardPaths::findExecutable(QStringLiteral("mdb-export")),
                         QStandardPaths::findExecutable(QStringLiteral("mdb-count"))};
    if (tools.Export.isEmpty() || tools.Count.isEmpty()) {
        return QStringLiteral("mdb-export is not installed (package mdbtools)");
    }
    const struct {
        const char* Name;
        QStringList Columns;
        JetTable& Table;
    } tables[] = {
        {"hwids", {QStringLiteral("hwid"), QStringLiteral("info")}, file.Hwids},
        {"devicenames", {QStringLiteral("ID"), QStringLiteral("devicename")}, file.DeviceNames},
        {"mfgs", {QStringLiteral("ID"), QStringLiteral("mfg")}, file.Mfgs},
        {"version", {QStringLiteral("dbversion")}, file.Version},
    };
    for (const auto& [name, columns, table] : tables) {
        QString error = ReadTable(tools, path, QLatin1String(name), columns, table);
        if (!error.isEmpty()) {
            return error;
        }
    }
    return QString();
}

// How many entries name a row that is not there; they are left out.
int AddRows(const JetFile& file, database::DatabaseBuilder& builder) {
    const QHash<QString, QString> names = TextsByNumber(file.DeviceNames, QStringLiteral("devicename"));
    const QHash<QString, QString> manufacturers = TextsByNumber(file.Mfgs, QStringLiteral("mfg"));
    const int hwid = file.Hwids.Column(QStringLiteral("hwid"));
    const int info = file.Hwids.Column(QStringLiteral("info"));
    int dangling = 0;
    for (const QStringList& row : file.Hwids.Rows) {
        for (const database::InfoEntry& entry : database::DecodeInfo(row.value(info))) {
            const auto name = names.constFind(entry.NameId.trimmed());
            const auto manufacturer = manufacturers.constFind(entry.ManufacturerId.trimmed());
            if (name == names.constEnd() || manufacturer == manufacturers.constEnd() || row.value(hwid).isEmpty()) {
                ++dangling;
            } else {
                builder.Add(row.value(hwid), *name, *manufacturer);
            }
        }
    }
    return dangling;
}

} // namespace

int ImportJet(const QStringList& arguments) {
    Options options({QStringLiteral("output")}, {});
    QString error = options.Read(arguments);
    const QString output = options.Value(QStringLiteral("output"));
    if (!error.isEmpty() || options.Arguments().size() != 1 || output.isEmpty()) {
        return RefuseUsage(error.isEmpty() ? QStringLiteral("import-jet needs FILE and --output FILE") : error);
    }
    const QString path = options.Arguments().first();
    if (!QFileInfo(path).isFile()) {
        return Fail(QStringLiteral("%1: no such file").arg(path));
    }
    if (QFileInfo(output) == QFileInfo(path)) {
        return RefuseUsage(QStringLiteral("import-jet would write over its file"));
    }
    JetFile file;
    error = ReadJetFile(path, file);
    if (!error.isEmpty()) {
        return Fail(error);
    }
    database::DatabaseBuilder builder;
    const int dangling = AddRows(file, builder);
    if (dangling > 0) {
        Note(QStringLiteral("%1: %2 entries left out that name no row").arg(path).arg(dangling));
    }
    const QString version = file.Version.Rows.empty()
                                ? QString(QLatin1String(""))
                                : file.Version.Rows.front().value(file.Version.Column(QStringLiteral("dbversion")));
    if (!builder.Write(output, version, &error)) {
        return Fail(QStringLiteral("%1: %2").arg(output, error));
    }
    Print(QStringLiteral("%1: %2 hardware IDs, %3 device names, %4 manufacturers")
              .arg(output)
              .arg(builder.HardwareIdCount())
              .arg(builder.NameCount())
              .arg(builder.ManufacturerCount()));
    return Finish();
}

} // namespace tool
