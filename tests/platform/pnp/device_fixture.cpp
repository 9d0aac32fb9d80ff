#include "device_fixture.h"

#include "pnp/device_tree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <gtest/gtest.h>

QByteArray FixtureBytes(const QString& text) {
    static const QRegularExpression part(QStringLiteral("(~?)\"([^\"]*)\"(?:\\*(\\d+))?|@(\\d+)|([0-9A-Fa-f]{2})"));
    QByteArray bytes;
    for (const QRegularExpressionMatch& match : part.globalMatch(text)) {
        if (match.hasCaptured(5)) {
            bytes += QByteArray::fromHex(match.captured(5).toLatin1());
        } else if (match.hasCaptured(4)) {
            bytes = bytes.leftJustified(match.captured(4).toInt(), '\0');
        } else {
            QByteArray plain = match.captured(2).toUtf8();
            for (qsizetype i = 0; !match.captured(1).isEmpty() && i + 1 < plain.size(); i += 2)
                std::swap(plain[i], plain[i + 1]);
            bytes += plain.repeated(match.hasCaptured(3) ? match.captured(3).toInt() : 1);
        }
    }
    return bytes;
}

DeviceFixture::DeviceFixture(const QByteArray& text) : before_(pnp::CurrentSources()) {
    QDir().mkpath(Root());
    pnp::SetDeviceRoot(Root());
    // Names come from the devices, unless a test brings ID files.
    pnp::Sources sources = pnp::CurrentSources();
    sources.idFolder = Beside(QStringLiteral("ids"));
    pnp::SetSources(sources);
    Add(text);
}

DeviceFixture::~DeviceFixture() {
    pnp::SetSources(before_);
    pnp::BindTree();
}

void DeviceFixture::Add(const QByteArray& text) {
    QString device;
    for (const QString& line : QString::fromUtf8(text).split(QLatin1Char('\n'))) {
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty())
            continue;
        if (trimmed.startsWith(QLatin1Char('/'))) {
            const QStringList parts = trimmed.split(QStringLiteral(" @ "));
            device = parts[0];
            QDir().mkpath(Root() + device);
            if (parts.size() > 1) {
                const QString folder =
                    parts[1].startsWith(QStringLiteral("bus")) ? parts[1] + QStringLiteral("/devices") : parts[1];
                Link(QLatin1Char('/') + folder + QLatin1Char('/') + QFileInfo(device).fileName(), device);
            }
        } else if (trimmed.contains(QStringLiteral(" -> "))) {
            const QStringList parts = trimmed.split(QStringLiteral(" -> "));
            Link(device + QLatin1Char('/') + parts[0], parts[1]);
        } else if (trimmed.contains(QStringLiteral(" : "))) {
            const qsizetype colon = trimmed.indexOf(QStringLiteral(" : "));
            Write(device + QLatin1Char('/') + trimmed.left(colon), FixtureBytes(trimmed.mid(colon + 3)));
        } else {
            const qsizetype equals = trimmed.indexOf(QStringLiteral(" ="));
            Write(device + QLatin1Char('/') + trimmed.left(equals), trimmed.mid(equals + 3).toUtf8() + "\n");
        }
    }
}

void DeviceFixture::Write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(Root() + path).path());
    QFile file(Root() + path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << Plain(path);
    file.write(bytes);
}

void DeviceFixture::Link(const QString& path, const QString& target) {
    const QString folder = QFileInfo(Root() + path).path();
    QDir().mkpath(folder);
    // Both below the root, which need not be named in the link.
    const QString relative = QDir(folder).relativeFilePath(Root() + target);
    ASSERT_TRUE(QFile::link(relative, Root() + path) || QFileInfo(Root() + path).isSymLink()) << Plain(path);
}

void DeviceFixture::Remove(const QString& path) {
    const QFileInfo info(Root() + path);
    if (info.isDir() && !info.isSymLink())
        QDir(info.filePath()).removeRecursively();
    else
        QFile::remove(info.filePath());
}

std::vector<pnp::Device> DeviceFixture::Devices() const {
    const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
    std::vector<pnp::Device> devices;
    for (std::size_t i = 0; const pnp::Device* device = tree->At(i); ++i)
        devices.push_back(*device);
    return devices;
}

pnp::Device DeviceFixture::Only(const QString& start) const {
    std::vector<pnp::Device> found;
    std::string all;
    for (const pnp::Device& device : Devices()) {
        all += Plain(device.instancePath) + "\n";
        if (device.instancePath.startsWith(start))
            found.push_back(device);
    }
    EXPECT_EQ(found.size(), 1U) << "looking for " << Plain(start) << " among\n" << all;
    return found.size() == 1 ? found.front() : pnp::Device();
}

QString Joined(const QStringList& ids) { return ids.join(QStringLiteral(" | ")); }
