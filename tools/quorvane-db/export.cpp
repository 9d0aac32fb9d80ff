// quorvane-db export: a database as sorted lines of text, one for each device known under each ID, so that two versions
// can be compared line by line. The form is that of contributions, in UTF-8.
#include "command.h"
#include "data/error.h"
#include "database/contribution_line.h"
#include "database/device_info.h"
#include "database_file.h"
#include "options.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace tool {

namespace {

bool ReadLines(const data::ConnectionPtr& connection, std::vector<QByteArray>& lines, data::Error& failure) {
    const QHash<qint64, QString> names =
        ReadNames(connection, QStringLiteral("devicenames"), QStringLiteral("devicename"));
    const QHash<qint64, QString> manufacturers = ReadNames(connection, QStringLiteral("mfgs"), QStringLiteral("mfg"));
    return data::Ran(
        [&] {
            data::Recordset rows;
            for (rows.Open(QStringLiteral("SELECT * FROM hwids"), connection); !rows.Eof(); rows.MoveNext()) {
                const QString hwid = rows.Value(QStringLiteral("hwid")).toString();
                for (const database::InfoEntry& entry :
                     database::DecodeInfo(rows.Value(QStringLiteral("info")).toString())) {
                    lines.push_back(
                        Legible(database::ContributionLine(hwid, names.value(entry.NameId.toLongLong()),
                                                           manufacturers.value(entry.ManufacturerId.toLongLong())))
                            .toUtf8() +
                        '\n');
                }
            }
        },
        &failure);
}

// Empty, or what failed. An empty path is standard output.
QString WriteLines(const std::vector<QByteArray>& lines, const QString& path) {
    if (path.isEmpty()) {
        for (const QByteArray& line : lines) {
            if (!Print(QString::fromUtf8(line.chopped(1)))) {
                break;
            }
        }
        return QString();
    }
    // A device or a pipe is written to; only a file is replaced.
    const QFileInfo info(path);
    QSaveFile saved(path);
    QFile direct(path);
    const bool special = info.exists() && !info.isFile() && !info.isDir();
    QFileDevice& file = special ? static_cast<QFileDevice&>(direct) : saved;
    bool written = file.open(QIODevice::WriteOnly);
    for (const QByteArray& line : lines) {
        written = written && file.write(line) == line.size();
    }
    // Written out first: committing a file whose last bytes found no room would succeed.
    errno = 0;
    written = written && file.flush();
    const int reason = errno;
    written = written && (special || saved.commit());
    return written ? QString()
                   : QStringLiteral("%1: %2").arg(path, reason == 0 ? file.errorString()
                                                                    : QString::fromLocal8Bit(std::strerror(reason)));
}

} // namespace

int Export(const QStringList& arguments) {
    Options options({QStringLiteral("output")}, {});
    QString error = options.Read(arguments);
    if (!error.isEmpty() || options.Arguments().size() != 1) {
        return RefuseUsage(error.isEmpty() ? QStringLiteral("export needs one DATABASE") : error);
    }
    const QString output = options.Value(QStringLiteral("output"));
    if (options.Has(QStringLiteral("output")) && output.isEmpty()) {
        return RefuseUsage(QStringLiteral("option --output needs a value"));
    }
    const data::ConnectionPtr connection = OpenDatabase(options.Arguments().first(), error);
    if (!connection) {
        return Fail(error);
    }
    if (QFileInfo(output) == QFileInfo(options.Arguments().first())) {
        return RefuseUsage(QStringLiteral("export would write over its database"));
    }
    std::vector<QByteArray> lines;
    data::Error failure;
    if (!ReadLines(connection, lines, failure)) {
        return Fail(QStringLiteral("%1: %2").arg(options.Arguments().first(), failure.Description()));
    }
    std::sort(lines.begin(), lines.end());
    lines.insert(lines.begin(), "version|||" + Legible(ReadVersion(connection)).toUtf8() + '\n');
    error = WriteLines(lines, output);
    return error.isEmpty() ? Finish() : Fail(error);
}

} // namespace tool
