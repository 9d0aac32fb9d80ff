#include "appearance/skin.h"

#include "appearance/frm_colors.h"
#include "appearance/window_effects.h"
#include "base/yield.h"
#include "forms/control.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/late_bound.h"
#include "forms/picture_box.h"
#include "forms/screen.h"
#include "suite/tab_control.h"

#include <QPointer>

namespace appearance {

namespace {

constexpr int flat = 2; // the Appearance of frames and colour pickers
// Pixels by which the top edge of a frame lies above what is seen of it.
constexpr int hiddenTopOfBox = 50;
constexpr int hiddenTopOfWindow = 200;

QObject* TitleBarOf(const forms::Form* form) { return form->FindControl(QStringLiteral("TitelBar1")); }

QVariant ValueOf(int value) {
    switch (value) {
    case flatAppearance:
        return flat;
    case pBarSegments:
        return PBarSegments();
    case mBarSegments:
        return MBarSegments();
    default:
        return QVariant::fromValue(ColorOf(value));
    }
}

bool MatchesPrefix(const SkinRow& row, const QString& lowerName) {
    for (const char* const prefix : row.Prefixes)
        if (prefix && lowerName.startsWith(QLatin1StringView(prefix)))
            return true;
    return false;
}

void RefreshControl(QObject* control) {
    if (auto* const visible = qobject_cast<forms::Control*>(control))
        visible->Refresh();
    else
        forms::CallByName(control, "Refresh");
}

// The tab strip takes its colours only when a caption changes, so one is changed and changed back.
void RepaintTabs(QObject* control) {
    const QPointer<suite::TabControl> tabs = qobject_cast<suite::TabControl*>(control);
    if (!tabs || !tabs->Item(0))
        return;
    const QString caption = tabs->Item(0)->Caption();
    tabs->Item(0)->SetCaption(QStringLiteral("* ") + caption + QStringLiteral(" *"));
    base::Yield();
    if (!tabs)
        return;
    tabs->Item(0)->SetCaption(caption);
    base::Yield();
}

void FramePictureBox(QObject* control) {
    auto* const box = qobject_cast<forms::PictureBox*>(control);
    if (!box)
        return;
    box->Cls();
    box->DrawBox(0, -hiddenTopOfBox, forms::ToPixels(box->Width()) - 1, forms::ToPixels(box->Height()) - 1);
    box->Refresh();
}

// Colours each cell of a grid by the setter of its cells, "SetCellBackColor" or "SetCellForeColor".
void ColourCells(QObject* grid, const char* setter, const QVariant& colour) {
    if (grid->metaObject()->indexOfMethod(QByteArray(setter) + "(int,int,base::Colour)") < 0)
        return;
    const int rows = forms::GetProperty(grid, "Rows").toInt();
    const int columns = forms::GetProperty(grid, "Cols").toInt();
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            QMetaObject::invokeMethod(grid, setter, Qt::DirectConnection, Q_ARG(int, row), Q_ARG(int, column),
                                      Q_ARG(base::Colour, colour.value<base::Colour>()));
}

void ApplyRow(const SkinRow& row, QObject* control) {
    const QVariant value = ValueOf(row.Value);
    const bool cells = row.Then == Extra::BackCells || row.Then == Extra::ForeCells;
    if (cells)
        forms::SetProperty(control, "Redraw", false);
    for (const char* const property : row.Properties)
        if (property)
            forms::SetProperty(control, property, value);
    switch (row.Then) {
    case Extra::None:
        break;
    case Extra::RepaintTabs:
        RepaintTabs(control);
        break;
    case Extra::ApplyBackGround:
        forms::CallByName(control, "ApplyBackGroundColor");
        break;
    case Extra::Frame:
        FramePictureBox(control);
        break;
    case Extra::BackCells:
        ColourCells(control, "SetCellBackColor", value);
        break;
    case Extra::ForeCells:
        ColourCells(control, "SetCellForeColor", value);
        break;
    }
    if (cells)
        forms::SetProperty(control, "Redraw", true);
}

// True if one of the routine's rows matched. A row that yields may see the control go.
bool ApplyRoutine(Routine routine, const QPointer<QObject>& control) {
    const QString name = control->objectName().toLower();
    bool touched = false;
    for (const SkinRow& row : skinRows) {
        if (row.In != routine || !MatchesPrefix(row, name))
            continue;
        ApplyRow(row, control);
        touched = true;
        if (!control)
            break;
    }
    return touched;
}

bool HasPictureBase(const forms::Form* form) {
    for (const QObject* const control : form->Controls())
        if (control->objectName().startsWith(QStringLiteral("picturebase"), Qt::CaseInsensitive))
            return true;
    return false;
}

void RunBorderRoutine(forms::Form* form) {
    form->SetForeColor(ColorOf(TitleBottomBack));
    UpdateShadow(form);
}

void RunStep(forms::Form* form, const SkinStep& step) {
    const QVariant colour = QVariant::fromValue(ColorOf(step.Colour));
    if (step.TitleBarProperty)
        if (QObject* const titleBar = TitleBarOf(form))
            forms::SetProperty(titleBar, step.TitleBarProperty, colour);
    if (step.Walk != Routine::None)
        RunRoutine(form, step.Walk, false);
    if (step.WindowProperty)
        forms::SetProperty(form, step.WindowProperty, colour);
}

} // namespace

void RunRoutine(forms::Form* form, Routine routine, bool refresh) {
    if (routine == Routine::Border)
        RunBorderRoutine(form);
    // By place, since the yields let anything change the window's controls.
    for (qsizetype i = 0; i < form->Controls().size(); ++i) {
        const QPointer<QObject> control = form->Controls().at(i);
        if (!ApplyRoutine(routine, control))
            continue;
        if (refresh && control)
            RefreshControl(control);
        base::Yield();
    }
    if (routine == Routine::Border && !HasPictureBase(form))
        DrawWindowFrame(form);
}

void RefreshControls(forms::Form* form) {
    for (qsizetype i = 0; i < form->Controls().size(); ++i) {
        RefreshControl(form->Controls().at(i));
        base::Yield();
    }
}

void DrawWindowFrame(forms::Form* form) {
    const auto* const titleBar = qobject_cast<forms::Control*>(TitleBarOf(form));
    const int top = (titleBar ? forms::ToPixels(titleBar->Height()) : 0) - hiddenTopOfWindow;
    form->Cls();
    form->DrawBox(0, top, forms::ToPixels(form->Width()) - 1, forms::ToPixels(form->Height()) - 1);
    form->Refresh();
}

void ApplyColorsToForm(forms::Form* form) {
    if (!form)
        return;
    for (const SkinStep& step : skinSteps)
        RunStep(form, step);
    RefreshControls(form);
}

void ApplyColorsToAllForms() {
    for (forms::Form* const form : forms::Forms::Instance().Loaded())
        if (!form->IsUnloaded())
            ApplyColorsToForm(form);
    SaveColors();
}

} // namespace appearance
