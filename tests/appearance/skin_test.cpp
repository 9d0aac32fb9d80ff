#include "appearance_fixture.h"

#include "appearance/skin.h"
#include "forms/component.h"
#include "forms/form.h"
#include "forms/late_bound.h"
#include "forms/picture_box.h"
#include "forms/screen.h"
#include "suite/tab_control.h"

#include <vector>

using namespace appearance;
using base::Colour;

namespace {

// Stands for any control: it has the properties that most rows set and nothing else.
class AnyControl : public forms::Component {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackColor MEMBER BackColor)
    Q_PROPERTY(base::Colour BackStartColor MEMBER BackStartColor)
    Q_PROPERTY(base::Colour ForeColor MEMBER ForeColor)
    Q_PROPERTY(base::Colour BarColor MEMBER BarColor)
    Q_PROPERTY(base::Colour BarForeColor MEMBER BarForeColor)
    Q_PROPERTY(bool Segments MEMBER Segments)
    Q_PROPERTY(int Appearance MEMBER Appearance)

  public:
    AnyControl(forms::Form* form, const char* name) : Component(form, QLatin1StringView(name)) {}
    Q_INVOKABLE void Refresh() { ++Refreshes; }

    Colour BackColor{1};
    Colour BackStartColor{1};
    Colour ForeColor{1};
    Colour BarColor{1};
    Colour BarForeColor{1};
    bool Segments = false;
    int Appearance = 0;
    int Refreshes = 0;
};

class Grid : public forms::Component {
    Q_OBJECT
    Q_PROPERTY(int Rows MEMBER Rows)
    Q_PROPERTY(int Cols MEMBER Cols)
    Q_PROPERTY(bool Redraw MEMBER Redraw)
    Q_PROPERTY(base::Colour GridColor MEMBER GridColor)

  public:
    using Component::Component;
    Q_INVOKABLE void SetCellBackColor(int row, int column, base::Colour colour) {
        EXPECT_FALSE(Redraw);
        Cells.push_back({row, column, int(colour.Value())});
    }

    int Rows = 2;
    int Cols = 3;
    bool Redraw = true;
    Colour GridColor;
    std::vector<std::array<int, 3>> Cells;
};

class Bar : public forms::Component {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackGroundColor MEMBER BackGroundColor)

  public:
    using Component::Component;
    Q_INVOKABLE void ApplyBackGroundColor() { Applied = BackGroundColor; }
    Colour BackGroundColor;
    Colour Applied;
};

// A title bar and a panel in one: what the first steps set.
class TitleParts : public forms::Component {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackColorV1Begin MEMBER BackColorV1Begin)
    Q_PROPERTY(base::Colour ButtonXForeColor MEMBER ButtonXForeColor)
    Q_PROPERTY(base::Colour gCTitleStart MEMBER gCTitleStart)
    Q_PROPERTY(base::Colour TitleForeColor MEMBER TitleForeColor)

  public:
    using Component::Component;
    Colour BackColorV1Begin;
    Colour ButtonXForeColor;
    Colour gCTitleStart;
    Colour TitleForeColor;
};

class Skin : public AppearanceTest {
  protected:
    void SetUp() override {
        AppearanceTest::SetUp();
        for (const ColourRow& row : colourRows)
            SetColor(row.Index, Of(row.Index));
    }
    // A colour of its own for each index.
    static Colour Of(int index) { return Colour(quint32(0x100 + index)); }

    forms::Form form_{QStringLiteral("FrmTest"), 3000, 1500};
};

TEST_F(Skin, NamesDecide) {
    AnyControl cancel(&form_, "CommandCancel"), important(&form_, "B2CommandSend"), check(&form_, "CheckForUpdates");
    AnyControl combo(&form_, "Combo2"), scroll(&form_, "HScrollMBExample"), info(&form_, "InfoLabel3");
    AnyControl label(&form_, "LabelListViewHardware"), best(&form_, "ImportantPictureBestMacthColor");
    AnyControl frame(&form_, "FrameNormal"), button(&form_, "dcButton1"), other(&form_, "XCommand"),
        logo(&form_, "LogoPictureBox");
    ApplyColorsToForm(&form_);
    EXPECT_EQ(cancel.BackColor, Of(ButtonTopBack));
    EXPECT_EQ(cancel.BackStartColor, Of(ButtonTopBack));
    EXPECT_EQ(cancel.ForeColor, Of(ButtonText));
    EXPECT_EQ(button.ForeColor, Of(ButtonText));
    EXPECT_EQ(important.BackStartColor, Of(ImportantButtonTopBack));
    EXPECT_EQ(important.ForeColor, Of(ImportantButtonText));
    EXPECT_EQ(check.BackColor, Of(ProgramBack));
    EXPECT_EQ(check.ForeColor, Of(ProgramText));
    EXPECT_EQ(combo.BackColor, Of(TextBack));
    EXPECT_EQ(combo.ForeColor, Of(TextText));
    EXPECT_EQ(info.BackColor, Of(ProgramBack));
    EXPECT_EQ(info.ForeColor, Of(InfoText));
    EXPECT_EQ(label.BackColor, Of(ProgramBack));
    EXPECT_EQ(label.ForeColor, Of(ProgramText));
    // Matches three rows; the important routine comes after the back routine.
    EXPECT_EQ(best.BackColor, Of(ImportantText));
    EXPECT_EQ(best.ForeColor, Of(ImportantText));
    EXPECT_EQ(frame.Appearance, 2);
    EXPECT_EQ(logo.BackColor, Of(LogoBack));
    for (const AnyControl* untouched : {&scroll, &other}) {
        EXPECT_EQ(untouched->BackColor, Colour(1)) << untouched->Name().toStdString();
        EXPECT_EQ(untouched->ForeColor, Colour(1)) << untouched->Name().toStdString();
    }
    EXPECT_EQ(form_.BackColor(), Of(ProgramBack));
    EXPECT_EQ(form_.ForeColor(), Of(TitleBottomBack));
    // The walks ask for no refresh; the last step alone refreshes, and everything.
    EXPECT_EQ(cancel.Refreshes, 1);
    EXPECT_EQ(scroll.Refreshes, 1);
}

TEST_F(Skin, BarsTakeFourColoursAndTheSegmentBoxes) {
    AnyControl progress(&form_, "PB1"), monitor(&form_, "MBarExample");
    Write(QStringLiteral("settings.ini"), "[colors]\r\nPBarSegments=1\r\n");
    forms::Forms::Instance().Find(QStringLiteral("FrmColors"))->Unload(true);
    ApplyColorsToForm(&form_);
    EXPECT_EQ(progress.BackColor, RowOf(PbBack)->Default);
    EXPECT_EQ(progress.BarColor, RowOf(PbBar)->Default);
    EXPECT_TRUE(progress.Segments);
    EXPECT_FALSE(monitor.Segments);
    SetColor(MbFillText, Of(MbFillText));
    SetColor(MbText, Of(MbText));
    RunRoutine(&form_, Routine::MonitorBar, true);
    EXPECT_EQ(monitor.BarForeColor, Of(MbFillText));
    EXPECT_EQ(monitor.ForeColor, Of(MbText));
    EXPECT_EQ(monitor.Refreshes, 2);
    EXPECT_EQ(progress.Refreshes, 1);
}

TEST_F(Skin, TitleBarIsFoundByItsExactNameAndPanelsByTheirPrefix) {
    TitleParts title(&form_, QStringLiteral("TitelBar1")), other(&form_, QStringLiteral("titelbar1"));
    TitleParts panel(&form_, QStringLiteral("PanelProgress"));
    ApplyColorsToForm(&form_);
    EXPECT_EQ(title.BackColorV1Begin, Of(TitleTopBack));
    EXPECT_EQ(title.ButtonXForeColor, Of(TitleButtonXFore));
    EXPECT_EQ(title.gCTitleStart, Colour());
    EXPECT_EQ(other.BackColorV1Begin, Colour());
    EXPECT_EQ(panel.gCTitleStart, Of(TitleTopBack));
    EXPECT_EQ(panel.TitleForeColor, Of(TitleText));
}

TEST_F(Skin, GridsAndBusyBarsGetMoreThanProperties) {
    Grid grid(&form_, QStringLiteral("LynxGrid1"));
    Bar bar(&form_, QStringLiteral("DB1"));
    ApplyColorsToForm(&form_);
    ASSERT_EQ(grid.Cells.size(), 6U);
    EXPECT_EQ(grid.Cells.back(), (std::array<int, 3>{1, 2, int(Of(TextBack).Value())}));
    EXPECT_TRUE(grid.Redraw);
    EXPECT_EQ(grid.GridColor, Of(TextText));
    EXPECT_EQ(bar.Applied, Of(ProgramBack));
}

TEST_F(Skin, TabsAreRepaintedFiveTimesByTheirFirstCaption) {
    suite::TabControl tabs(form_.Client(), QStringLiteral("TabControl1"));
    tabs.AddItem(QStringLiteral("Hardware (0)"), nullptr);
    QStringList captions;
    // Seen through an event that each of the yields dispatches.
    QObject watcher;
    bool running = true;
    std::function<void()> look = [&] {
        if (captions.isEmpty() || captions.last() != tabs.Item(0)->Caption())
            captions.append(tabs.Item(0)->Caption());
        if (running)
            QMetaObject::invokeMethod(&watcher, look, Qt::QueuedConnection);
    };
    look();
    ApplyColorsToForm(&form_);
    running = false;
    EXPECT_EQ(captions.count(QStringLiteral("* Hardware (0) *")), 5);
    EXPECT_EQ(tabs.Item(0)->Caption(), QStringLiteral("Hardware (0)"));
    EXPECT_EQ(tabs.PaintManager()->ColorSet()->ButtonNormal, Of(ButtonTopBack));
    EXPECT_EQ(tabs.PaintManager()->ColorSet()->SelectedText, Of(ProgramText));
    EXPECT_EQ(tabs.PaintManager()->ColorSet()->FrameBorder, Of(TitleBottomBack));
    EXPECT_EQ(tabs.BackColor(), Of(ProgramBack));
}

TEST_F(Skin, TheFrameStandsOnTheWindowOrOnItsPictureBase) {
    const Colour border = Of(TitleBottomBack), back = Of(ProgramBack);
    const int right = forms::ToPixels(form_.Width()) - 1, bottom = forms::ToPixels(form_.Height()) - 1;
    ApplyColorsToForm(&form_);
    EXPECT_EQ(form_.hdc().GetPixel(0, 10), border);
    EXPECT_EQ(form_.hdc().GetPixel(right, 10), border);
    EXPECT_EQ(form_.hdc().GetPixel(30, bottom), border);
    EXPECT_EQ(form_.hdc().GetPixel(30, 0), back);

    forms::PictureBox base(form_.Client(), QStringLiteral("PictureBase1"));
    base.Move(0, 0, form_.Width(), form_.Height());
    ApplyColorsToForm(&form_);
    EXPECT_EQ(form_.hdc().GetPixel(0, 10), back);
    EXPECT_EQ(base.hdc().GetPixel(0, 10), border);
    EXPECT_EQ(base.hdc().GetPixel(right, bottom), border);
    EXPECT_EQ(base.hdc().GetPixel(30, 0), base.BackColor());
}

TEST_F(Skin, AllFormsAreColouredAndTheSchemeIsSaved) {
    forms::Forms::Instance().RegisterMaker(
        QStringLiteral("FrmTest"), [] { return std::make_unique<forms::Form>(QStringLiteral("FrmTest"), 900, 900); });
    forms::Form* const first = forms::Forms::Instance().New(QStringLiteral("FrmTest"));
    forms::Form* const second = forms::Forms::Instance().New(QStringLiteral("FrmTest"));
    AnyControl label(second, "Label1");
    // A control that goes while the others are coloured, and a window.
    auto* const doomed = new AnyControl(first, "Label2");
    QMetaObject::invokeMethod(
        &form_,
        [&] {
            delete doomed;
            second->Unload(true);
        },
        Qt::QueuedConnection);
    AnyControl last(first, "Label3");
    ApplyColorsToAllForms();
    EXPECT_EQ(last.ForeColor, Of(ProgramText));
    EXPECT_EQ(label.ForeColor, Colour(1));
    EXPECT_EQ(Stored(QStringLiteral("programtext")), QString::number(Of(ProgramText).Value()));
}

} // namespace

#include "skin_test.moc"
