#include "forms/colour_key.h"

#include "forms/form.h"
#include "forms/picture_box.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr auto key = base::Colour::FromRgb(0xF8, 0xB8, 0xF7);

} // namespace

TEST(ColourKey, FindsExactlyTheKeyedPixels) {
    QImage image(8, 4, QImage::Format_RGB32);
    image.fill(Qt::black);
    const QRgb keyed = qRgb(0xF8, 0xB8, 0xF7);
    for (const QPoint at :
         {QPoint(0, 0), QPoint(1, 0), QPoint(7, 0), QPoint(0, 1), QPoint(1, 1), QPoint(3, 2), QPoint(0, 3)})
        image.setPixel(at, keyed);
    image.setPixel(4, 2, qRgb(0xF8, 0xB8, 0xF6));
    const QRegion expected = QRegion(0, 0, 2, 2) + QRegion(7, 0, 1, 1) + QRegion(3, 2, 1, 1) + QRegion(0, 3, 1, 1);
    EXPECT_EQ(forms::KeyedPixels(image, image.rect(), keyed), expected);
    EXPECT_EQ(forms::KeyedPixels(image, QRect(1, 1, 100, 100), keyed), expected & QRect(1, 1, 7, 3));
}

TEST(ColourKey, FindsItsPixelsOnAScreenOfFewColours) {
    QImage image(9, 5, QImage::Format_RGB16);
    image.fill(Qt::black);
    const QRgb keyed = qRgb(0xF8, 0xB8, 0xF7);
    for (const QPoint at : {QPoint(2, 1), QPoint(3, 1), QPoint(8, 4)})
        image.setPixelColor(at, QColor(keyed));
    const QRegion expected = QRegion(2, 1, 2, 1) + QRegion(8, 4, 1, 1);
    EXPECT_EQ(forms::KeyedPixels(image, image.rect(), keyed), expected);
    EXPECT_EQ(forms::KeyedPixels(image, QRect(3, 1, 100, 100), keyed), expected & QRect(3, 1, 6, 4));
    EXPECT_TRUE(forms::KeyedPixels(image, QRect(20, 20, 5, 5), keyed).isEmpty());
}

TEST(ColourKey, AnyPixelOfAnyControlCountsAndChangesFollow) {
    forms::Form form("FrmTest", 1500, 1500);
    forms::PictureBox box(form.Client(), "Picture1");
    form.SetBackColor(base::Colour(0x404040));
    box.Move(150, 150, 300, 300);
    box.SetBackColor(key);
    form.SetColourKey(key);
    form.Show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
    EXPECT_TRUE(QTest::qWaitFor([&form] { return form.KeyedRegion() == QRegion(10, 10, 20, 20); }));
    box.SetBackColor(base::Colour(0));
    EXPECT_TRUE(QTest::qWaitFor([&form] { return form.KeyedRegion().isEmpty(); }));
}
