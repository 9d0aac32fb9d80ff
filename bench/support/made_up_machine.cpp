#include "support/made_up_machine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <map>
#include <memory>

namespace bench {

namespace {

constexpr int FunctionsPerDomain = 256;

void Write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
}

void AddFunction(const QString& root, int number) {
    const QString domain = QString::number(number / FunctionsPerDomain, 16).rightJustified(4, QLatin1Char('0'));
    const int place = number % FunctionsPerDomain;
    const QString address = QStringLiteral("%1:00:%2.%3")
                                .arg(domain, QString::number(place / 8, 16).rightJustified(2, QLatin1Char('0')))
                                .arg(place % 8);
    const QString relative = QStringLiteral("/devices/pci%1:00/%2").arg(domain, address);
    const QString folder = root + relative;
    QDir().mkpath(folder);
    const QByteArray device = QByteArray::number(0x1000 + number % 4000, 16).rightJustified(4, '0');
    Write(folder + QStringLiteral("/vendor"), "0x8086\n");
    Write(folder + QStringLiteral("/device"), "0x" + device + "\n");
    Write(folder + QStringLiteral("/subsystem_vendor"), "0x17aa\n");
    Write(folder + QStringLiteral("/subsystem_device"), "0x2001\n");
    Write(folder + QStringLiteral("/revision"), "0x02\n");
    Write(folder + QStringLiteral("/class"), "0x020000\n");
    Write(folder + QStringLiteral("/modalias"),
          "pci:v00008086d0000" + device.toUpper() + "sv000017AAsd00002001bc02sc00i00\n");
    // Every second one without a driver, so that it stands in all four lists.
    if (number % 2 != 0)
        QFile::link(QStringLiteral("../../../bus/pci/drivers/e1000e"), folder + QStringLiteral("/driver"));
    QFile::link(QStringLiteral("../../..") + relative, root + QStringLiteral("/bus/pci/devices/") + address);
}

} // namespace

const QString& MadeUpMachine(int devices) {
    static std::map<int, std::unique_ptr<QTemporaryDir>> machines;
    static std::map<int, QString> roots;
    if (!machines.contains(devices)) {
        const QString memory = QStringLiteral("/dev/shm");
        const QString base = QDir(memory).exists() ? memory : QDir::tempPath();
        auto folder = std::make_unique<QTemporaryDir>(base + QStringLiteral("/scan-XXXXXX"));
        QDir().mkpath(folder->filePath(QStringLiteral("bus/pci/devices")));
        QDir().mkpath(folder->filePath(QStringLiteral("bus/pci/drivers/e1000e")));
        for (int i = 0; i < devices; ++i)
            AddFunction(folder->path(), i);
        roots[devices] = folder->path();
        machines[devices] = std::move(folder);
    }
    return roots[devices];
}

} // namespace bench
