#include "window/icon_resource.h"

#include "forms/screen.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QtEndian>

// Resources of a static library are registered only when somebody asks; the macro must stand outside of namespaces.
static void RegisterIcons() { Q_INIT_RESOURCE(window); }

namespace window {

namespace {

constexpr int headerBytes = 6;
constexpr int entryBytes = 16;

int SizeByte(char byte) { return byte == 0 ? 256 : int(uchar(byte)); }

QByteArray ResourceBytes(const QString& name) {
    RegisterIcons();
    QFile file(QStringLiteral(":/icons/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Lower is better: images that must be enlarged come after all that can be reduced.
int Misfit(const IconEntry& entry, int width, int height) {
    const int difference = qMax(qAbs(entry.Width - width), qAbs(entry.Height - height));
    const bool tooSmall = entry.Width < width || entry.Height < height;
    return difference + (tooSmall ? 1000 : 0);
}

int EntryOfDepth(const QVector<IconEntry>& group, int width, int height, int depth) {
    for (int i = 0; i < group.size(); ++i)
        if (group[i].Width == width && group[i].Height == height && group[i].BitCount == depth)
            return i;
    return -1;
}

int ChooseEntry(const QVector<IconEntry>& group, int width, int height, int colourDepth) {
    const int best = BestIconEntry(group, width, height);
    if (best < 0 || colourDepth < 1 || group[best].BitCount == colourDepth)
        return best;
    const int exact = EntryOfDepth(group, width, height, colourDepth);
    return exact < 0 ? best : exact;
}

} // namespace

QVector<IconEntry> ReadIconGroup(const QByteArray& resource) {
    QVector<IconEntry> group;
    if (resource.size() < headerBytes || qFromLittleEndian<quint16>(resource.constData() + 2) != 1)
        return group;
    const int count = qFromLittleEndian<quint16>(resource.constData() + 4);
    for (int i = 0; i < count && headerBytes + (i + 1) * entryBytes <= resource.size(); ++i) {
        const char* entry = resource.constData() + headerBytes + i * entryBytes;
        group.append({SizeByte(entry[0]), SizeByte(entry[1]), qFromLittleEndian<quint16>(entry + 6), i});
    }
    return group;
}

int BestIconEntry(const QVector<IconEntry>& group, int width, int height) {
    int best = -1;
    for (int i = 0; i < group.size(); ++i) {
        if (best < 0) {
            best = i;
            continue;
        }
        const int now = Misfit(group[i], width, height);
        const int before = Misfit(group[best], width, height);
        if (now < before || (now == before && group[i].BitCount > group[best].BitCount))
            best = i;
    }
    return best;
}

draw::Picture LoadIconFromRes(const QString& name, int width, int height, int colourDepth, bool smallSize) {
    const int bigWidth = forms::GetSystemMetrics(forms::BigIconWidth);
    const int bigHeight = forms::GetSystemMetrics(forms::BigIconHeight);
    if (width == 0)
        width = bigWidth;
    else if (smallSize && width != bigWidth)
        width = forms::GetSystemMetrics(forms::SmallIconWidth);
    if (height == 0)
        height = bigHeight;
    else if (smallSize && height != bigHeight)
        height = forms::GetSystemMetrics(forms::SmallIconHeight);
    QByteArray resource = ResourceBytes(name);
    const QVector<IconEntry> group = ReadIconGroup(resource);
    const int chosen = ChooseEntry(group, width, height, colourDepth);
    if (chosen < 0 || width < 0 || height < 0)
        return {};
    QBuffer buffer(&resource);
    QImageReader reader(&buffer, "ico");
    if (!reader.jumpToImage(group[chosen].Image))
        return {};
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    return draw::Picture::IconFromImage(
        image.size() == QSize(width, height)
            ? image
            : image.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

} // namespace window
