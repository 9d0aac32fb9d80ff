#include "forms/form.h"
#include "suite/shadow_manager.h"

#include <QPainter>
#include <gtest/gtest.h>
#include <memory>

namespace {

using suite::ShadowManager;

TEST(ShadowManager, IsAvailableWhileTheScreenComposites) {
    ShadowManager manager;
    EXPECT_FALSE(manager.Available()) << "the test platform has no compositor";
    bool composites = true;
    manager.SetCompositingSource([&] { return composites; });
    EXPECT_TRUE(manager.Available());
    composites = false;
    EXPECT_FALSE(manager.Available());
}

TEST(ShadowManager, KnowsWindowsUntilTheyAreRemovedOrGone) {
    ShadowManager manager;
    auto first = std::make_unique<forms::Form>(QStringLiteral("A"), 3000, 3000);
    forms::Form second(QStringLiteral("B"), 3000, 3000);
    EXPECT_FALSE(manager.Knows(first.get()));
    manager.Add(first.get());
    manager.Add(first.get());
    manager.Add(&second);
    EXPECT_TRUE(manager.Knows(first.get()));
    forms::Form* gone = first.get();
    first.reset();
    EXPECT_FALSE(manager.Knows(gone));
    manager.Remove(gone);
    manager.Remove(&second);
    EXPECT_FALSE(manager.Knows(&second));
    manager.Add(nullptr);
    EXPECT_FALSE(manager.Knows(nullptr));
}

TEST(ShadowManager, TheCurveRunsBetweenItsPoints) {
    const suite::BlendCurve curve{{0.0F, 0.5F, 1.0F}, {0.0F, 1.0F, 0.0F}};
    EXPECT_DOUBLE_EQ(curve.At(0), 0);
    EXPECT_DOUBLE_EQ(curve.At(0.25), 0.5);
    EXPECT_DOUBLE_EQ(curve.At(0.5), 1);
    EXPECT_DOUBLE_EQ(curve.At(0.75), 0.5);
    EXPECT_DOUBLE_EQ(curve.At(2), 0);
    // Two points at one place are a step.
    const suite::BlendCurve step{{0.0F, 0.0F, 1.0F}, {0.0F, 1.0F, 0.0F}};
    EXPECT_DOUBLE_EQ(step.At(0.5), 0.5);
}

TEST(ShadowManager, PaintsAroundTheWindowInItsColourAndFadesOut) {
    ShadowManager manager;
    manager.SetUpdateMode(true);
    manager.SetGlobalSize(10);
    manager.SetGlobalColour(base::Colour::FromRgb(200, 0, 0));
    manager.SetGlobalTransparency(255);
    manager.SetUpdateMode(false);
    QImage image(100, 80, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        manager.Paint(painter, QRect(0, 0, 100, 80), QRect(10, 10, 80, 60));
    }
    EXPECT_EQ(image.pixelColor(50, 40).alpha(), 0) << "nothing under the window";
    int last = 256;
    for (int x = 9; x >= 0; --x) {
        const int alpha = image.pixelColor(x, 40).alpha();
        EXPECT_LE(alpha, last) << x;
        last = alpha;
    }
    const QColor edge = image.pixelColor(9, 40);
    EXPECT_GT(edge.alpha(), 60);
    EXPECT_NEAR(edge.red(), 200, 4);
    EXPECT_EQ(edge.green(), 0);
    EXPECT_LT(image.pixelColor(0, 40).alpha(), 10);
    EXPECT_LT(image.pixelColor(0, 0).alpha(), 2) << "corners are round";
    EXPECT_EQ(image.pixelColor(9, 40).alpha(), image.pixelColor(90, 40).alpha()) << "alike on both sides";
    manager.SetGlobalTransparency(0);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    manager.Paint(painter, QRect(0, 0, 100, 80), QRect(10, 10, 80, 60));
    painter.end();
    EXPECT_EQ(image.pixelColor(9, 40).alpha(), 0);
}

} // namespace
