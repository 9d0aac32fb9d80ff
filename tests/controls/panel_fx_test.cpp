#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "forms/screen.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <gmock/gmock.h>

namespace controls {
namespace {

using base::Colour;
using testing::ElementsAre;

draw::Picture Tile(QRgb colour) {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(colour);
    return draw::Picture::FromImage(image);
}

class Panel : public testing::Test {
  protected:
    Panel() : panel(&container, QStringLiteral("PanelTest")) {
        container.resize(400, 300);
        panel.setGeometry(50, 40, 100, 60);
        panel.SetTitleCaption(QString());
        panel.SetPanelBorderColor(Colour(0x0000FF));
        panel.SetPanelBackColor(Colour(0x404040));
        panel.SetTileBackColor(Colour(0x808080));
    }
    quint32 PixelAt(int x, int y) { return panel.UpToDateSurface().GetPixel(x, y).Value(); }
    void Mouse(QEvent::Type type, const QPointF& at, Qt::MouseButtons held) {
        const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, panel.mapToGlobal(at), changed, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&panel, &event);
    }

    QWidget container;
    PanelFx panel;
};

TEST_F(Panel, PlainTitleAndBodyStandInTheirFrames) {
    EXPECT_EQ(PixelAt(0, 0), 0x0000FFU);
    EXPECT_EQ(PixelAt(50, 1), 0x808080U);
    EXPECT_EQ(PixelAt(50, 19), 0x808080U);
    EXPECT_EQ(PixelAt(50, 20), 0x404040U);
    EXPECT_EQ(PixelAt(1, 40), 0x404040U);
    EXPECT_EQ(PixelAt(0, 40), 0x0000FFU);
    EXPECT_EQ(PixelAt(97, 40), 0x404040U);
    EXPECT_EQ(PixelAt(98, 40), 0x0000FFU); // the outline ends one pixel before the frame
    EXPECT_EQ(PixelAt(99, 40), 0x0000FFU);
    EXPECT_EQ(PixelAt(50, 57), 0x404040U);
    EXPECT_EQ(PixelAt(50, 58), 0x0000FFU);
    panel.SetTileHeight(30);
    EXPECT_EQ(PixelAt(50, 29), 0x808080U);
    EXPECT_EQ(panel.PanelOrTitle(29), PanelFx::Title);
    EXPECT_EQ(panel.PanelOrTitle(30), PanelFx::Body);
}

TEST_F(Panel, GradientAndTiles) {
    panel.SetBackGroundStyle(PanelFx::Gradient);
    panel.SetgCTitleStart(Colour(0x000000));
    panel.SetgCTitleEnd(Colour(0xFFFFFF));
    panel.SetgCPanelStart(Colour(0xFF0000));
    panel.SetgCPanelEnd(Colour(0x0000FF));
    panel.SetgCPanelDir(PanelFx::Horizontal);
    EXPECT_EQ(PixelAt(10, 5), PixelAt(80, 5));
    EXPECT_LT(PixelAt(10, 2) & 0xFFU, PixelAt(10, 18) & 0xFFU);
    EXPECT_EQ(PixelAt(10, 30), PixelAt(10, 50));
    EXPECT_LT(PixelAt(5, 30) & 0xFFU, PixelAt(95, 30) & 0xFFU);
    panel.SetgCPanelDir(7); // no such direction: the area stays cleared
    EXPECT_EQ(PixelAt(10, 30), 0x404040U);

    panel.SetBackGroundStyle(PanelFx::Tiled);
    panel.SetTitleBitmap(Tile(qRgb(0, 255, 0)));
    EXPECT_EQ(PixelAt(50, 10), 0x00FF00U);
    EXPECT_EQ(PixelAt(50, 40), 0x404040U);
    panel.SetPanelBitmap(Tile(qRgb(1, 2, 3)));
    EXPECT_EQ(PixelAt(50, 40), 0x030201U);
}

TEST_F(Panel, IconMovesTheCaption) {
    panel.SetTileHeight(40);
    panel.SetTitleForeColor(Colour(0x00FFFF));
    panel.SetTitleCaption(QStringLiteral("II"));
    const auto firstInk = [this] {
        for (int x = 2; x < 97; ++x)
            for (int y = 2; y < 39; ++y)
                if (const Colour c = panel.UpToDateSurface().GetPixel(x, y); c.Green() > 200 && c.Blue() < 100)
                    return x;
        return -1;
    };
    const int atLeft = firstInk();
    EXPECT_GE(atLeft, 4);
    EXPECT_LT(atLeft, 10);
    panel.SetTitleIcon(Tile(qRgb(255, 255, 255)));
    EXPECT_EQ(PixelAt(39, 37), 0xFFFFFFU);
    EXPECT_GE(firstInk(), 40);
    panel.SetHideTitleIcon(true);
    EXPECT_EQ(firstInk(), atLeft);
    panel.SetTitleAlignment(PanelFx::AlignRight);
    EXPECT_GT(firstInk(), 75);
    // Half a pixel left over goes to the even side.
    panel.SetTitleAlignment(PanelFx::AlignCentre);
    std::vector<int> places;
    for (const int wider : {0, 1, 2, 3}) {
        panel.resize(100 + wider, 60);
        places.push_back(firstInk());
    }
    EXPECT_NEAR(places[0], 46, 6);
    EXPECT_NE(places[1] == places[0], places[3] == places[2]);
}

TEST_F(Panel, RoundEdgeShapesItAndControlsStandInIt) {
    container.show();
    EXPECT_TRUE(panel.mask().isEmpty());
    panel.SetRoundEdge(20);
    EXPECT_FALSE(panel.mask().contains(QPoint(0, 0)));
    EXPECT_FALSE(panel.mask().contains(QPoint(98, 58)));
    EXPECT_TRUE(panel.mask().contains(QPoint(50, 0)));
    panel.resize(200, 60);
    EXPECT_TRUE(panel.mask().contains(QPoint(150, 30)));
    dcButton inner(&panel, QStringLiteral("CommandIn"));
    inner.setGeometry(20, 25, 40, 20);
    EXPECT_TRUE(inner.isVisible());
    EXPECT_EQ(container.childAt(75, 70), &inner);
    panel.SetRoundEdge(0);
    EXPECT_TRUE(panel.mask().isEmpty());
}

TEST_F(Panel, CollapseTwiceKeepsTheSavedSize) {
    panel.SetCollapse(false); // nothing saved yet
    EXPECT_EQ(panel.size(), QSize(100, 60));
    panel.SetCollapse(true);
    EXPECT_TRUE(panel.Collapse());
    EXPECT_EQ(panel.height(), 60);
    panel.SetCanCollapse(true);
    panel.SetCollapse(true);
    EXPECT_EQ(panel.height(), 20);
    panel.SetCollapse(true);
    panel.SetCollapse(false);
    EXPECT_EQ(panel.size(), QSize(100, 60));
}

TEST_F(Panel, EventsAndDrag) {
    std::vector<std::string> events;
    const auto note = [&events](const char* name) {
        return [&events, name](int, int, double, double, int part) {
            events.push_back(std::string(name) + std::to_string(part));
        };
    };
    QObject::connect(&panel, &PanelFx::TitleClick, [&] { events.emplace_back("title"); });
    QObject::connect(&panel, &PanelFx::PanelClick, [&] { events.emplace_back("body"); });
    QObject::connect(&panel, &PanelFx::MouseDown, note("down"));
    QObject::connect(&panel, &PanelFx::MouseMove, note("move"));
    QObject::connect(&panel, &PanelFx::MouseUp, note("up"));
    const auto drag = [&](double y) {
        Mouse(QEvent::MouseButtonPress, QPointF(10, y), Qt::LeftButton);
        Mouse(QEvent::MouseMove, QPointF(11, y), Qt::LeftButton);
        Mouse(QEvent::MouseMove, QPointF(31, y + 5), Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, QPointF(11, y), Qt::NoButton);
        return std::exchange(events, {});
    };
    EXPECT_THAT(drag(5), ElementsAre("down0", "title", "move0", "move0", "up0"));
    panel.SetAllowParentDraging(true); // alone it does not drag
    drag(5);
    EXPECT_EQ(panel.pos(), QPoint(50, 40));
    panel.SetAllowParentDraging(false);
    panel.SetAllowDraging(true);
    EXPECT_THAT(drag(30), ElementsAre("down1", "body", "move1", "move1", "up1"));
    EXPECT_EQ(panel.pos(), QPoint(50, 40));
    EXPECT_THAT(drag(5), ElementsAre("down0", "title", "move0"));
    EXPECT_EQ(panel.pos(), QPoint(70, 45));
    // The title stays within reach.
    Mouse(QEvent::MouseButtonPress, QPointF(10, 5), Qt::LeftButton);
    Mouse(QEvent::MouseMove, QPointF(10, 5), Qt::LeftButton);
    Mouse(QEvent::MouseMove, QPointF(-5000, 5000), Qt::LeftButton);
    EXPECT_EQ(panel.pos(), QPoint(-76, 280));
    Mouse(QEvent::MouseButtonRelease, QPointF(10, 5), Qt::NoButton);
}

TEST_F(Panel, BagRoundTripAndTheTwoDefaultCaptions) {
    PanelFx fresh(&container, QStringLiteral("PanelProgress"));
    EXPECT_EQ(fresh.TitleCaption(), QStringLiteral("PanelProgress"));
    base::PropertyBag bag;
    fresh.ReadProperties(bag);
    EXPECT_EQ(fresh.TitleCaption(), QStringLiteral("Panel"));
    fresh.WriteProperties(bag);
    EXPECT_EQ(bag.Count(), 0);

    panel.SetTitleCaption(QStringLiteral("Please Wait..."));
    panel.SetTitleIconXPos(99999); // 16 bits
    panel.SetRoundEdge(12);
    panel.SetTitleBitmap(Tile(qRgb(1, 2, 3)));
    panel.SetAllowDraging(true);
    panel.SetBackGroundStyle(PanelFx::Tiled);
    panel.WriteProperties(bag);
    EXPECT_TRUE(bag.Contains(QStringLiteral("allowdraging")));
    fresh.ReadProperties(bag);
    EXPECT_EQ(fresh.TitleCaption(), QStringLiteral("Please Wait..."));
    EXPECT_EQ(fresh.TitleIconXPos(), 32767);
    EXPECT_EQ(fresh.RoundEdge(), 12);
    EXPECT_EQ(fresh.TitleBitmap(), panel.TitleBitmap());
    EXPECT_TRUE(fresh.AllowDraging());
    EXPECT_EQ(fresh.BackGroundStyle(), PanelFx::Tiled);
    EXPECT_EQ(fresh.PanelBorderColor(), Colour(0x0000FF));
}

TEST_F(Panel, OddSizes) {
    panel.SetRoundEdge(40);
    panel.SetTitleCaption(QString(20000, u'x'));
    for (const int style : {PanelFx::Plain, PanelFx::Gradient, PanelFx::Tiled})
        for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(2, 50), QSize(32767, 3), QSize(32767, 32767)}) {
            panel.SetBackGroundStyle(style);
            panel.resize(size);
            EXPECT_EQ(panel.UpToDateSurface().Size(), size);
        }
    panel.SetTileHeight(-5);
    panel.resize(50, 50);
    panel.UpToDateSurface();
}

} // namespace
} // namespace controls
