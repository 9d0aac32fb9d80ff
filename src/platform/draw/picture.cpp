#include "draw/picture.h"

#include "draw/pixels.h"

#include <QFileInfo>
#include <QImageReader>

namespace draw {

Picture::Picture(PictureType type, const QImage& image) {
    if (image.isNull() || !IsDrawableSize(image.size()))
        return;
    type_ = type;
    image_ =
        image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    image_.setDevicePixelRatio(1.0);
}

Picture Picture::FromImage(const QImage& image) { return Picture(PictureType::Bitmap, image); }

Picture Picture::IconFromImage(const QImage& image) { return Picture(PictureType::Icon, image); }

Picture LoadPicture(const QString& fileName) {
    QImageReader reader(fileName);
    reader.setAutoTransform(true);
    if (fileName.isEmpty() || !reader.canRead())
        return Picture();
    if (const QSize size = reader.size(); size.isValid() && !IsDrawableSize(size))
        return Picture();
    const QImage image = reader.read();
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    const bool isIcon = suffix == QStringLiteral("ico") || suffix == QStringLiteral("svg");
    return isIcon ? Picture::IconFromImage(image) : Picture::FromImage(image);
}

} // namespace draw
