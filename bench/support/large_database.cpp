#include "support/large_database.h"

#include "database/database_builder.h"
#include "support/settings.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace bench {

namespace {

constexpr int makers = 977;
constexpr int devicesOfName = 4;

void Build(const QString& path) {
    database::DatabaseBuilder builder;
    for (int i = 0; i < RowCount(); ++i)
        builder.Add(HardwareId(i), NameOf(i), MakerOf(i));
    for (int id = 0; id < idsOfDevice; ++id)
        for (int entry = 0; entry < entriesOfId; ++entry)
            builder.Add(DeviceId(id), QStringLiteral("Device %1").arg(entry), QStringLiteral("Maker %1").arg(entry));
    QString error;
    if (!builder.Write(path, QStringLiteral("1.0.0"), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        std::exit(EXIT_FAILURE);
    }
}

} // namespace

int RowCount() {
    const int rows = qEnvironmentVariableIntValue("QUORVANE_BENCH_ROWS");
    return rows > 0 ? rows : Size(1'000'000, 20'000);
}

QString HardwareId(int number) {
    return QStringLiteral("PCI\\VEN_%1&DEV_%2&SUBSYS_%3")
        .arg(number % makers, 4, 16, QLatin1Char('0'))
        .arg(number & 0xFFFF, 4, 16, QLatin1Char('0'))
        .arg(number, 8, 16, QLatin1Char('0'));
}

QString NameOf(int number) { return QStringLiteral("Device number %1").arg(number / devicesOfName); }

QString MakerOf(int number) { return QStringLiteral("Maker %1").arg(number % makers); }

QString DeviceId(int number) {
    return QStringLiteral("USB\\VID_1234&PID_5678&REV_%1").arg(number, 4, 10, QLatin1Char('0'));
}

QString LargeDatabaseFolder() {
    static const QTemporaryDir own;
    const QString shared = SharedFolder();
    const QString folder = shared.isEmpty() ? own.path() : QStringLiteral("%1/rows-%2").arg(shared).arg(RowCount());
    const QString path = folder + QStringLiteral("/hwids.mdb");
    if (!QFileInfo::exists(path)) {
        QDir().mkpath(folder);
        Build(path);
    }
    return folder;
}

} // namespace bench
