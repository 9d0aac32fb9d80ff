#include "appearance/frm_colors.h"

#include "appearance/colour_table.h"
#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/yield.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "suite/alpha_image.h"
#include "suite/check_box.h"
#include "suite/color_picker.h"
#include "suite/combo_box.h"
#include "suite/h_scroll.h"
#include "values/program_values.h"
#include "values/settings.h"
#include "window/form_icon.h"
#include "window/icon_resource.h"
#include "window/placement.h"

#include <QCursor>
#include <QPixmap>

static void InitAppearanceResources() { Q_INIT_RESOURCE(appearance); }

namespace appearance {

namespace {

const QString formName = QStringLiteral("FrmColors");
constexpr double designWidth = 7125;  // twips
constexpr double designHeight = 5235; // twips
constexpr int handCursorSize = 32;    // pixels at 96 dots per inch
constexpr double hotSpotX = 13.5 / 32;
constexpr double hotSpotY = 3.5 / 32;

} // namespace

FrmColors::FrmColors() : Form(formName, designWidth, designHeight) {
    SetCaption(QStringLiteral("Edit Program Colors"));
    CreateControls();
    ConnectControls();
}

suite::ColorPicker* FrmColors::ColorPicker(int index) const {
    return index >= 0 && index < pickerArraySize ? pickers_[size_t(index)] : nullptr;
}

const draw::Picture& FrmColors::LogoPicture() const { return logo_->Picture(); }

bool FrmColors::MBarSegments() const { return mBarSmooth_->Value() != 0; }
bool FrmColors::PBarSegments() const { return pBarSmooth_->Value() != 0; }

void FrmColors::Load() {
    window::SetFormIcon(*this, QStringLiteral("AAA"), false);
    SetWidth(designWidth);
    SetHeight(designHeight);
    SetSizeLimits(WindowRect().size(), WindowRect().size());
    window::CentreOnScreen(*this);
    titleBar_->SetCaption(Caption());
    titleBar_->SetWidth(Width());
    const int iconSize = window::TitleIconSize();
    titleBar_->SetPicture(window::LoadIconFromRes(QStringLiteral("AAA"), iconSize, iconSize, 0, false));
    SetHandCursor();
    ListColorPresets(presets_);
    disableShadow_->SetValue(values::Program().ShadowDisabled ? 1 : 0);
    LoadSegments(QStringLiteral("MBarSegments"), mBarSmooth_, mBarExample_);
    LoadSegments(QStringLiteral("PBarSegments"), pBarSmooth_, pBarExample_);
    LoadColors();
    ApplyColorsToForm(this);
    MakeWindowColorKeyed(this, titleBar_->BackColor());
}

void FrmColors::Resize() {
    titleBar_->SetWidth(Width());
    DrawWindowFrame(this);
}

void FrmColors::Activate() {
    if (activated_)
        return;
    activated_ = true;
    if (titleBar_->ShowCloseEnabled())
        titleBar_->SetShowClose(true);
    if (titleBar_->ShowMaximizedEnabled())
        titleBar_->SetShowMaximized(true);
    if (titleBar_->ShowMinimizedEnabled())
        titleBar_->SetShowMinimized(true);
    if (titleBar_->ShowHelpEnabled())
        titleBar_->SetShowHelp(true);
}

// The window is the colour table, so it outlives every closing but the program's.
bool FrmColors::QueryUnload() {
    if (values::ProgramClosing())
        return true;
    Hide();
    return false;
}

void FrmColors::SetHandCursor() {
    const int size = base::RoundToInt(handCursorSize * double(values::Program().DpiScale));
    const QImage image =
        mouseIcon_->Picture().Image().scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (image.isNull())
        return;
    const QCursor hand(QPixmap::fromImage(image), int(hotSpotX * size), int(hotSpotY * size));
    for (suite::ColorPicker* const picker : pickers_)
        if (picker)
            picker->setCursor(hand);
    for (QWidget* const control :
         std::initializer_list<QWidget*>{presets_, save_, disableShadow_, mBarSmooth_, pBarSmooth_})
        control->setCursor(hand);
}

void FrmColors::LoadSegments(const QString& key, suite::CheckBox* box, controls::BrindlexPB* example) {
    QString path; // settings.ini
    const auto value = base::TextToInt(values::ReadSetting(QStringLiteral("colors"), key, path));
    if (!value)
        return;
    box->SetValue(*value != 0 ? 1 : 0);
    if (example)
        example->SetSegments(*value != 0);
}

void FrmColors::ConnectControls() {
    for (suite::ColorPicker* const picker : pickers_)
        if (picker)
            connect(picker, &suite::ColorPicker::Change, this, &FrmColors::PickColor);
    connect(presets_, &suite::ComboBox::Click, this, &FrmColors::SelectPreset);
    connect(save_, &controls::dcButton::Click, this, &FrmColors::SavePreset);
    connect(disableShadow_, &suite::CheckBox::MouseUp, this, &FrmColors::SwitchShadow);
    connect(mBarSmooth_, &suite::CheckBox::Click, this,
            [this] { SwitchSegments(QStringLiteral("MBarSegments"), mBarSmooth_, mBarExample_); });
    connect(pBarSmooth_, &suite::CheckBox::Click, this,
            [this] { SwitchSegments(QStringLiteral("PBarSegments"), pBarSmooth_, pBarExample_); });
    const auto drive = [this](suite::HScroll* scroll, controls::BrindlexPB* example) {
        const auto follow = [scroll, example] {
            example->SetValue(scroll->Value());
            base::Yield();
        };
        connect(scroll, &suite::HScroll::Change, this, follow);
        connect(scroll, &suite::HScroll::Scroll, this, follow);
    };
    drive(mBarScroll_, mBarExample_);
    drive(pBarScroll_, pBarExample_);
}

void FrmColors::PickColor() {
    base::Yield();
    ApplyColorsToAllForms();
}

// The application yields, so a second selection meanwhile would run nested in this one.
void FrmColors::SelectPreset() {
    presets_->SetEnabled(false);
    const QString name = presets_->Text();
    if (name == QLatin1StringView(windowsDefaultPreset)) {
        TakeWindowsDefaultColors();
        base::Yield();
        ApplyColorsToAllForms();
        base::Yield();
    } else if (!name.isEmpty()) {
        ApplyPreset(name);
    }
    presets_->SetEnabled(true);
}

// Segments are the user's own choice, which no preset holds.
void FrmColors::ApplyPreset(const QString& name) {
    LoadSegments(QStringLiteral("MBarSegments"), mBarSmooth_, nullptr);
    LoadSegments(QStringLiteral("PBarSegments"), pBarSmooth_, nullptr);
    LoadColorPreset(name);
    base::Yield();
    ApplyColorsToAllForms();
    base::Yield();
}

void FrmColors::SavePreset() {
    const auto answer =
        forms::InputBox(QStringLiteral("Preset Name:"), QStringLiteral("Save Colors As Preset"), presets_->Text());
    if (!answer || base::Trim(*answer).isEmpty())
        return;
    SaveColorPreset(*answer);
    base::Yield();
    ListColorPresets(presets_);
    base::Yield();
}

void FrmColors::SwitchShadow() {
    QString path; // settings.ini
    values::WriteSetting(QStringLiteral("main"), QStringLiteral("CheckDisableShadow"),
                         QString::number(disableShadow_->Value()), path);
    values::Program().ShadowDisabled = disableShadow_->Value() != 0;
    values::Program().ShadowEnabled = !values::Program().ShadowDisabled;
    for (Form* const form : forms::Forms::Instance().Loaded()) {
        if (!form->IsUnloaded())
            UpdateShadow(form);
        base::Yield();
    }
}

// The real bars take the change at the next application of the colours.
void FrmColors::SwitchSegments(const QString& key, const suite::CheckBox* box, controls::BrindlexPB* example) {
    QString path; // settings.ini
    values::WriteSetting(QStringLiteral("colors"), key, QString::number(box->Value()), path);
    example->SetSegments(box->Value() != 0);
}

FrmColors* ColorsForm() {
    auto& forms = forms::Forms::Instance();
    auto* form = qobject_cast<FrmColors*>(forms.Find(formName));
    if (form == nullptr && !values::ProgramClosing())
        form = qobject_cast<FrmColors*>(forms.Shared(formName));
    if (form == nullptr || !form->EnsureLoaded())
        return nullptr;
    return form;
}

bool MBarSegments() {
    const FrmColors* const form = ColorsForm();
    return form && form->MBarSegments();
}

bool PBarSegments() {
    const FrmColors* const form = ColorsForm();
    return form && form->PBarSegments();
}

void RegisterForms() {
    InitAppearanceResources();
    forms::Forms::Instance().RegisterMaker(formName, [] { return std::make_unique<FrmColors>(); });
}

} // namespace appearance
