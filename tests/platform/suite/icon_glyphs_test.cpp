#include "suite/icon_glyphs.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace {

using suite::Glyph;

QImage Drawn(Glyph glyph, int size, const QColor& ground) {
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(ground);
    QPainter(&image).drawPixmap(0, 0, suite::GlyphPixmap(glyph, size));
    return image;
}

// The share of pixels that stand out clearly from the ground.
double Visible(const QImage& image, const QColor& ground) {
    int seen = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            const int distance = std::abs(colour.red() - ground.red()) + std::abs(colour.green() - ground.green()) +
                                 std::abs(colour.blue() - ground.blue());
            seen += distance > 96 ? 1 : 0;
        }
    return double(seen) / (image.width() * image.height());
}

TEST(IconGlyphs, AreSeenAndToldApartAtEverySizeAndGround) {
    const QColor grounds[] = {QColor(0xC0, 0xC0, 0xC0), Qt::white, Qt::black, QColor(0x40, 0x40, 0x40)};
    for (const int size : {16, 24, 32}) {
        for (const QColor& ground : grounds) {
            QList<QImage> all;
            for (int glyph = int(Glyph::Unknown); glyph <= int(Glyph::Software); ++glyph) {
                const QImage image = Drawn(Glyph(glyph), size, ground);
                EXPECT_GT(Visible(image, ground), 0.10)
                    << glyph << " at " << size << " on " << ground.name().toStdString();
                EXPECT_FALSE(all.contains(image)) << glyph;
                all << image;
            }
        }
    }
}

TEST(IconGlyphs, NothingIsDrawnForNone) {
    EXPECT_TRUE(suite::GlyphPixmap(Glyph::None, 16).isNull());
    EXPECT_TRUE(suite::GlyphPixmap(Glyph::Disk, 0).isNull());
    EXPECT_TRUE(suite::GlyphPixmap(Glyph::Disk, -3).isNull());
    EXPECT_EQ(suite::GlyphPixmap(Glyph::Disk, 24).size(), QSize(24, 24));
}

} // namespace
