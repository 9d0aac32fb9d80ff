// quorvane-db info: what a database holds, in a few lines.
#include "command.h"
#include "database_file.h"
#include "options.h"

#include <QFileInfo>

namespace tool {

int Info(const QStringList& arguments) {
    Options options({}, {});
    const QString wrong = options.Read(arguments);
    if (!wrong.isEmpty() || options.Arguments().size() != 1) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("info needs one DATABASE") : wrong);
    }
    const QString path = options.Arguments().first();
    QString error;
    const data::ConnectionPtr connection = OpenDatabase(path, error);
    if (!connection) {
        return Fail(error);
    }
    Print(QStringLiteral("Version:       %1").arg(Legible(ReadVersion(connection))));
    Print(QStringLiteral("Hardware IDs:  %1").arg(CountRows(connection, QStringLiteral("hwids"))));
    Print(QStringLiteral("Device names:  %1").arg(CountRows(connection, QStringLiteral("devicenames"))));
    Print(QStringLiteral("Manufacturers: %1").arg(CountRows(connection, QStringLiteral("mfgs"))));
    Print(QStringLiteral("Size:          %1 bytes").arg(QFileInfo(path).size()));
    return Finish();
}

} // namespace tool
