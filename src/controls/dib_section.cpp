#include "controls/dib_section.h"

#include "base/numbers.h"
#include "controls/dib_pixels.h"

#include <QDateTime>
#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>
#include <algorithm>

namespace controls {
namespace {

constexpr int fileHeaderSize = 14;
constexpr int infoHeaderSize = 40;
// The header is followed by one entry of four bytes that is always 0.
constexpr int pixelOffset = fileHeaderSize + infoHeaderSize + 4;

template <typename Number> void Put(QByteArray& bytes, int offset, Number value) {
    qToLittleEndian(value, bytes.data() + offset);
}

QByteArray FileHeaders(int width, int height, quint32 imageSize) {
    QByteArray bytes(pixelOffset, '\0');
    bytes[0] = 'B';
    bytes[1] = 'M';
    Put<quint32>(bytes, 2, quint32(pixelOffset) + imageSize);
    Put<quint32>(bytes, 10, quint32(pixelOffset));
    Put<quint32>(bytes, 14, quint32(infoHeaderSize));
    Put<qint32>(bytes, 18, width);
    Put<qint32>(bytes, 22, height);
    Put<quint16>(bytes, 26, 1);  // planes
    Put<quint16>(bytes, 28, 32); // bits a pixel
    Put<quint32>(bytes, 34, imageSize);
    return bytes;
}

} // namespace

bool pcDibSection::Create(int width, int height) {
    const bool drawDib = useDrawDib_;
    ClearUp();
    const bool created = CreateDIB(width, height);
    useDrawDib_ = drawDib;
    return created;
}

bool pcDibSection::CreateDIB(int width, int height) {
    const bool allocated = Allocate(width, height);
    if (allocated)
        Clear();
    return allocated;
}

bool pcDibSection::Allocate(int width, int height) {
    if (!draw::IsDrawableSize(QSize(width, height)))
        return false;
    width_ = width;
    height_ = height;
    bits_ = std::make_unique_for_overwrite<quint32[]>(size_t(PixelCount()));
    return true;
}

bool pcDibSection::CreateFromHBitmap(const QImage& bitmap) {
    return CreateFromPicture(draw::Picture::FromImage(bitmap));
}

bool pcDibSection::CreateFromPicture(const draw::Picture& picture) {
    if (picture.IsEmpty() || !Create(picture.Width(), picture.Height()))
        return false;
    LoadPictureBlt(draw::Surface(picture));
    return true;
}

void pcDibSection::ClearUp() {
    bits_.reset();
    width_ = 0;
    height_ = 0;
    useDrawDib_ = false;
}

void pcDibSection::Clear() { std::fill_n(bits_.get(), PixelCount(), 0U); }

QImage pcDibSection::hDib() const {
    if (IsEmpty())
        return {};
    QImage image(width_, height_, QImage::Format_RGB32);
    for (int y = 0; y < height_; ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const quint32* pixels = Row(height_ - 1 - y);
        for (int x = 0; x < width_; ++x)
            line[x] = 0xFF000000U | qFromLittleEndian(pixels[x]);
    }
    return image;
}

draw::Surface pcDibSection::hdc() const { return draw::Surface(draw::Picture::FromImage(hDib())); }

void pcDibSection::StoreImage(const QImage& image) {
    for (int y = 0; y < height_; ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        quint32* pixels = Row(height_ - 1 - y);
        for (int x = 0; x < width_; ++x)
            pixels[x] = (pixels[x] & qToLittleEndian(0xFF000000U)) | qToLittleEndian(line[x] & 0x00FFFFFFU);
    }
}

void pcDibSection::LoadPictureBlt(const draw::Surface& source, int sourceLeft, int sourceTop, int width, int height,
                                  quint32 operation) {
    if (IsEmpty())
        return;
    draw::Surface own = hdc();
    if (own.BitBlt(0, 0, width < 0 ? width_ : width, height < 0 ? height_ : height, source, sourceLeft, sourceTop,
                   operation))
        StoreImage(own.Image());
}

// A DrawDib handle changes how the bitmap reaches a screen of few colours, not what it shows: both ways are one copy
// here.
void pcDibSection::PaintPicture(draw::Surface& context, int left, int top, int width, int height, int sourceLeft,
                                int sourceTop, quint32 operation) const {
    if (!IsEmpty())
        context.BitBlt(left, top, width < 0 ? width_ : width, height < 0 ? height_ : height, hdc(), sourceLeft,
                       sourceTop, operation);
}

bool pcDibSection::AlphaPaintPicture(draw::Surface& context, int left, int top, int width, int height, int sourceLeft,
                                     int sourceTop, int constantAlpha) {
    const int shownWidth = width < 0 ? width_ : width;
    const int shownHeight = height < 0 ? height_ : height;
    if (context.AlphaBlend(left, top, shownWidth, shownHeight, hdc(), sourceLeft, sourceTop, shownWidth, shownHeight,
                           constantAlpha))
        return true;
    return Fail(QStringLiteral("The parameter is incorrect."));
}

void pcDibSection::CodeAlphaBlend(const pcDibSection& source, pcDibSection& target, int width, int height, int targetX,
                                  int targetY, int sourceX, int sourceY, int constantAlpha) {
    const qint64 wantedWidth = width == -1 ? std::min(source.width_, target.width_) : width;
    const qint64 wantedHeight = height == -1 ? std::min(source.height_, target.height_) : height;
    // Where a negative offset starts outside, the copy starts later in both.
    const qint64 skipX = std::max({qint64(0), -qint64(targetX), -qint64(sourceX)});
    const qint64 skipY = std::max({qint64(0), -qint64(targetY), -qint64(sourceY)});
    const qint64 endX = std::min({wantedWidth, qint64(target.width_) - targetX, qint64(source.width_) - sourceX});
    const qint64 endY = std::min({wantedHeight, qint64(target.height_) - targetY, qint64(source.height_) - sourceY});
    if (&source == &target) {
        const std::unique_ptr<pcDibSection> copy = source.Resample(source.height_, source.width_);
        if (copy != nullptr)
            CodeAlphaBlend(*copy, target, width, height, targetX, targetY, sourceX, sourceY, constantAlpha);
        return;
    }
    for (qint64 y = skipY; y < endY && skipX < endX; ++y)
        BlendPixels(target.Row(int(targetY + y)) + targetX + skipX, source.Row(int(sourceY + y)) + sourceX + skipX,
                    int(endX - skipX), constantAlpha);
}

void pcDibSection::Lighten(int percent) { ScaleHls(DIBSectionBitsPtr(), PixelCount(), {1, 1 + percent / 100.0, 1}); }

void pcDibSection::ModifyHLS(double hue, double lightness, double saturation) {
    ScaleHls(DIBSectionBitsPtr(), PixelCount(), {hue, lightness, saturation});
}

void pcDibSection::RandomiseBits(bool gray) {
    const auto seed = static_cast<quint32>(QDateTime::currentMSecsSinceEpoch());
    QRandomGenerator random(seed);
    for (qsizetype i = 0; i < PixelCount(); ++i) {
        quint8* pixel = DIBSectionBitsPtr() + i * 4;
        double factor = random.generateDouble();
        for (int channel = 0; channel < 3; ++channel) {
            if (!gray && channel > 0)
                factor = random.generateDouble();
            pixel[channel] = quint8(base::RoundToInt(factor * 255 * pixel[channel] / 255));
        }
    }
}

std::unique_ptr<pcDibSection> pcDibSection::Resample(int newHeight, int newWidth) const {
    auto resized = std::make_unique<pcDibSection>();
    if (IsEmpty() || !resized->Allocate(newWidth, newHeight))
        return nullptr;
    if (newWidth == width_ && newHeight == height_)
        std::copy_n(bits_.get(), PixelCount(), resized->bits_.get());
    else
        ResampleBilinear({DIBSectionBitsPtr(), width_, height_}, resized->DIBSectionBitsPtr(), newWidth, newHeight);
    return resized;
}

bool pcDibSection::SavePicture(const QString& fileName) {
    if (IsEmpty())
        return Fail(QStringLiteral("There is no picture to write."));
    const qint64 imageSize = qint64(BytesPerScanLine()) * height_;
    const QByteArray headers = FileHeaders(width_, height_, quint32(imageSize));
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(headers) != headers.size() ||
        file.write(reinterpret_cast<const char*>(bits_.get()), imageSize) != imageSize || !file.flush())
        return Fail(file.errorString());
    return true;
}

bool pcDibSection::Fail(const QString& description) {
    lastError_ = {QStringLiteral("Quorvane.cDIBSection"), description};
    return false;
}

} // namespace controls
