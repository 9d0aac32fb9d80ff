// The colour editor by real clicks and keys.
#include "appearance_fixture.h"

#include "appearance/skin.h"
#include "base/yield.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "draw/system_colours.h"
#include "forms/label.h"
#include "suite/check_box.h"
#include "suite/color_picker.h"
#include "suite/combo_box.h"
#include "suite/h_scroll.h"
#include "suite/shadow_manager.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QTest>
#include <set>

using namespace appearance;

namespace {

class Editor : public AppearanceTest {
  protected:
    void SetUp() override {
        AppearanceTest::SetUp();
        Open();
    }

    void TearDown() override {
        suite::SetColourDialog({});
        AppearanceTest::TearDown();
    }

    void Open() {
        form_ = ColorsForm();
        ASSERT_NE(form_, nullptr);
        form_->Show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(form_));
    }

    // As a new run of the program would find it.
    void Restart() {
        form_->Unload(true);
        forms::Forms::Instance().Bury();
        Open();
    }

    template <typename T> T* Find(const char* name) const {
        T* const control = form_->Find<T>(QLatin1StringView(name));
        EXPECT_NE(control, nullptr) << name;
        return control;
    }

    static void ClickOn(forms::Control* control) {
        QWidget* const target = control->childAt(control->rect().center());
        QTest::mouseClick(target ? target : control, Qt::LeftButton);
    }

    // Chooses an entry as the keyboard does, which reports it even if it is the present one.
    void Choose(const QString& name) const {
        QComboBox* const box = Find<suite::ComboBox>("Combo2")->Box();
        box->setCurrentIndex(box->findText(name));
        Q_EMIT box->activated(box->currentIndex());
    }

    FrmColors* form_ = nullptr;
};

TEST_F(Editor, EachPickedColourShowsAtOnceInAllWindowsAndIsSaved) {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmOther"), [] {
        return std::make_unique<forms::Form>(QStringLiteral("FrmOther"), 3000, 3000);
    });
    forms::Form* const other = forms::Forms::Instance().New(QStringLiteral("FrmOther"));
    forms::Label label(other->Client(), QStringLiteral("Label1"));
    std::set<QString> titles;
    for (const ColourRow& row : colourRows) {
        const base::Colour chosen(quint32(0x010101 * (row.Index + 1)));
        suite::SetColourDialog([&](QWidget*, base::Colour start, const QString& title) {
            EXPECT_EQ(start, ColorOf(row.Index)) << row.Key;
            EXPECT_TRUE(titles.insert(title).second) << title.toStdString();
            return std::optional(chosen);
        });
        ClickOn(ColorPicker(row.Index));
        EXPECT_EQ(ColorOf(row.Index), chosen) << row.Key;
        EXPECT_EQ(Stored(QLatin1StringView(row.Key)), QString::number(chosen.Value()));
    }
    EXPECT_EQ(titles.count(QStringLiteral("Buttons & Tabs: Background")), 1U);
    EXPECT_EQ(label.BackColor(), ColorOf(ProgramBack));
    EXPECT_EQ(label.ForeColor(), ColorOf(ProgramText));
    EXPECT_EQ(other->BackColor(), ColorOf(ProgramBack));
    EXPECT_EQ(Find<controls::TitelBar>("TitelBar1")->ButtonXForeColor(), ColorOf(TitleButtonXFore));

    // Cancelled, nothing changes; the keyboard opens the dialog too.
    int asked = 0;
    suite::SetColourDialog([&](QWidget*, base::Colour, const QString&) -> std::optional<base::Colour> {
        ++asked;
        return std::nullopt;
    });
    QTest::keyClick(ColorPicker(ProgramBack)->Inner(), Qt::Key_Space);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(ColorOf(ProgramBack), base::Colour(0x010101));
}

TEST_F(Editor, ASavedPresetComesBackPixelForPixel) {
    const auto changeTo = [](base::Colour colour) {
        suite::SetColourDialog([=](QWidget*, base::Colour, const QString&) { return std::optional(colour); });
        ClickOn(ColorPicker(ProgramBack));
    };
    changeTo(Rgb(0x203040));
    QString prompt, offered;
    forms::SetInputBoxAnswer([&](const QString& text, const QString& title, const QString& preset) {
        prompt = text + u'|' + title;
        offered = preset;
        return std::optional(QStringLiteral("Mine"));
    });
    ClickOn(Find<controls::dcButton>("Command2"));
    EXPECT_EQ(prompt, QStringLiteral("Preset Name:|Save Colors As Preset"));
    EXPECT_EQ(offered, QString());
    EXPECT_EQ(Find<suite::ComboBox>("Combo2")->Text(), QString());
    form_->clearFocus();
    form_->hide();
    QApplication::processEvents();
    Restart();
    const QImage before = form_->grab().toImage();

    changeTo(Rgb(0xA0FFA0));
    EXPECT_NE(form_->grab().toImage(), before);
    Choose(QStringLiteral("Mine"));
    EXPECT_EQ(ColorOf(ProgramBack), Rgb(0x203040));
    EXPECT_EQ(Stored(QStringLiteral("programback")), QString::number(Rgb(0x203040).Value()));
    EXPECT_TRUE(Find<suite::ComboBox>("Combo2")->Enabled());
    Restart();
    EXPECT_EQ(form_->grab().toImage(), before);
}

TEST_F(Editor, CancelledOrBlankPresetNamesSaveNothing) {
    for (const auto& answer : {std::optional<QString>(), std::optional(QStringLiteral("   "))}) {
        forms::SetInputBoxAnswer([&](const QString&, const QString&, const QString&) { return answer; });
        Find<suite::ComboBox>("Combo2")->SetText(QStringLiteral("Current Windows Default"));
        ClickOn(Find<controls::dcButton>("Command2"));
        EXPECT_EQ(Find<suite::ComboBox>("Combo2")->Text(), QStringLiteral("Current Windows Default"));
    }
    EXPECT_TRUE(QDir(Path(QStringLiteral("color_presets"))).isEmpty());
}

TEST_F(Editor, TheListIsDisabledWhileItsChoiceIsApplied) {
    suite::ComboBox* const combo = Find<suite::ComboBox>("Combo2");
    bool enabledMeanwhile = true;
    QMetaObject::invokeMethod(
        form_, [&] { enabledMeanwhile = combo->Enabled(); }, Qt::QueuedConnection);
    draw::SetSysColor(draw::COLOR_BTNFACE, Rgb(0xABCDEF));
    Choose(QStringLiteral("Current Windows Default"));
    draw::ResetSysColors();
    EXPECT_FALSE(enabledMeanwhile);
    EXPECT_TRUE(combo->Enabled());
    EXPECT_EQ(form_->BackColor(), Rgb(0xABCDEF));
    EXPECT_EQ(Stored(QStringLiteral("programback")), QString::number(Rgb(0xABCDEF).Value()));
    // The empty item leaves everything as it is.
    SetColor(ProgramBack, Rgb(0x111111));
    Choose(QString());
    EXPECT_EQ(form_->BackColor(), Rgb(0xABCDEF));
}

TEST_F(Editor, SegmentsReachTheExampleAtOnceAndRealBarsAtTheNextApplication) {
    auto* const bar = new controls::BrindlexPB(form_->Client(), QStringLiteral("PB1"));
    auto* const box = Find<suite::CheckBox>("CheckPBarSmooth");
    ClickOn(box);
    EXPECT_EQ(box->Value(), 1);
    EXPECT_EQ(Stored(QStringLiteral("PBarSegments")), QStringLiteral("1"));
    EXPECT_TRUE(Find<controls::BrindlexPB>("PBarExample")->Segments());
    EXPECT_FALSE(Find<controls::BrindlexPB>("MBarExample")->Segments());
    EXPECT_FALSE(bar->Segments());
    ApplyColorsToForm(form_);
    EXPECT_TRUE(bar->Segments());

    // A preset's own words about segments count for nothing; those of the settings are read again.
    QDir(folder_.path()).mkpath(QStringLiteral("color_presets"));
    Write(QStringLiteral("color_presets/p.ini"), "[colors]\r\nPBarSegments=0\r\nMBarSegments=1\r\n");
    ListColorPresets(Find<suite::ComboBox>("Combo2"));
    Choose(QStringLiteral("p"));
    EXPECT_EQ(box->Value(), 1);
    EXPECT_EQ(Find<suite::CheckBox>("CheckMBarSmooth")->Value(), 0);
    Restart();
    EXPECT_TRUE(Find<controls::BrindlexPB>("PBarExample")->Segments());
}

TEST_F(Editor, ScrollingDrivesTheExamples) {
    for (const char* kind : {"MB", "PB"}) {
        auto* const scroll = Find<suite::HScroll>((QByteArray("HScroll") + kind + "Example").constData());
        auto* const bar = Find<controls::BrindlexPB>((QByteArray(kind) + "arExample").constData());
        EXPECT_EQ(scroll->Max(), 100);
        EXPECT_EQ(bar->Value(), 50);
        scroll->SetFocus();
        QTest::keyClick(scroll->focusWidget() ? scroll->focusWidget() : scroll->childAt(2, 2), Qt::Key_Home);
        EXPECT_EQ(bar->Value(), 0) << kind;
    }
}

TEST_F(Editor, TheShadowSwitchIsStoredAndKnown) {
    ClickOn(Find<suite::CheckBox>("CheckDisableShadow"));
    EXPECT_TRUE(values::Program().ShadowDisabled);
    EXPECT_FALSE(values::Program().ShadowEnabled);
    EXPECT_EQ(base::GetPrivateProfileStringW(QStringLiteral("main"), QStringLiteral("CheckDisableShadow"), {}, 9,
                                             Path(QStringLiteral("settings.ini"))),
              QStringLiteral("1"));
    Restart();
    EXPECT_EQ(Find<suite::CheckBox>("CheckDisableShadow")->Value(), 1);
}

TEST_F(Editor, AWindowThatClosesWhileShadowsAreSwitchedOnGetsNone) {
    suite::ShadowManager& shadows = suite::SharedShadowManager();
    shadows.SetCompositingSource([] { return true; });
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmOther"), [] {
        return std::make_unique<forms::Form>(QStringLiteral("FrmOther"), 3000, 3000);
    });
    forms::Form* const other = forms::Forms::Instance().New(QStringLiteral("FrmOther"));
    auto* const box = Find<suite::CheckBox>("CheckDisableShadow");
    ClickOn(box);
    QMetaObject::invokeMethod(
        form_, [other] { other->Unload(true); }, Qt::QueuedConnection);
    ClickOn(box);
    EXPECT_TRUE(other->IsUnloaded());
    EXPECT_TRUE(shadows.Knows(form_));
    EXPECT_FALSE(shadows.Knows(other));
    shadows.SetCompositingSource({});
}

TEST_F(Editor, ClosingOnlyHidesTheTable) {
    SetColor(InfoText, Rgb(0x123456));
    auto& close = Find<controls::TitelBar>("TitelBar1")->Button(controls::TitelBar::CloseButton);
    QTest::mouseClick(&close, Qt::LeftButton);
    EXPECT_FALSE(form_->isVisible());
    form_->Show();
    form_->close();
    EXPECT_FALSE(form_->isVisible());
    EXPECT_EQ(ColorsForm(), form_);
    EXPECT_EQ(ColorOf(InfoText), Rgb(0x123456));

    values::Program().ProgramClosing = true;
    EXPECT_TRUE(form_->Unload());
    EXPECT_EQ(ColorsForm(), nullptr);
}

TEST_F(Editor, AnUnwritableFolderChangesTheColoursAndSavesNothing) {
    // Stands for any folder that nobody can write: its place is taken by a file.
    Write(QStringLiteral("blocked"), "x");
    base::SetProgramFolder(Path(QStringLiteral("blocked")));
    suite::SetColourDialog([](QWidget*, base::Colour, const QString&) { return std::optional(Rgb(0x998877)); });
    ClickOn(ColorPicker(ProgramBack));
    EXPECT_EQ(form_->BackColor(), Rgb(0x998877));
    SaveColorPreset(QStringLiteral("x"));
    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files), QStringList{QStringLiteral("blocked")});
}

TEST_F(Editor, ShowsItsDesign) {
    EXPECT_EQ(form_->Caption(), QStringLiteral("Edit Program Colors"));
    EXPECT_EQ(Find<controls::TitelBar>("TitelBar1")->Caption(), form_->Caption());
    EXPECT_EQ(form_->WindowRect().size(), QSize(475, 349));
    EXPECT_FALSE(form_->LogoPicture().IsEmpty());
    EXPECT_EQ(ColorPicker(ProgramBack)->cursor().shape(), Qt::BitmapCursor);
    // Beside the slanted end of the title bar one sees what lies behind the window.
    form_->grab();
    EXPECT_TRUE(form_->KeyedRegion().contains(QPoint(form_->WindowRect().width() - 1, 0)));
    EXPECT_FALSE(form_->KeyedRegion().contains(QPoint(5, 5)));
    EXPECT_FALSE(form_->KeyedRegion().contains(QPoint(5, 200)));
    for (QObject* const control : form_->Controls()) {
        const auto* const widget = qobject_cast<QWidget*>(control);
        if (!widget || !widget->isVisible())
            continue;
        EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry())) << control->objectName().toStdString();
        for (QObject* const second : form_->Controls()) {
            const auto* const sibling = qobject_cast<QWidget*>(second);
            if (!sibling || sibling == widget || !sibling->isVisible() || sibling->parent() != widget->parent())
                continue;
            EXPECT_FALSE(sibling->geometry().intersects(widget->geometry()))
                << control->objectName().toStdString() << " and " << second->objectName().toStdString();
        }
    }
}

} // namespace
