#include "forms/form.h"
#include "forms/late_bound.h"
#include "suite/alpha_image.h"
#include "suite/check_box.h"
#include "suite/color_picker.h"
#include "suite/combo_box.h"
#include "suite/group_box.h"
#include "suite/h_scroll.h"
#include "suite/list_box.h"
#include "suite/list_view.h"
#include "suite/push_button.h"
#include "suite/tab_control.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

namespace {

using base::Colour;

class SuiteControls : public testing::Test {
  protected:
    SuiteControls() : form(QStringLiteral("FrmTest"), 9000, 6000) {}
    ~SuiteControls() override { suite::SetColourDialog({}); }

    template <typename Control> Control* Make(const char* name) {
        auto* made = new Control(form.Client(), QString::fromLatin1(name));
        made->Move(300, 300, 3000, 450);
        form.Show();
        return made;
    }
    static QAccessibleInterface* Accessible(QObject* object) { return QAccessible::queryAccessibleInterface(object); }

    forms::Form form;
};

TEST_F(SuiteControls, CheckBoxReportsUsersChangesAfterTheyAreMade) {
    auto* box = Make<suite::CheckBox>("CheckA");
    box->SetCaption(QStringLiteral("Bottom && Border"));
    QStringList log;
    QObject::connect(box, &suite::CheckBox::Click, box, [&] { log << QStringLiteral("click %1").arg(box->Value()); });
    QObject::connect(box, &suite::CheckBox::MouseUp, box, [&](int button, int, double, double) {
        log << QStringLiteral("up%1 %2").arg(button).arg(box->Value());
    });
    box->SetValue(1);
    EXPECT_TRUE(log.isEmpty());
    QTest::mouseClick(box->Inner(), Qt::LeftButton, {}, QPoint(150, 15));
    EXPECT_EQ(log, QStringList({QStringLiteral("click 0"), QStringLiteral("up1 0")}));
    log.clear();
    QTest::keyClick(box->Inner(), Qt::Key_Space);
    EXPECT_EQ(log, QStringList({QStringLiteral("click 1"), QStringLiteral("up1 1")}));
    EXPECT_EQ(Accessible(box->Inner())->role(), QAccessible::CheckBox);
    EXPECT_TRUE(Accessible(box->Inner())->state().checked);
    EXPECT_EQ(Accessible(box->Inner())->text(QAccessible::Name), QStringLiteral("Bottom & Border"));
    box->SetEnabled(false);
    QTest::mouseClick(box->Inner(), Qt::LeftButton, {}, QPoint(150, 15));
    EXPECT_EQ(box->Value(), 1);
}

TEST_F(SuiteControls, ComboBoxReportsEveryChoiceOfTheUser) {
    auto* combo = Make<suite::ComboBox>("Combo2");
    for (const char* text : {"", "Current Windows Default", "Dark"})
        combo->AddItem(QString::fromLatin1(text));
    EXPECT_EQ(combo->ListIndex(), -1);
    EXPECT_EQ(combo->ListCount(), 3);
    QStringList chosen;
    QObject::connect(combo, &suite::ComboBox::Click, combo, [&] {
        combo->SetEnabled(false);
        chosen << combo->Text();
        combo->SetEnabled(true);
    });
    combo->SetFocus();
    QTest::keyClick(combo->Box(), Qt::Key_Down);
    QTest::keyClick(combo->Box(), Qt::Key_Down);
    // The keyboard is still here although the box was disabled in between.
    EXPECT_EQ(form.focusWidget(), combo->Box());
    QTest::keyClick(combo->Box(), Qt::Key_Down);
    EXPECT_EQ(chosen, QStringList({QString(), QStringLiteral("Current Windows Default"), QStringLiteral("Dark")}));
    // The same entry again, as a click in the list gives it.
    Q_EMIT combo->Box()->activated(2);
    EXPECT_EQ(chosen.size(), 4);
    combo->SetText(QStringLiteral("no such entry"));
    EXPECT_EQ(combo->ListIndex(), -1);
    combo->SetListIndex(1);
    EXPECT_EQ(chosen.last(), QStringLiteral("Current Windows Default"));
    combo->Clear();
    EXPECT_EQ(combo->Text(), QString());
    EXPECT_EQ(chosen.size(), 5);
}

TEST_F(SuiteControls, PickerAsksByMouseAndKeyAndTakesTheAnswer) {
    auto* picker = Make<suite::ColorPicker>("ColorPicker2");
    picker->SetCaption(QStringLiteral("Background"));
    picker->SetColor(Colour(0x112233));
    std::optional<Colour> answer;
    QList<quint32> asked;
    suite::SetColourDialog([&](QWidget*, Colour start, const QString& title) {
        asked << start.Value();
        EXPECT_EQ(title, QStringLiteral("Background"));
        picker->Pick(); // a second dialog never opens over the first
        return answer;
    });
    int changes = 0;
    QObject::connect(picker, &suite::ColorPicker::Change, picker, [&] { ++changes; });
    QTest::mouseClick(picker->Inner(), Qt::LeftButton);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(picker->Color(), Colour(0x112233));
    answer = Colour(0x00C8FD);
    QTest::keyClick(picker->Inner(), Qt::Key_Space);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(picker->Color(), Colour(0x00C8FD));
    QTest::keyClick(picker->Inner(), Qt::Key_Return);
    EXPECT_EQ(asked, QList<quint32>({0x112233, 0x112233, 0x00C8FD}));
    EXPECT_EQ(Accessible(picker->Inner())->text(QAccessible::Name), QStringLiteral("Background"));
    EXPECT_EQ(Accessible(picker->Inner())->text(QAccessible::Description), QStringLiteral("#FDC800"));
}

TEST_F(SuiteControls, PickerShowsItsColourAndReadsInTheFramesColour) {
    auto* frame = Make<suite::GroupBox>("FrameNormal");
    frame->Move(0, 0, 6000, 3000);
    frame->SetForeColor(Colour::FromRgb(255, 255, 0));
    auto* picker = new suite::ColorPicker(frame, QStringLiteral("ColorPicker0"), QString(6, QChar(0x2588)));
    picker->SetBackColor(Colour::FromRgb(64, 64, 64));
    picker->SetColor(Colour::FromRgb(10, 200, 30));
    picker->Move(300, 600, 3000, 450);
    const QImage picture = picker->grab().toImage();
    EXPECT_EQ(picture.pixelColor(20, picture.height() / 2), QColor(10, 200, 30));
    bool yellow = false;
    for (int x = 44; x < picture.width(); ++x)
        yellow |= picture.pixelColor(x, picture.height() / 2) == QColor(255, 255, 0);
    EXPECT_TRUE(yellow);
}

TEST_F(SuiteControls, ScrollBarReportsDraggingApart) {
    auto* scroll = Make<suite::HScroll>("HScrollPBExample");
    scroll->SetMax(100);
    scroll->SetValue(50);
    QStringList log;
    QObject::connect(scroll, &suite::HScroll::Change, scroll, [&] { log << QStringLiteral("change"); });
    QObject::connect(scroll, &suite::HScroll::Scroll, scroll, [&] { log << QStringLiteral("scroll"); });
    QTest::keyClick(scroll->Bar(), Qt::Key_Right);
    EXPECT_EQ(scroll->Value(), 51);
    scroll->Bar()->setSliderDown(true);
    scroll->Bar()->setValue(60);
    scroll->Bar()->setValue(70);
    scroll->Bar()->setSliderDown(false);
    EXPECT_EQ(log.join(QLatin1Char(' ')), QStringLiteral("change scroll scroll change"));
    scroll->SetValue(500);
    EXPECT_EQ(scroll->Value(), 100);
}

TEST_F(SuiteControls, PicturesFadeAndArePressedByKey) {
    auto* picture = Make<suite::AlphaImgCtl>("ImageLogo");
    QImage red(20, 20, QImage::Format_ARGB32_Premultiplied);
    red.fill(Qt::red);
    picture->SetPicture(draw::Picture::FromImage(red));
    picture->SetOpacity(50);
    QImage on(picture->size(), QImage::Format_RGB32);
    on.fill(Qt::black);
    picture->render(&on, {}, {}, QWidget::DrawChildren);
    EXPECT_NEAR(on.pixelColor(on.width() / 2, on.height() / 2).red(), 128, 2);
    EXPECT_EQ(on.pixelColor(1, on.height() / 2), QColor(Qt::black)) << "the picture keeps its shape";
    int clicks = 0;
    QObject::connect(picture, &suite::AlphaImgCtl::Click, picture, [&] { ++clicks; });
    QTest::keyClick(picture, Qt::Key_Space);
    EXPECT_EQ(clicks, 0);
    picture->SetClickable(true);
    QTest::keyClick(picture, Qt::Key_Space);
    QTest::mouseClick(picture, Qt::LeftButton);
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(Accessible(picture)->role(), QAccessible::Button);
}

TEST_F(SuiteControls, ButtonClicksOnceAndGroupBoxReadsAsGroup) {
    auto* button = Make<suite::PushButton>("PushButton1");
    button->SetCaption(QStringLiteral("&Go"));
    int clicks = 0;
    QObject::connect(button, &suite::PushButton::Click, button, [&] { ++clicks; });
    QTest::mouseClick(button->Inner(), Qt::LeftButton);
    QTest::keyClick(button->Inner(), Qt::Key_Space);
    EXPECT_EQ(clicks, 2);
    auto* group = Make<suite::GroupBox>("FrameNormal");
    group->SetCaption(QStringLiteral("Buttons && Tabs"));
    EXPECT_EQ(Accessible(group)->role(), QAccessible::Grouping);
    EXPECT_EQ(Accessible(group)->text(QAccessible::Name), QStringLiteral("Buttons & Tabs"));
}

TEST_F(SuiteControls, ListBoxKeepsTextsAsTheyStand) {
    auto* list = Make<suite::ListBox>("List1");
    list->AddItem(QStringLiteral("  b "));
    list->AddItem(QStringLiteral("a"));
    EXPECT_EQ(list->ListCount(), 2);
    EXPECT_EQ(list->List(0), QStringLiteral("  b "));
    EXPECT_EQ(list->List(5), QString());
    list->Clear();
    EXPECT_EQ(list->ListCount(), 0);
}

TEST_F(SuiteControls, TextsThatAreCutOffAreToolTips) {
    auto* box = Make<suite::CheckBox>("CheckA");
    box->Move(0, 0, 1200, 300);
    const auto tip = [](QWidget* inner) {
        QToolTip::hideText();
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), inner->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(inner, &help);
        return QToolTip::text();
    };
    box->SetCaption(QStringLiteral("Short"));
    EXPECT_EQ(tip(box->Inner()), QString());
    box->SetCaption(QStringLiteral("Search && find a long caption"));
    EXPECT_EQ(tip(box->Inner()), QStringLiteral("Search & find a long caption"));
    auto* picker = Make<suite::ColorPicker>("ColorPicker2");
    picker->SetCaption(QStringLiteral("Text"));
    picker->SetColor(Colour(0x0000FF));
    EXPECT_EQ(tip(picker->Inner()), QStringLiteral("#FF0000"));
    // An entry may be a file's name, and must not load what it would have loaded.
    auto* combo = Make<suite::ComboBox>("Combo2");
    combo->Move(0, 0, 1200, 300);
    combo->AddItem(QStringLiteral("<img src='evil.svg'> from a stranger"));
    combo->SetListIndex(0);
    EXPECT_EQ(tip(combo->Inner()), QStringLiteral("<qt>&lt;img src='evil.svg'&gt; from a stranger</qt>"));
}

// What a skin sets on each kind of control must be there by its name.
TEST_F(SuiteControls, TakeTheColoursOfTheSkinByName) {
    struct Row {
        QObject* control;
        std::vector<const char*> names;
    };
    auto* tabs = Make<suite::TabControl>("TabControl1");
    const std::array rows = {
        Row{Make<suite::ListView>("LV"), {"BackColor", "ForeColor"}},
        Row{Make<suite::CheckBox>("Check"), {"BackColor", "ForeColor"}},
        Row{Make<suite::ComboBox>("Combo"), {"BackColor", "ForeColor"}},
        Row{Make<suite::ListBox>("List"), {"BackColor", "ForeColor"}},
        Row{Make<suite::PushButton>("PushB"), {"BackColor", "ForeColor"}},
        Row{Make<suite::GroupBox>("Fra"), {"BackColor", "ForeColor"}},
        Row{Make<suite::ColorPicker>("ColorPicker"), {"BackColor", "Color"}},
        Row{tabs, {"BackColor"}},
        Row{new suite::TabControlPage(tabs, QStringLiteral("TabControlPage1")), {"BackColor"}},
    };
    for (const Row& row : rows) {
        for (const char* name : row.names) {
            const auto value = QVariant::fromValue(Colour(0x123456));
            EXPECT_EQ(forms::SetProperty(row.control, name, value), forms::PropertyResult::Set)
                << row.control->objectName().toStdString() << " " << name;
            EXPECT_EQ(forms::GetProperty(row.control, name).value<Colour>(), Colour(0x123456)) << name;
        }
    }
    for (QObject* framed : {rows[5].control, rows[6].control})
        EXPECT_EQ(forms::SetProperty(framed, "Appearance", 2), forms::PropertyResult::Set);
    EXPECT_EQ(forms::SetProperty(rows[0].control, "PaintManager.ColorSet.PaneFace", 0), forms::PropertyResult::Absent);
}

} // namespace
