// The layout anchor: letters, limits, differences, and handlers that yield.
#include "controls/anchor.h"

#include "base/yield.h"
#include "forms/label.h"
#include "forms/screen.h"
#include "forms/timer.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace controls {
namespace {

class AnchorForm : public forms::Form {
  public:
    AnchorForm() : Form(QStringLiteral("FrmTest"), 6000, 4500) {}
    forms::Label* Add(const char* name, const char* tag) {
        auto* label = new forms::Label(Client(), QLatin1String(name));
        label->Move(1500, 750, 3000, 1500);
        label->SetTag(QLatin1String(tag));
        return label;
    }
};

QRect PlaceOf(const forms::Label* label) {
    return QRect(int(label->Left()), int(label->Top()), int(label->Width()), int(label->Height()));
}

class AnchorTest : public testing::Test {
  protected:
    AnchorTest() : anchor(new Anchor(&form, QStringLiteral("Anchor1"))) {}
    void Load() {
        anchor->SetMinWidth(1500);
        anchor->SetMinHeight(1500);
        form.EnsureLoaded();
    }

    AnchorForm form;
    Anchor* anchor;
};

TEST_F(AnchorTest, LettersAreTakenOffTheTagsByPlace) {
    const forms::Label* plain = form.Add("A", "plain");
    const forms::Label* marked = form.Add("B", "TTFF*/rest*/of it");
    auto* timer = new forms::Timer(&form, QStringLiteral("Timer1"), 100, false);
    timer->SetTag(QStringLiteral("FFTT*/"));
    const forms::Label* late = form.Add("C", "FFTT*/");
    Load();
    EXPECT_EQ(plain->Tag(), QStringLiteral("plain"));
    EXPECT_EQ(marked->Tag(), QStringLiteral("rest*/of it"));
    EXPECT_EQ(late->Tag(), QString());
    EXPECT_EQ(anchor->ppAnchors(0), QString()); // the anchor itself has no tag
    EXPECT_EQ(anchor->ppAnchors(1), QString());
    EXPECT_EQ(anchor->ppAnchors(2), QStringLiteral("TTFF"));
    EXPECT_EQ(anchor->ppAnchors(4), QStringLiteral("FFTT"));
    form.SetWidth(7500); // the timer has no place to move to
    EXPECT_EQ(PlaceOf(late), QRect(3000, 750, 3000, 1500));
}

TEST_F(AnchorTest, ControlsMoveAndStretchByTheChange) {
    const forms::Label* stretched = form.Add("A", "TTTT*/");
    const forms::Label* corner = form.Add("B", "FFTT*/");
    const forms::Label* bottom = form.Add("C", "TFFT*/");
    const forms::Label* still = form.Add("D", "TFFF*/x");
    const forms::Label* follower = form.Add("E", "TTFF*/");
    QList<QPair<int, int>> changes;
    QObject::connect(anchor, &Anchor::AfterResize, [&](int height, int width) { changes.append({height, width}); });
    Load();
    form.Move(0, 0, 6750, 4800);
    EXPECT_EQ(PlaceOf(stretched), QRect(1500, 750, 3750, 1800));
    EXPECT_EQ(PlaceOf(corner), QRect(2250, 1050, 3000, 1500));
    EXPECT_EQ(PlaceOf(bottom), QRect(1500, 1050, 3000, 1500));
    EXPECT_EQ(PlaceOf(still), QRect(1500, 750, 3000, 1500));
    EXPECT_EQ(PlaceOf(follower), QRect(1500, 750, 3000, 1500));
    EXPECT_EQ(changes, (QList<QPair<int, int>>{{300, 750}}));
    form.Move(0, 0, 6000, 4500);
    EXPECT_EQ(PlaceOf(stretched), QRect(1500, 750, 3000, 1500));
    EXPECT_EQ(PlaceOf(corner), QRect(1500, 750, 3000, 1500));
}

// It stops tracking: the difference that did not fit is lost.
TEST_F(AnchorTest, AStretchThatLeavesNothingIsLeftOut) {
    const forms::Label* narrow = form.Add("A", "TTTF*/");
    Load();
    form.SetWidth(3000);
    EXPECT_EQ(narrow->Width(), 3000);
    form.SetWidth(4500);
    EXPECT_EQ(narrow->Width(), 4500);
}

TEST_F(AnchorTest, LimitsPushTheWindowBack) {
    anchor->SetInitWidth(6300);
    anchor->SetMaxHeight(5250);
    form.EnsureLoaded();
    EXPECT_EQ(form.Width(), 6300);
    EXPECT_EQ(anchor->MinWidth(), 6300);
    EXPECT_EQ(anchor->MinHeight(), 4500);
    form.Move(0, 0, 3000, 9000);
    EXPECT_EQ(form.Width(), 6300);
    EXPECT_EQ(form.Height(), 5250);
    form.SetWidth(30000); // no greatest width
    EXPECT_EQ(form.Width(), 30000);
}

TEST_F(AnchorTest, InvertedAndNegativeLimitsSettle) {
    const forms::Label* stretched = form.Add("A", "TTTT*/");
    Load();
    anchor->SetMinWidth(7500);
    anchor->SetMaxWidth(5250);
    anchor->SetMaxHeight(-5);
    form.SetWidth(6150);
    EXPECT_EQ(form.Width(), 5250); // the greatest size is applied last
    EXPECT_EQ(stretched->Width(), 3000 - 750);
    anchor->SetMinWidth(-100);
    anchor->SetMinHeight(-100);
    form.Move(0, 0, 1200, 15);
    EXPECT_EQ(form.Width(), 1200);
    EXPECT_EQ(form.Height(), 15);
}

TEST_F(AnchorTest, MinimisingMovesNothing) {
    const forms::Label* corner = form.Add("A", "FFTT*/");
    Load();
    form.Show();
    form.SetWindowState(forms::MinimisedWindow);
    QCoreApplication::processEvents();
    form.SetWindowState(forms::NormalWindow);
    QCoreApplication::processEvents();
    EXPECT_EQ(PlaceOf(corner), QRect(1500, 750, 3000, 1500));
}

// Without its guard the layout applies a difference once more for every resize that a handler's yield lets in.
TEST_F(AnchorTest, AResizeStormThroughYieldingHandlersKeepsTheDistances) {
    const forms::Label* stretched = form.Add("A", "TTTT*/");
    Load();
    form.Show();
    QCoreApplication::processEvents();
    int depth = 0;
    int deepest = 0;
    QObject::connect(anchor, &Anchor::BeforeResize, [&] {
        deepest = qMax(deepest, ++depth);
        base::Yield();
    });
    QObject::connect(anchor, &Anchor::AfterResize, [&] {
        base::Yield();
        --depth;
    });
    for (int step = 1; step <= 200; ++step)
        QMetaObject::invokeMethod(
            &form, [this, step] { form.Move(0, 0, 6000 + 15 * (step % 50), 4500 + 15 * step); }, Qt::QueuedConnection);
    for (int round = 0; round < 50; ++round)
        QCoreApplication::processEvents();
    EXPECT_EQ(form.Height(), 4500 + 15 * 200);
    EXPECT_EQ(form.Width() - stretched->Left() - stretched->Width(), 1500);
    EXPECT_EQ(form.Height() - stretched->Top() - stretched->Height(), 2250);
    EXPECT_EQ(deepest, 1);
}

TEST_F(AnchorTest, AHandlerThatAlwaysResizesEnds) {
    Load();
    int passes = 0;
    QObject::connect(anchor, &Anchor::AfterResize, [&] {
        ++passes;
        form.SetWidth(form.Width() == 6000 ? 6150 : 6000);
    });
    form.SetWidth(6300);
    EXPECT_GT(passes, 1);
    EXPECT_LE(passes, 100);
}

TEST_F(AnchorTest, ControlsAndAnchorMayEndInTheHandlers) {
    const forms::Label* gone = form.Add("A", "TTTT*/");
    const forms::Label* kept = form.Add("B", "FFTT*/");
    Load();
    QObject::connect(anchor, &Anchor::BeforeResize, [&] {
        delete gone;
        gone = nullptr;
    });
    form.SetWidth(6750);
    EXPECT_EQ(kept->Left(), 2250);
    QObject::connect(anchor, &Anchor::AfterResize, [&] { delete anchor; });
    form.SetWidth(7500);
    EXPECT_EQ(kept->Left(), 3000);
}

TEST_F(AnchorTest, ActivationStoresTheLimitsInPixels) {
    anchor->SetMaxHeight(6000);
    Load();
    anchor->SetFormMinMax();
    EXPECT_EQ(LastFormLimits().minWidth, 100);
    EXPECT_EQ(LastFormLimits().maxHeight, 400);
    EXPECT_EQ(LastFormLimits().maxWidth, 0);
    EXPECT_EQ(LastFormLimits().form, &form);
    delete anchor;
    EXPECT_TRUE(LastFormLimits().form.isNull());
}

TEST_F(AnchorTest, SizesComeBackFromTheBag) {
    anchor->SetInitWidth(1);
    anchor->SetMaxHeight(-4);
    base::PropertyBag bag;
    anchor->WriteProperties(bag);
    EXPECT_EQ(bag.Count(), 2);
    Anchor other(nullptr, QStringLiteral("Anchor2"));
    other.ReadProperties(bag);
    EXPECT_EQ(other.InitWidth(), 1);
    EXPECT_EQ(other.MaxHeight(), -4);
    EXPECT_EQ(other.MinWidth(), 0);
}

} // namespace
} // namespace controls
