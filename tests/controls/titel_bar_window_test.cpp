// What the title bar's buttons and its bar do for the window, by real presses and moves.
#include "controls/titel_bar.h"

#include "base/yield.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/screen.h"

#include <QCoreApplication>
#include <QPainter>
#include <QTest>
#include <gtest/gtest.h>

namespace controls {
namespace {

class BarForm : public forms::Form {
  public:
    explicit BarForm(const QString& name)
        : Form(name, 9000, 6000), bar(new TitelBar(Client(), QStringLiteral("TitelBar1"))) {
        bar->InitProperties();
        SetLeft(1500);
        SetTop(750);
    }
    TitelBar* bar;

  protected:
    void Resize() override { bar->SetWidth(Width()); }
};

class TitelBarWindow : public testing::Test {
  protected:
    TitelBarWindow() { form = Open(QStringLiteral("FrmTest")); }
    ~TitelBarWindow() override { forms::Forms::Instance().Clear(); }

    BarForm* Open(const QString& name) {
        forms::Forms::Instance().SetAllGone([] {});
        forms::Forms::Instance().RegisterMaker(name, [name] { return std::make_unique<BarForm>(name); });
        auto* made = static_cast<BarForm*>(forms::Forms::Instance().New(name));
        made->bar->SetShowMaximized(true);
        made->bar->SetShowMaximizedEnabled(true);
        made->Show();
        QCoreApplication::processEvents();
        return made;
    }
    static void Click(BarForm& target, TitelBar::ButtonIndex index) {
        QTest::mouseClick(&target.bar->Button(index), Qt::LeftButton);
    }
    TitelBar& Bar() { return *form->bar; }
    static void Enter(AlphaImage& button) {
        QEnterEvent event(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        QCoreApplication::sendEvent(&button, &event);
    }
    // Columns of a button that its picture covers in the bar's next paint.
    int CoveredColumns(TitelBar::ButtonIndex index) {
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        bool cancel = false;
        Q_EMIT Bar().Button(index).PrePaint(&painter, &cancel);
        painter.end();
        if (!cancel)
            return -1;
        int columns = 0;
        for (int x = 0; x < image.width(); ++x)
            columns += qAlpha(image.pixel(x, 10)) == 255 ? 1 : 0;
        return columns;
    }

    BarForm* form = nullptr;
};

TEST_F(TitelBarWindow, CloseUnloadsAWindowAndHidesTheColourWindow) {
    BarForm* colours = Open(QStringLiteral("FrmColors"));
    Click(*colours, TitelBar::CloseButton);
    EXPECT_FALSE(colours->isVisible());
    EXPECT_FALSE(colours->IsUnloaded());
    Click(*form, TitelBar::CloseButton);
    EXPECT_TRUE(form->IsUnloaded());
}

TEST_F(TitelBarWindow, AButtonLetGoOutsideDoesNothing) {
    AlphaImage& close = Bar().Button(TitelBar::CloseButton);
    QTest::mousePress(&close, Qt::LeftButton);
    QTest::mouseMove(&close, QPoint(-30, 5));
    QTest::mouseRelease(&close, Qt::LeftButton, {}, QPoint(-30, 5));
    EXPECT_FALSE(form->IsUnloaded());
    EXPECT_NE(form->focusWidget(), &Bar());
    Bar().SetShowCloseEnabled(false);
    Click(*form, TitelBar::CloseButton);
    EXPECT_FALSE(form->IsUnloaded());
    // Nor does one that is switched off answer to the pointer.
    Enter(close);
    EXPECT_EQ(close.Hover(), 0);
    EXPECT_FALSE(Bar().SpinTimer(TitelBar::CloseButton).Enabled());
    Bar().SetShowCloseEnabled(true);
    Enter(close);
    Bar().SetShowCloseEnabled(false);
    EXPECT_EQ(close.Hover(), 0);
}

TEST_F(TitelBarWindow, MinimiseAndHelp) {
    int help = 0;
    QObject::connect(&Bar(), &TitelBar::HelpButtonClick, [&] { ++help; });
    Bar().SetShowHelp(true);
    Bar().SetShowHelpEnabled(true);
    Click(*form, TitelBar::HelpButton);
    EXPECT_EQ(help, 1);
    Click(*form, TitelBar::MinimiseButton);
    EXPECT_EQ(form->WindowState(), forms::MinimisedWindow);
}

TEST_F(TitelBarWindow, MaximiseTwiceReturnsToTheSavedPlaceAndFace) {
    const QRect place = form->WindowRect();
    const AlphaImage& button = Bar().Button(TitelBar::MaximiseButton);
    const draw::Picture face = button.Picture();
    int resized = 0;
    QObject::connect(&Bar(), &TitelBar::ResizedParent, [&] { ++resized; });
    Click(*form, TitelBar::MaximiseButton);
    EXPECT_TRUE(Bar().Maximised());
    EXPECT_EQ(form->WindowRect(), forms::WorkArea());
    EXPECT_EQ(form->WindowState(), forms::NormalWindow);
    EXPECT_EQ(button.ToolTipText(), QStringLiteral("Restore Down"));
    EXPECT_NE(button.Picture(), face);
    Click(*form, TitelBar::MaximiseButton);
    EXPECT_FALSE(Bar().Maximised());
    EXPECT_EQ(form->WindowRect(), place);
    EXPECT_EQ(button.ToolTipText(), QStringLiteral("Maximize"));
    EXPECT_EQ(button.Picture(), face);
    EXPECT_EQ(resized, 2);
}

TEST_F(TitelBarWindow, DoubleClickMaximisesOnlyWithTheButton) {
    int doubleClicks = 0;
    int clicks = 0;
    QObject::connect(&Bar(), &TitelBar::DblClick, [&] { ++doubleClicks; });
    QObject::connect(&Bar(), &TitelBar::Click, [&] { ++clicks; });
    Bar().SetShowMaximized(false);
    QTest::mouseClick(&Bar(), Qt::LeftButton, {}, QPoint(100, 10));
    QTest::mouseDClick(&Bar(), Qt::LeftButton, {}, QPoint(100, 10));
    QTest::mouseRelease(&Bar(), Qt::LeftButton, {}, QPoint(100, 10));
    EXPECT_EQ(doubleClicks, 1);
    EXPECT_EQ(clicks, 1);
    EXPECT_FALSE(Bar().Maximised());
    Bar().SetShowMaximized(true);
    QTest::mouseDClick(&Bar(), Qt::LeftButton, {}, QPoint(100, 10));
    EXPECT_EQ(doubleClicks, 2);
    EXPECT_TRUE(Bar().Maximised());
}

TEST_F(TitelBarWindow, ADoubleClickInsideAYieldOfTheFirstIsLeftOut) {
    const QRect place = form->WindowRect();
    QTimer::singleShot(0, form, [this] { Bar().MaxminizeParent(); });
    Bar().MaxminizeParent();
    EXPECT_TRUE(Bar().Maximised());
    EXPECT_EQ(form->WindowRect(), forms::WorkArea());
    Bar().MaxminizeParent();
    EXPECT_EQ(form->WindowRect(), place);
}

TEST_F(TitelBarWindow, AWindowThatThePlatformMaximisedEndsInTheWorkArea) {
    form->SetWindowState(forms::MaximisedWindow);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Bar().Maximised(); }));
    EXPECT_EQ(form->WindowState(), forms::NormalWindow);
    EXPECT_EQ(form->WindowRect(), forms::WorkArea());
}

TEST_F(TitelBarWindow, TheBarDragsAndItsButtonsDoNot) {
    int drags = 0;
    QObject::connect(form, &forms::Form::EnterSizeMove, [&] { ++drags; });
    QObject::connect(form, &forms::Form::ExitSizeMove, [&] { --drags; });
    const auto drag = [&](QWidget& from, QPoint start, QPoint end) {
        QTest::mousePress(&from, Qt::LeftButton, {}, start);
        QMouseEvent move(QEvent::MouseMove, QPointF(end), QPointF(from.mapToGlobal(end)), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(&from, &move);
        const int running = drags;
        QTest::mouseRelease(&from, Qt::LeftButton, {}, end);
        QMouseEvent up(QEvent::MouseMove, QPointF(end), QPointF(from.mapToGlobal(end)), Qt::NoButton, Qt::NoButton,
                       Qt::NoModifier);
        QCoreApplication::sendEvent(&from, &up); // ends a drag that is still on
        return running;
    };
    EXPECT_EQ(drag(Bar(), QPoint(100, 10), QPoint(110, 12)), 1);
    EXPECT_FALSE(Bar().HasFocus());
    const QPoint overClose = Bar().Button(TitelBar::CloseButton).geometry().center();
    EXPECT_EQ(drag(Bar(), QPoint(100, 10), overClose), 0);
    EXPECT_EQ(drag(Bar().Button(TitelBar::MinimiseButton), QPoint(5, 5), QPoint(8, 5)), 0);
}

TEST_F(TitelBarWindow, MovesAreReportedWithTheFocusOnlyAndItGoesBackAfterAClick) {
    QStringList order;
    QObject::connect(&Bar(), &TitelBar::MouseDown, [&] { order << QStringLiteral("down"); });
    QObject::connect(&Bar(), &TitelBar::MouseUp, [&] { order << QStringLiteral("up"); });
    QObject::connect(&Bar(), &TitelBar::Click, [&] { order << QStringLiteral("click"); });
    QObject::connect(&Bar(), &TitelBar::MouseMove, [&] { order << QStringLiteral("move"); });
    auto* other = new QWidget(form->Client());
    other->setFocusPolicy(Qt::StrongFocus);
    other->show();
    other->setFocus();
    QTest::mouseMove(&Bar(), QPoint(100, 10));
    EXPECT_TRUE(order.isEmpty());
    QTest::mousePress(&Bar(), Qt::LeftButton, {}, QPoint(100, 10));
    EXPECT_TRUE(Bar().HasFocus());
    QTest::mouseRelease(&Bar(), Qt::LeftButton, {}, QPoint(100, 10));
    EXPECT_EQ(order, (QStringList{QStringLiteral("down"), QStringLiteral("up"), QStringLiteral("click")}));
    EXPECT_FALSE(Bar().HasFocus());
    EXPECT_EQ(form->focusWidget(), other);
}

TEST_F(TitelBarWindow, ASpinHasEighteenStepsAndNoOtherStartsMeanwhile) {
    AlphaImage& close = Bar().Button(TitelBar::CloseButton);
    forms::Timer& timer = Bar().SpinTimer(TitelBar::CloseButton);
    Bar().SetBackColor(base::Colour(0xF7B8F8));
    form->SetColourKey(Bar().BackColor());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !form->KeyedRegion().isEmpty(); }));
    const QRect whole(close.mapTo(form, QPoint(0, 0)), close.size());
    EXPECT_EQ(CoveredColumns(TitelBar::CloseButton), -1);
    Enter(close);
    EXPECT_EQ(close.Hover(), 1);
    ASSERT_TRUE(timer.Enabled());
    EXPECT_EQ(timer.Interval(), 25);
    const int widths[] = {18, 16, 10, 4, 4,
                          10, 16, 18, 20}; // 20 times the cosine of 20, 40, ... degrees, to even halves
    for (int step = 1; step <= 18; ++step) {
        ASSERT_TRUE(timer.Enabled()) << step;
        Q_EMIT timer.Tick();
        EXPECT_EQ(Bar().SpinRunning(), step < 18) << step;
        EXPECT_EQ(timer.Tag(), QString::number(step < 18 ? step * 20 : 0));
        EXPECT_EQ(CoveredColumns(TitelBar::CloseButton), step < 18 ? widths[(step - 1) % 9] : -1) << step;
        QTest::qSleep(17); // so soon after another paint a window holds one back
        form->repaint();
        EXPECT_FALSE(form->KeyedRegion().isEmpty());
        EXPECT_FALSE(form->KeyedRegion().intersects(whole)) << step;
        Enter(Bar().Button(TitelBar::MinimiseButton));
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(&Bar().Button(TitelBar::MinimiseButton), &leave);
        if (step < 18) {
            EXPECT_FALSE(Bar().SpinTimer(TitelBar::MinimiseButton).Enabled());
        }
    }
    EXPECT_FALSE(timer.Enabled());
}

TEST_F(TitelBarWindow, AWindowThatEndsDuringASpinOrAClickStopsItsTimers) {
    Enter(Bar().Button(TitelBar::CloseButton));
    Q_EMIT Bar().SpinTimer(TitelBar::CloseButton).Tick();
    QObject::connect(&Bar(), &TitelBar::HelpButtonClick, [this] { form->Unload(); });
    Bar().SetShowHelp(true);
    Bar().SetShowHelpEnabled(true);
    Click(*form, TitelBar::HelpButton);
    EXPECT_TRUE(form->IsUnloaded());
    EXPECT_FALSE(Bar().SpinTimer(TitelBar::CloseButton).Enabled());
    Bar().MaxminizeParent();
    EXPECT_FALSE(Bar().Maximised());
}

} // namespace
} // namespace controls
