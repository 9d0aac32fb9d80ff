#include "draw/text_layout.h"
#include "surface_art.h"

#include <QFontMetrics>
#include <gtest/gtest.h>

using draw_test::black;
using draw_test::white;

namespace {

// The rectangle around all pixels that are not black.
QRect Inked(const draw::Surface& surface) {
    QRect inked;
    for (int y = 0; y < surface.Height(); ++y)
        for (int x = 0; x < surface.Width(); ++x)
            if (surface.GetPixel(x, y) != black)
                inked |= QRect(x, y, 1, 1);
    return inked;
}

QRect InkOf(const QString& text, const QRect& rect, unsigned format) {
    draw::Surface surface(200, 100);
    surface.SetTextColor(white);
    surface.DrawTextW(text, rect, format);
    return Inked(surface);
}

QStringList Lines(const QString& text, int width, unsigned format) {
    QStringList lines;
    for (const draw::TextLine& line : draw::LayOutText(text, QFontMetrics(QFont()), width, format).lines)
        lines << line.text;
    return lines;
}

} // namespace

TEST(Text, AlignsInItsRectangle) {
    const QRect box(50, 20, 100, 60);
    const QString text = QStringLiteral("HIH");
    const QRect left = InkOf(text, box, draw::DT_SINGLELINE);
    const QRect centre = InkOf(text, box, draw::DT_SINGLELINE | draw::DT_CENTER | draw::DT_VCENTER);
    const QRect right = InkOf(text, box, draw::DT_SINGLELINE | draw::DT_RIGHT | draw::DT_BOTTOM);
    ASSERT_FALSE(left.isEmpty());
    EXPECT_NEAR(left.left(), 50, 3);
    EXPECT_NEAR(centre.center().x(), 100, 2);
    EXPECT_NEAR(right.right(), 149, 3);
    EXPECT_LT(left.top(), centre.top());
    EXPECT_LT(centre.top(), right.top());
    EXPECT_EQ(InkOf(text, box, draw::DT_VCENTER).top(), left.top()) << "vertical alignment needs a single line";
}

TEST(Text, IsCutAtTheRectangleUnlessNotClipped) {
    const QRect box(50, 20, 10, 8);
    const QString text = QStringLiteral("MMMMMMMM");
    EXPECT_TRUE(box.contains(InkOf(text, box, draw::DT_SINGLELINE)));
    EXPECT_GT(InkOf(text, box, draw::DT_SINGLELINE | draw::DT_NOCLIP).width(), 20);
}

TEST(Text, WrapsAtBlanksAndKeepsAWordThatIsTooWide) {
    const QFontMetrics metrics{QFont()};
    const int width = metrics.horizontalAdvance(QStringLiteral("one two"));
    EXPECT_EQ(Lines(QStringLiteral("one two three"), width, draw::DT_WORDBREAK),
              QStringList({QStringLiteral("one two"), QStringLiteral("three")}));
    EXPECT_EQ(Lines(QStringLiteral("one two"), 1, draw::DT_WORDBREAK),
              QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    EXPECT_EQ(Lines(QStringLiteral("one\r\n\ntwo"), 1000, draw::DT_WORDBREAK),
              QStringList({QStringLiteral("one"), QString(), QStringLiteral("two")}));
    EXPECT_EQ(Lines(QString(), 10, draw::DT_WORDBREAK), QStringList(QString()));
}

TEST(Text, CalculatedRectangleFitsTheLinesAndDrawsNothing) {
    draw::Surface surface(100, 100);
    surface.SetTextColor(white);
    const QFontMetrics metrics(surface.Font());
    const int width = metrics.horizontalAdvance(QStringLiteral("one two"));
    QRect rect(5, 6, width, 1);
    const int height = surface.DrawTextW(QStringLiteral("one two three"), rect,
                                         draw::DT_WORDBREAK | draw::DT_CENTER | draw::DT_CALCRECT);
    EXPECT_EQ(rect, QRect(5, 6, width, 2 * metrics.height()));
    EXPECT_EQ(height, 2 * metrics.height());
    EXPECT_TRUE(Inked(surface).isEmpty());
}

TEST(Text, AmpersandsMarkAccessKeysAndAreNotDrawn) {
    const QFontMetrics metrics{QFont()};
    const auto line = [&metrics](const char* text, unsigned format) {
        return draw::LayOutText(QString::fromLatin1(text), metrics, 1000, format | draw::DT_SINGLELINE).lines.first();
    };
    EXPECT_EQ(line("E&xit", 0).text, QStringLiteral("Exit"));
    EXPECT_EQ(line("E&xit", 0).underlined, 1);
    EXPECT_EQ(line("A && B", 0).text, QStringLiteral("A & B"));
    EXPECT_EQ(line("A && B", 0).underlined, -1);
    EXPECT_EQ(line("E&xit", draw::DT_NOPREFIX).text, QStringLiteral("E&xit"));
    EXPECT_EQ(line("E&xit", draw::DT_HIDEPREFIX).underlined, -1);
    EXPECT_EQ(line("odd&", 0).text, QStringLiteral("odd"));
    EXPECT_EQ(draw::LayOutText(QStringLiteral("one &two"), metrics, 1, draw::DT_WORDBREAK).lines.at(1).underlined, 0);
    // The line under the letter is drawn.
    const QRect box(0, 0, 200, 50);
    EXPECT_GT(InkOf(QStringLiteral("&n"), box, 0).bottom(), InkOf(QStringLiteral("n"), box, 0).bottom());
}

TEST(Text, OpaqueBackgroundFillsTheTextsBox) {
    draw::Surface surface(60, 40);
    surface.SetTextColor(white);
    surface.SetBkColor(white);
    surface.SetBkMode(draw::OPAQUE);
    surface.TextOutW(3, 4, QStringLiteral("ab"));
    EXPECT_EQ(Inked(surface), QRect(QPoint(3, 4), surface.GetTextExtentPoint32W(QStringLiteral("ab"))));
    EXPECT_EQ(surface.TextHeight(), QFontMetrics(surface.Font()).height());
}

TEST(Text, VeryLongAndOddTextsAreDrawnInTime) {
    draw::Surface surface(50, 20);
    surface.SetTextColor(white);
    const QRect rect = surface.Bounds();
    surface.DrawTextW(QString(2'000'000, u'W'), rect, draw::DT_WORDBREAK | draw::DT_NOCLIP);
    surface.DrawTextW(QStringLiteral("w ").repeated(500'000), rect, draw::DT_WORDBREAK | draw::DT_CENTER);
    surface.DrawTextW(QString(500'000, u'\n'), rect, 0);
    const QChar lone[] = {QChar(0xD800), QChar(u'\0'), QChar(0xDC00)};
    surface.TextOutW(-1000, 3, QString(lone, 3));
    EXPECT_FALSE(Inked(surface).isEmpty());
}
