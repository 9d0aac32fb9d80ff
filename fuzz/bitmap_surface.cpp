// Bitmap surfaces: operations of any numbers on bitmaps of any bytes. The fast routines give what the plain ones give,
// byte for byte, and what lies outside either bitmap is left alone.
#include "controls/dib_pixels.h"
#include "controls/dib_section.h"
#include "fuzz_support.h"

#include <algorithm>
#include <vector>

namespace {

using controls::pcDibSection;

void Make(pcDibSection& bitmap, fuzz::Reader& reader) {
    const bool made = bitmap.Create(reader.Number(0, 33), reader.Number(0, 9));
    fuzz::Require(made == (bitmap.DIBSectionBitsPtr() != nullptr), "a bitmap that was made has pixels");
    const qsizetype count = qsizetype(bitmap.BytesPerScanLine()) * bitmap.Height();
    const QByteArray bytes = reader.Bytes(qMin<qsizetype>(count, 64));
    for (qsizetype i = 0; made && i < count && !bytes.isEmpty(); ++i)
        bitmap.DIBSectionBitsPtr()[i] = quint8(bytes.at(i % bytes.size()));
}

std::vector<quint8> Bytes(const pcDibSection& bitmap) {
    const quint8* first = bitmap.DIBSectionBitsPtr();
    if (first == nullptr)
        return {};
    return {first, first + qsizetype(bitmap.BytesPerScanLine()) * bitmap.Height()};
}

void CheckHls(const pcDibSection& bitmap, fuzz::Reader& reader) {
    const auto factor = [&reader] { return reader.Byte() % 8 == 0 ? reader.Real() : reader.Number(0, 400) / 100.0; };
    const controls::HlsFactors factors{factor(), factor(), factor()};
    std::vector<quint8> plain = Bytes(bitmap);
    std::vector<quint8> fast = plain;
    controls::ScaleHlsPlain(plain.data(), qsizetype(plain.size() / 4), factors);
    controls::ScaleHls(fast.data(), qsizetype(fast.size() / 4), factors);
    fuzz::Require(plain == fast, "the fast recolouring gives what the plain one gives");
}

// One pixel blended as it is told to be.
int Blended(int below, int above, int alpha) { return (2 * (below * (255 - alpha) + above * alpha) + 255) / 510; }

void CheckBlend(const pcDibSection& source, pcDibSection& target, fuzz::Reader& reader) {
    const std::vector<quint8> before = Bytes(target);
    const auto place = [&reader] { return reader.Number(-20, 40); };
    const int width = place();
    const int height = place();
    const int targetX = place();
    const int targetY = place();
    const int sourceX = place();
    const int sourceY = place();
    const int alpha = reader.Byte();
    pcDibSection::CodeAlphaBlend(source, target, width, height, targetX, targetY, sourceX, sourceY, alpha);
    const std::vector<quint8> after = Bytes(target);
    fuzz::Require(after.size() == before.size(), "blending keeps the size");
    if (width < 0 || height < 0 || source.DIBSectionBitsPtr() == nullptr)
        return;
    const std::vector<quint8> above = Bytes(source);
    for (int y = 0; y < target.Height(); ++y) {
        for (int x = 0; x < target.Width(); ++x) {
            const int fromX = x - targetX + sourceX;
            const int fromY = y - targetY + sourceY;
            const bool inside = x >= targetX && x - targetX < width && y >= targetY && y - targetY < height &&
                                fromX >= 0 && fromX < source.Width() && fromY >= 0 && fromY < source.Height();
            const size_t at = (size_t(y) * size_t(target.Width()) + size_t(x)) * 4;
            for (size_t channel = 0; channel < 3; ++channel) {
                const int expected =
                    inside
                        ? Blended(before[at + channel],
                                  above[(size_t(fromY) * size_t(source.Width()) + size_t(fromX)) * 4 + channel], alpha)
                        : before[at + channel];
                fuzz::Require(after[at + channel] == expected, "a blended pixel is the mean, any other stays");
            }
        }
    }
}

void CheckResample(const pcDibSection& bitmap, fuzz::Reader& reader) {
    const int height = reader.Number(-2, 40);
    const int width = reader.Number(-2, 40);
    const std::unique_ptr<pcDibSection> copy = bitmap.Resample(height, width);
    fuzz::Require((copy != nullptr) == (width > 0 && height > 0 && bitmap.DIBSectionBitsPtr() != nullptr),
                  "a size that can be had is had");
    if (!copy)
        return;
    const std::vector<quint8> from = Bytes(bitmap);
    const std::vector<quint8> to = Bytes(*copy);
    for (size_t channel = 0; channel < 3; ++channel) {
        quint8 low = 255;
        quint8 high = 0;
        for (size_t at = channel; at < from.size(); at += 4) {
            low = std::min(low, from[at]);
            high = std::max(high, from[at]);
        }
        for (size_t at = channel; at < to.size(); at += 4)
            fuzz::Require(to[at] >= low && to[at] <= high, "a resampled pixel lies between those of the source");
    }
}

void CheckFile(pcDibSection& bitmap) {
    const QString path = fuzz::Folder() + QStringLiteral("/saved.bmp");
    if (!bitmap.SavePicture(path)) {
        fuzz::Require(!bitmap.LastError().description.isEmpty(), "a failure has its text");
        return;
    }
    const QImage saved(path);
    if (bitmap.DIBSectionBitsPtr() != nullptr)
        fuzz::Require(saved.convertToFormat(QImage::Format_RGB32) ==
                          bitmap.hDib().convertToFormat(QImage::Format_RGB32),
                      "a saved bitmap reads back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    pcDibSection first;
    pcDibSection second;
    Make(first, reader);
    Make(second, reader);
    CheckHls(first, reader);
    CheckBlend(first, second, reader);
    CheckResample(second, reader);
    second.Lighten(reader.Number(-300, 300));
    second.RandomiseBits(reader.Byte() % 2 == 0);
    draw::Surface surface(reader.Number(0, 30), reader.Number(0, 30));
    const auto place = [&reader] { return reader.Number(-20, 40); };
    second.PaintPicture(surface, place(), place(), place(), place(), place(), place());
    second.AlphaPaintPicture(surface, place(), place(), place(), place(), place(), place(), place() * 10);
    first.LoadPictureBlt(surface, place(), place(), place(), place());
    CheckFile(first);
    return 0;
}
