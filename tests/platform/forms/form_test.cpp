#include "forms/form.h"

#include "base/yield.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"

#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class Window : public forms::Form {
  public:
    Window() : Form(QStringLiteral("FrmTest"), 6000, 3000) {}

    std::function<void()> onLoad;
    std::function<void()> onResize;
    bool refuse = false;
    int loads = 0;
    int closings = 0;

  protected:
    void Load() override {
        ++loads;
        if (onLoad)
            onLoad();
    }
    void Resize() override {
        if (onResize)
            onResize();
    }
    bool QueryUnload() override { return !refuse; }
    void Closing() override { ++closings; }
};

class FormTest : public testing::Test {
  protected:
    FormTest() {
        all_.SetAllGone([this] { ++allGone_; });
        all_.RegisterMaker("FrmTest", [] { return std::make_unique<Window>(); });
    }
    ~FormTest() override { all_.Clear(); }
    Window* Make() { return static_cast<Window*>(all_.New("FrmTest")); }

    forms::Forms& all_ = forms::Forms::Instance();
    int allGone_ = 0;
};

} // namespace

TEST_F(FormTest, OneSharedInstanceAndAsManyNewOnesAsWanted) {
    forms::Form* first = all_.Shared("FrmTest");
    EXPECT_EQ(all_.Shared("FrmTest"), first);
    EXPECT_NE(Make(), first);
    EXPECT_EQ(all_.Shared("FrmNobody"), nullptr);
    EXPECT_EQ(all_.Loaded().size(), 2);
}

TEST_F(FormTest, LoadsOnceAndAHiddenLoadShowsNothing) {
    Window* window = Make();
    window->Hide();
    window->Hide();
    EXPECT_FALSE(window->isVisible());
    window->Show();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->loads, 1);
}

TEST_F(FormTest, AWindowMayUnloadItselfInItsLoad) {
    Window* window = Make();
    const QPointer<Window> alive(window);
    window->onLoad = [window] { window->Unload(); };
    window->Show();
    ASSERT_TRUE(alive);
    EXPECT_FALSE(window->isVisible());
    all_.Bury();
    EXPECT_FALSE(alive);
}

TEST_F(FormTest, BuriedOnlyWhenNoHandlerIsLeft) {
    Window* window = Make();
    const QPointer<Window> alive(window);
    window->Show();
    window->refuse = true;
    EXPECT_FALSE(window->Unload());
    window->refuse = false;
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(window->Unload());
        EXPECT_TRUE(all_.Loaded().isEmpty());
        EXPECT_EQ(all_.Find("FrmTest"), nullptr);
        // The handler goes on for a while on a window that is closed.
        for (int i = 0; i < 5; ++i)
            base::YieldBlocking(20);
        EXPECT_TRUE(alive);
    });
    QTest::qWait(1);
    base::YieldBlocking(10);
    all_.Bury();
    EXPECT_FALSE(alive);
    EXPECT_EQ(allGone_, 1);
}

TEST_F(FormTest, MeasuresInTwips) {
    Window* window = Make();
    EXPECT_EQ(window->Width(), 6000);
    EXPECT_EQ(window->WindowRect().size(), QSize(400, 200)); // 96 dots per inch: 15 twips a pixel
    int resizes = 0;
    window->onResize = [&] { ++resizes; };
    window->SetHeight(4500);
    EXPECT_EQ(window->Client()->height(), 300);
    EXPECT_EQ(resizes, 1); // also while it is hidden
    window->SetHeight(-100);
    EXPECT_EQ(window->WindowRect().height(), 1);
}

TEST_F(FormTest, ADragProposesRectanglesThatHandlersMayChange) {
    Window* window = Make();
    auto* label = new forms::Label(window->Client(), "Label1");
    label->Move(0, 0, 1500, 1500);
    window->Show();
    QStringList events;
    QObject::connect(window, &forms::Form::EnterSizeMove, [&] { events << "enter"; });
    QObject::connect(window, &forms::Form::ExitSizeMove, [&] { events << "exit"; });
    QObject::connect(window, &forms::Form::Sizing, [&](QRect* proposed) {
        events << "sizing";
        proposed->setHeight(123);
    });
    QTest::mousePress(label, Qt::LeftButton, {}, QPoint(5, 5));
    window->NcLButtonDown(forms::HtBottomRight);
    EXPECT_TRUE(window->InDrag());
    const QPointF there = QCursor::pos() + QPointF(40, 40);
    QMouseEvent move(QEvent::MouseMove, QPointF(45, 45), there, Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(label, &move);
    EXPECT_EQ(window->WindowRect().size(), QSize(440, 123));
    QTest::mouseRelease(label, Qt::LeftButton);
    EXPECT_FALSE(window->InDrag());
    EXPECT_EQ(events, (QStringList{"enter", "sizing", "exit"}));
}

TEST_F(FormTest, PaintsAtMostOncePerSixteenMilliseconds) {
    Window* window = Make();
    auto* label = new forms::Label(window->Client(), "Label1");
    label->Move(0, 0, 1500, 300);
    window->Show();
    QTest::qWait(50);
    int paints = 0;
    struct Counter : QObject {
        int& count;
        explicit Counter(int& c) : count(c) {}
        bool eventFilter(QObject*, QEvent* event) override {
            count += int(event->type() == QEvent::Paint);
            return false;
        }
    } counter(paints);
    label->installEventFilter(&counter);
    QElapsedTimer time;
    time.start();
    for (int i = 0; time.elapsed() < 160; ++i) {
        label->SetCaption(QString::number(i));
        base::Yield();
    }
    EXPECT_LE(paints, 160 / 16 + 2);
    EXPECT_GE(paints, 2);
}

TEST_F(FormTest, ATimerNeverTicksInsideItsOwnTick) {
    Window* window = Make();
    forms::Timer timer(window, "Timer1", 1, true);
    int depth = 0;
    int deepest = 0;
    int ticks = 0;
    QObject::connect(&timer, &forms::Timer::Tick, [&] {
        deepest = qMax(deepest, ++depth);
        ++ticks;
        timer.SetEnabled(false);
        timer.SetEnabled(true);
        for (int i = 0; i < 5; ++i)
            base::YieldBlocking(4);
        --depth;
    });
    while (ticks < 3)
        base::YieldBlocking(20);
    EXPECT_EQ(deepest, 1);
    window->Unload();
    EXPECT_FALSE(timer.Enabled());
}

// Run by a script on a display with a window manager, which gives the keyboard before it hands on the press.
TEST(RealDisplay, ActivationTellsOfTheMouse) {
    if (QGuiApplication::platformName() != QStringLiteral("xcb"))
        GTEST_SKIP();
    const auto xdotool = [](const QStringList& what) { return QProcess::execute(QStringLiteral("xdotool"), what); };
    forms::Form under(QStringLiteral("FrmUnder"), 3000, 3000);
    forms::Form above(QStringLiteral("FrmAbove"), 3000, 3000);
    under.SetLeft(3000);
    under.Show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&under));
    above.Show();
    above.SetFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&above));
    QSignalSpy activated(&under, &forms::Form::Activated);
    const QPoint place = under.geometry().center();
    xdotool({QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y()),
             QStringLiteral("mousedown"), QStringLiteral("1")});
    EXPECT_TRUE(activated.wait());
    xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
    above.SetFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&above));
    under.SetFocus();
    EXPECT_TRUE(activated.wait());
    ASSERT_EQ(activated.size(), 2);
    EXPECT_TRUE(activated.at(0).at(0).toBool());
    EXPECT_FALSE(activated.at(1).at(0).toBool());
}
