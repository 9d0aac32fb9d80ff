#include "controls/dib_section.h"

#include "controls/dib_pixels.h"
#include "controls/mem_dc.h"

#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

using base::Colour;
using controls::pcDibSection;

namespace {

std::vector<quint8> RandomBytes(int pixels, quint32 seed) {
    QRandomGenerator random(seed);
    std::vector<quint8> bytes(size_t(pixels) * 4);
    for (quint8& byte : bytes)
        byte = quint8(random.bounded(256));
    return bytes;
}

void Fill(pcDibSection& bitmap, const std::vector<quint8>& bytes) {
    std::copy_n(bytes.begin(), size_t(bitmap.BytesPerScanLine()) * size_t(bitmap.Height()), bitmap.DIBSectionBitsPtr());
}

std::vector<quint8> Bytes(const pcDibSection& bitmap) {
    const quint8* first = bitmap.DIBSectionBitsPtr();
    return {first, first + bitmap.BytesPerScanLine() * bitmap.Height()};
}

// Two by two: red and green above blue and white.
QImage FourColours() {
    QImage image(2, 2, QImage::Format_RGB32);
    image.setPixel(0, 0, qRgb(255, 0, 0));
    image.setPixel(1, 0, qRgb(0, 255, 0));
    image.setPixel(0, 1, qRgb(0, 0, 255));
    image.setPixel(1, 1, qRgb(255, 255, 255));
    return image;
}

} // namespace

TEST(DibSection, KeepsRowsFromTheBottomUpInBlueGreenRedOrder) {
    pcDibSection bitmap;
    EXPECT_EQ(bitmap.DIBSectionBitsPtr(), nullptr);
    ASSERT_TRUE(bitmap.CreateFromPicture(draw::Picture::FromImage(FourColours())));
    EXPECT_EQ(bitmap.BytesPerScanLine(), 8);
    const std::vector<quint8> bytes = Bytes(bitmap);
    EXPECT_EQ(std::vector<quint8>(bytes.begin(), bytes.begin() + 3), std::vector<quint8>({255, 0, 0})) << "blue";
    EXPECT_EQ(std::vector<quint8>(bytes.begin() + 8, bytes.begin() + 11), std::vector<quint8>({0, 0, 255})) << "red";
    draw::Surface surface(4, 4);
    bitmap.PaintPicture(surface, 1, 2);
    EXPECT_EQ(surface.GetPixel(1, 2), Colour(0x0000FF));
    EXPECT_EQ(surface.GetPixel(2, 3), Colour(0xFFFFFF));
    EXPECT_EQ(surface.GetPixel(3, 2), Colour(0));
    ASSERT_TRUE(bitmap.Create(1, 5));
    EXPECT_EQ(bitmap.BytesPerScanLine(), 4);
    EXPECT_EQ(Bytes(bitmap), std::vector<quint8>(20, 0));
}

TEST(DibSection, RefusesSizesThatCannotBeHadAndThenDoesNothing) {
    pcDibSection bitmap;
    bitmap.SetUseDrawDib(true);
    EXPECT_FALSE(bitmap.Create(32767, 32767));
    EXPECT_FALSE(bitmap.Create(0, 1));
    EXPECT_FALSE(bitmap.Create(-3, 1));
    EXPECT_TRUE(bitmap.UseDrawDib()) << "kept by Create";
    EXPECT_FALSE(bitmap.CreateFromPicture(draw::Picture()));
    bitmap.Lighten(50);
    bitmap.ModifyHLS(2, 2, 2);
    bitmap.RandomiseBits();
    bitmap.Clear();
    bitmap.LoadPictureBlt(draw::Surface(3, 3));
    draw::Surface surface(3, 3);
    bitmap.PaintPicture(surface);
    EXPECT_FALSE(bitmap.AlphaPaintPicture(surface));
    EXPECT_EQ(bitmap.Resample(4, 4), nullptr);
    EXPECT_FALSE(bitmap.SavePicture(QStringLiteral("never-made.bmp")));
    EXPECT_FALSE(QFile::exists(QStringLiteral("never-made.bmp")));
}

TEST(DibSection, SavesABitmapFileThatAnotherReaderUnderstands) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.bmp"));
    pcDibSection bitmap;
    ASSERT_TRUE(bitmap.CreateFromHBitmap(FourColours()));
    ASSERT_TRUE(bitmap.SavePicture(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_EQ(bytes.size(), 14 + 44 + 16);
    EXPECT_EQ(bytes.left(2), QByteArray("BM"));
    const QImage read = QImage(path).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(read, FourColours());

    ASSERT_TRUE(bitmap.Create(1, 1)); // over the longer file
    ASSERT_TRUE(bitmap.SavePicture(path));
    EXPECT_EQ(QFile(path).size(), 14 + 44 + 4);
    EXPECT_TRUE(bitmap.LastError().description.isEmpty());
    EXPECT_FALSE(bitmap.SavePicture(folder.filePath(QStringLiteral("no/such/folder.bmp"))));
    EXPECT_EQ(bitmap.LastError().source, QStringLiteral("Quorvane.cDIBSection"));
    EXPECT_FALSE(bitmap.LastError().description.isEmpty());
}

TEST(DibSection, AWriteThatFailsHalfwayIsReported) {
    if (!QFile::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no device that is always full";
    pcDibSection bitmap;
    ASSERT_TRUE(bitmap.Create(100, 100));
    EXPECT_FALSE(bitmap.SavePicture(QStringLiteral("/dev/full")));
    EXPECT_FALSE(bitmap.LastError().description.isEmpty());
}

TEST(DibSection, BlendsInPlainCode) {
    pcDibSection source;
    pcDibSection target;
    ASSERT_TRUE(source.Create(40, 30));
    ASSERT_TRUE(target.Create(40, 30));
    const std::vector<quint8> above = RandomBytes(40 * 30, 1);
    const std::vector<quint8> below = RandomBytes(40 * 30, 2);
    Fill(source, above);
    for (int alpha = 0; alpha <= 255; alpha += 3) {
        Fill(target, below);
        pcDibSection::CodeAlphaBlend(source, target, -1, -1, 0, 0, 0, 0, alpha);
        const std::vector<quint8> result = Bytes(target);
        for (size_t i = 0; i < result.size(); ++i) {
            const double exact = (1 - alpha / 255.0) * below[i] + above[i] * (alpha / 255.0);
            ASSERT_EQ(int(result[i]), i % 4 == 3 ? int(below[i]) : int(std::nearbyint(exact))) << alpha << " at " << i;
        }
    }
}

TEST(DibSection, BlendOffsetsAreCutToBothSurfaces) {
    pcDibSection source;
    pcDibSection target;
    ASSERT_TRUE(source.Create(3, 1));
    ASSERT_TRUE(target.Create(4, 1));
    Fill(source, {10, 0, 0, 0, 20, 0, 0, 0, 30, 0, 0, 0});
    const auto blues = [&](int width, int targetX, int sourceX) {
        target.Clear();
        pcDibSection::CodeAlphaBlend(source, target, width, -1, targetX, 0, sourceX, 0, 255);
        const std::vector<quint8> bytes = Bytes(target);
        return std::vector<int>{bytes[0], bytes[4], bytes[8], bytes[12]};
    };
    EXPECT_EQ(blues(-1, 0, 0), std::vector<int>({10, 20, 30, 0}));
    EXPECT_EQ(blues(-1, 2, 0), std::vector<int>({0, 0, 10, 20}));
    EXPECT_EQ(blues(2, 0, 2), std::vector<int>({30, 0, 0, 0}));
    EXPECT_EQ(blues(3, -1, 0), std::vector<int>({20, 30, 0, 0}));
    EXPECT_EQ(blues(99, 1, -1), std::vector<int>({0, 0, 10, 20}));
    EXPECT_EQ(blues(-1, 9, 0), std::vector<int>({0, 0, 0, 0}));
    EXPECT_EQ(blues(-1, std::numeric_limits<int>::min(), 0), std::vector<int>({0, 0, 0, 0}));
}

TEST(DibSection, HueLightnessAndSaturationGoThereAndBack) {
    for (int red = 0; red < 256; red += 5)
        for (int green = 0; green < 256; green += 3)
            for (int blue = 0; blue < 256; ++blue) {
                const controls::RgbBytes pixel{quint8(red), quint8(green), quint8(blue)};
                ASSERT_EQ(controls::FromHls(controls::ToHls(pixel)), pixel) << red << ',' << green << ',' << blue;
            }
    const controls::Hls orange = controls::ToHls({255, 128, 0});
    EXPECT_NEAR(orange.hue, 128 / 255.0, 1e-12);
    EXPECT_NEAR(orange.lightness, 0.5, 1e-12);
    EXPECT_NEAR(orange.saturation, 1, 1e-12);
    EXPECT_NEAR(controls::ToHls({255, 0, 51}).hue, -0.2, 1e-12) << "red above blue: below 0";
    EXPECT_NEAR(controls::ToHls({0, 255, 51}).hue, 2.2, 1e-12);
    EXPECT_NEAR(controls::ToHls({51, 0, 255}).hue, 4.2, 1e-12);
    EXPECT_EQ(controls::FromHls({6.5, 0.5, 1}), controls::FromHls({0.5, 0.5, 1}));
    EXPECT_EQ(controls::FromHls({-6.5, 0.5, 1}), controls::FromHls({-0.5, 0.5, 1}));
}

// The table's routine against the plain one over every order and equality of channels.
TEST(DibSection, TheFastRecolouringEqualsThePlainOneByteForByte) {
    std::vector<quint8> pixels = RandomBytes(60000, 7);
    constexpr int levels[] = {0, 1, 2, 63, 127, 128, 129, 200, 254, 255};
    for (const int red : levels)
        for (const int green : levels)
            for (const int blue : levels)
                pixels.insert(pixels.end(), {quint8(blue), quint8(green), quint8(red), quint8(red ^ blue)});
    const auto count = qsizetype(pixels.size() / 4);
    const controls::HlsFactors factors[] = {{1, 1, 1},       {1, 1.3, 1}, {1, 0.4, 1},     {1, 0, 1},  {1, -0.5, 1},
                                            {1, 1, 0},       {1, 1, 2.5}, {1, 3, 0.1},     {0, 1, 1},  {0.5, 1.1, 0.9},
                                            {1.7, 0.9, 1},   {-3, 1, 1},  {100, 1, 1},     {1, 1, -1}, {1e300, 1, 1},
                                            {1, 1e300, 1e9}, {1, NAN, 1}, {INFINITY, 1, 1}};
    for (const controls::HlsFactors& factor : factors) {
        std::vector<quint8> plain = pixels;
        std::vector<quint8> fast = pixels;
        controls::ScaleHlsPlain(plain.data(), count, factor);
        controls::ScaleHls(fast.data(), count, factor);
        EXPECT_TRUE(plain == fast) << factor.hue << ' ' << factor.lightness << ' ' << factor.saturation;
    }
}

TEST(DibSection, LightensAndKeepsGrayGray) {
    pcDibSection bitmap;
    ASSERT_TRUE(bitmap.Create(200, 200));
    const std::vector<quint8> before = RandomBytes(200 * 200, 3);
    Fill(bitmap, before);
    bitmap.Lighten(0);
    EXPECT_EQ(Bytes(bitmap), before);
    bitmap.Lighten(-100);
    std::vector<quint8> bytes = Bytes(bitmap);
    for (size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(bytes[i], i % 4 == 3 ? before[i] : 0);
    Fill(bitmap, before);
    bitmap.Lighten(1000000);
    bytes = Bytes(bitmap);
    EXPECT_EQ(std::count(bytes.begin(), bytes.begin() + 3, 255), 3);

    ASSERT_TRUE(bitmap.Create(1, 1));
    Fill(bitmap, {100, 100, 100, 9});
    bitmap.ModifyHLS(7, 1, 9);
    EXPECT_EQ(Bytes(bitmap), std::vector<quint8>({100, 100, 100, 9}));
    bitmap.ModifyHLS(7, 1.5, 9);
    EXPECT_EQ(Bytes(bitmap), std::vector<quint8>({150, 150, 150, 9}));
}

TEST(DibSection, ResamplesBilinearlyFromItsFirstPixel) {
    pcDibSection bitmap;
    ASSERT_TRUE(bitmap.Create(2, 2));
    Fill(bitmap, {0, 0, 0, 0, 100, 0, 0, 0, 200, 0, 0, 0, 40, 0, 0, 0});
    const auto blues = [](const pcDibSection& of) {
        std::vector<int> values;
        for (int i = 0; i < of.Width() * of.Height(); ++i)
            values.push_back(of.DIBSectionBitsPtr()[i * 4]);
        return values;
    };
    EXPECT_EQ(Bytes(*bitmap.Resample(2, 2)), Bytes(bitmap));
    // ratios of 1/4 along x and 1/3 along y: the far ends are not reached
    const auto larger = bitmap.Resample(3, 4);
    EXPECT_EQ(larger->Width(), 4);
    EXPECT_EQ(larger->Height(), 3);
    EXPECT_EQ(blues(*larger), std::vector<int>({0, 25, 50, 75, 67, 70, 73, 77, 133, 115, 97, 78}));
    EXPECT_EQ(blues(*bitmap.Resample(1, 1)), std::vector<int>({0}));
    EXPECT_EQ(bitmap.Resample(0, 5), nullptr);
    EXPECT_EQ(bitmap.Resample(32767, 32767), nullptr);
    const auto line = bitmap.Resample(1, 32767);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(blues(*line).back(), 100);
}

// Widths that are no multiple of what is computed at once, both ways, against the formula one channel at a time.
TEST(DibSection, EveryResampledChannelFollowsTheFormula) {
    pcDibSection bitmap;
    ASSERT_TRUE(bitmap.Create(13, 7));
    std::vector<quint8> source(size_t(13 * 7 * 4));
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = quint8(i * i * 37 + i * 11);
    Fill(bitmap, source);
    for (const auto& [width, height] : {std::pair(26, 14), std::pair(17, 5), std::pair(5, 9), std::pair(1, 3)}) {
        const auto resized = bitmap.Resample(height, width);
        ASSERT_NE(resized, nullptr);
        const float ratioX = 12.0F / float(width);
        const float ratioY = 6.0F / float(height);
        for (int at = 0; at < width * height * 4; ++at) {
            const float x = float(at / 4 % width) * ratioX;
            const float y = float(at / 4 / width) * ratioY;
            const auto channel = [&](int column, int row) {
                return float(source[size_t((std::min(row, 6) * 13 + std::min(column, 12)) * 4 + at % 4)]);
            };
            const auto along = [&](int row) {
                const float first = channel(int(x), row);
                return first + (channel(int(x) + 1, row) - first) * (x - std::floor(x));
            };
            const float expected = along(int(y)) + (along(int(y) + 1) - along(int(y))) * (y - std::floor(y));
            ASSERT_NEAR(resized->DIBSectionBitsPtr()[at], expected, 0.501) << width << " by " << height << " at " << at;
        }
    }
}

TEST(DibSection, NoiseOnlyDarkensAndGrayNoiseKeepsGray) {
    pcDibSection bitmap;
    ASSERT_TRUE(bitmap.Create(50, 50));
    const std::vector<quint8> even(size_t(50 * 50 * 4), 200);
    Fill(bitmap, even);
    bitmap.RandomiseBits(true);
    const std::vector<quint8> gray = Bytes(bitmap);
    Fill(bitmap, even);
    bitmap.RandomiseBits(false);
    const std::vector<quint8> coloured = Bytes(bitmap);
    int unequal = 0;
    for (size_t i = 0; i < gray.size(); i += 4) {
        ASSERT_TRUE(gray[i] == gray[i + 1] && gray[i] == gray[i + 2] && gray[i] <= 200);
        ASSERT_TRUE(coloured[i] <= 200 && coloured[i + 1] <= 200 && coloured[i + 2] <= 200);
        unequal += coloured[i] != coloured[i + 1] ? 1 : 0;
    }
    EXPECT_GT(unequal, 2000);
    EXPECT_NE(gray[0] + gray[4] * 256 + gray[8] * 65536, 200 + 200 * 256 + 200 * 65536);
}

TEST(MemDc, GrowsAndNeverShrinks) {
    controls::pcMemDC memory;
    EXPECT_FALSE(memory.hdc().IsDrawable());
    memory.SetWidth(10);
    EXPECT_FALSE(memory.hdc().IsDrawable());
    memory.SetHeight(4);
    ASSERT_TRUE(memory.hdc().IsDrawable());
    memory.hdc().Cls(Colour(0xFFFFFF));
    memory.SetWidth(3);
    EXPECT_EQ(memory.Width(), 10);
    draw::Surface surface(12, 6);
    memory.Draw(surface, 0, 0, 0, -1, 1, 1);
    EXPECT_EQ(surface.GetPixel(10, 4), Colour(0xFFFFFF));
    EXPECT_EQ(surface.GetPixel(11, 4), Colour(0));
    memory.SetWidth(20);
    EXPECT_EQ(memory.hdc().GetPixel(0, 0), Colour(0)) << "a new bitmap";
    memory.CreateFromPicture(draw::Picture::FromImage(FourColours()));
    EXPECT_EQ(memory.Width(), 2);
    EXPECT_EQ(memory.hdc().GetPixel(0, 0), Colour(0x0000FF));
}
