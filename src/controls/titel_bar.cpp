// Creation, properties and their bag. The painting, the buttons and the window behaviour have files of their own.
#include "controls/titel_bar.h"

#include "base/yield.h"
#include "controls/accessible.h"
#include "controls/ambient_font.h"
#include "draw/system_colours.h"
#include "forms/form.h"
#include "forms/screen.h"

#include <QApplication>

namespace controls {

namespace {

constexpr double newHeightTwips = 480;
constexpr int newHeightPixels = 32;
constexpr int scaleModePixels = 3;
constexpr int timerMilliseconds = 25;
constexpr int highestIconStyle = 2;
constexpr int highestStyle = titel_bar::NarrowStyle;

template <typename T> struct BagRow {
    const char* key;
    T TitelBarState::*member;
    T loadDefault;
};

// What a control without a stored value gets at load. Some differ from what a new control starts with.
constexpr BagRow<base::Colour> colourRows[] = {
    {"BackColor", &TitelBarState::backColor, base::Colour(0xE6E6E6U)},
    {"BackColorV1Begin", &TitelBarState::backColorV1Begin, titel_bar::Light},
    {"BackColorV1End", &TitelBarState::backColorV1End, titel_bar::Steel},
    {"BackColorV2Begin", &TitelBarState::backColorV2Begin, titel_bar::Steel},
    {"BackColorV2End", &TitelBarState::backColorV2End, titel_bar::Night},
    {"BorderColorHighLight", &TitelBarState::borderColorHighLight, titel_bar::Black},
    {"BorderColorDarkLight", &TitelBarState::borderColorDarkLight, titel_bar::Black},
    {"ButtonBackColor", &TitelBarState::buttonBackColor, titel_bar::Blue},
    {"ButtonForeColor", &TitelBarState::buttonForeColor, titel_bar::White},
    {"ButtonXBackColor", &TitelBarState::buttonXBackColor, titel_bar::Red},
    {"ButtonXForeColor", &TitelBarState::buttonXForeColor, titel_bar::White},
    {"CaptionColor", &TitelBarState::captionColor, titel_bar::White},
    {"CaptionColorBack", &TitelBarState::captionColorBack, titel_bar::Charcoal},
    {"ForeColor", &TitelBarState::foreColor, base::Colour(0x80000012U)},
};

constexpr BagRow<int> numberRows[] = {
    {"BackColorCover", &TitelBarState::backColorCover, 0},
    {"BorderNormal", &TitelBarState::borderNormal, 0},
    {"CaptionPosX", &TitelBarState::captionPosX, 0},
    {"CaptionPosY", &TitelBarState::captionPosY, 0},
    {"IconStyle", &TitelBarState::iconStyle, 0},
    {"PicturePosMode", &TitelBarState::picturePosMode, 0},
    {"PicturePosX", &TitelBarState::picturePosX, 6},
    {"PicturePosY", &TitelBarState::picturePosY, 4},
    {"Style", &TitelBarState::style, titel_bar::SlantedStyle},
};

constexpr BagRow<bool> switchRows[] = {
    {"AutoRedraw", &TitelBarState::autoRedraw, false},
    {"DashBack", &TitelBarState::dashBack, false},
    {"ShowClose", &TitelBarState::showClose, true},
    {"ShowMinimized", &TitelBarState::showMinimized, true},
    {"ShowMaximized", &TitelBarState::showMaximized, false},
    {"ShowHelp", &TitelBarState::showHelp, false},
    {"ShowCloseEnabled", &TitelBarState::showCloseEnabled, true},
    {"ShowMinimizedEnabled", &TitelBarState::showMinimizedEnabled, true},
    {"ShowMaximizedEnabled", &TitelBarState::showMaximizedEnabled, false},
    {"ShowHelpEnabled", &TitelBarState::showHelpEnabled, false},
};

template <typename Rows> void ReadRows(const base::PropertyBag& bag, const Rows& rows, TitelBarState& state) {
    for (const auto& row : rows)
        state.*row.member = bag.Read(QLatin1String(row.key), row.loadDefault);
}

template <typename Rows> void WriteRows(base::PropertyBag& bag, const Rows& rows, const TitelBarState& state) {
    for (const auto& row : rows)
        bag.WriteProperty(QLatin1String(row.key), QVariant::fromValue(state.*row.member),
                          QVariant::fromValue(row.loadDefault));
}

int StoredIconStyle(int style) { return qMin(style, highestIconStyle); }

} // namespace

TitelBar::TitelBar(QWidget* container, const QString& name) : DrawnControl(container, name) {
    InstallAccessibility();
    setFocusPolicy(Qt::ClickFocus);
    setMouseTracking(true);
    MakeButtons();
    trackTimer_ = new forms::Timer(this, QStringLiteral("Timer1"), timerMilliseconds);
    connect(trackTimer_, &forms::Timer::Tick, this, &TitelBar::TrackTick);
    WatchParent();
    UpdateTitleBarButtons();
    SetTBX_();
}

void TitelBar::InitProperties() {
    state_ = TitelBarState();
    SetCaption(Name());
    buttons_[CloseButton].image->SetVisible(true);
    buttons_[CloseButton].image->SetEnabled(true);
    const forms::Form* form = ParentForm();
    if (form != nullptr && form->ScaleMode() == scaleModePixels)
        SetHeight(forms::ToTwips(newHeightPixels));
    else
        SetHeight(newHeightTwips);
    UpdateTitleBarButtons();
    Touch();
}

void TitelBar::ReadProperties(const base::PropertyBag& bag) {
    ReadRows(bag, colourRows, state_);
    ReadRows(bag, numberRows, state_);
    ReadRows(bag, switchRows, state_);
    state_.iconStyle = StoredIconStyle(state_.iconStyle);
    state_.picture = bag.Read(QStringLiteral("Picture"), draw::Picture());
    state_.pictureButton = bag.Read(QStringLiteral("PictureButton"), draw::Picture());
    SetCaption(bag.Read(QStringLiteral("Caption"), QString()));
    SetToolTipText(bag.Read(QStringLiteral("ToolTipText"), QString()));
    QWidget::setFont(bag.Read(QStringLiteral("Font"), AmbientFont(*this)));
    UpdateTitleBarButtons();
    base::Yield();
    Refresh();
}

void TitelBar::WriteProperties(base::PropertyBag& bag) const {
    WriteRows(bag, colourRows, state_);
    WriteRows(bag, numberRows, state_);
    WriteRows(bag, switchRows, state_);
    const QVariant none = QVariant::fromValue(draw::Picture());
    bag.WriteProperty(QStringLiteral("Picture"), QVariant::fromValue(state_.picture), none);
    bag.WriteProperty(QStringLiteral("PictureButton"), QVariant::fromValue(state_.pictureButton), none);
    bag.WriteProperty(QStringLiteral("Caption"), state_.caption, QString());
    bag.WriteProperty(QStringLiteral("ToolTipText"), ToolTipText(), QString());
    bag.WriteProperty(QStringLiteral("Font"), font(), AmbientFont(*this));
}

void TitelBar::SetCaption(const QString& caption) {
    setAccessibleName(caption);
    Store(state_.caption, caption, "Caption");
}

void TitelBar::SetCaptionColor(base::Colour colour) {
    state_.foreColor = colour;
    Store(state_.captionColor, colour, "CaptionColor");
}

void TitelBar::SetFont(const QFont& font) {
    QWidget::setFont(font);
    Changed("Font");
    Touch();
}

void TitelBar::SetIconStyle(int style) {
    if (style >= 0)
        Store(state_.iconStyle, StoredIconStyle(style), "IconStyle");
}

void TitelBar::SetStyle(int style) {
    if (style < 0 || style > highestStyle)
        return;
    state_.style = style;
    Touch();
}

void TitelBar::StoreShort(int& member, int value, const char* name) {
    if (value == qint16(value))
        Store(member, value, name);
}

void TitelBar::StoreFace(base::Colour& member, base::Colour colour, const char* name) {
    member = colour;
    UpdateTitleBarButtons();
    Changed(name);
    Touch();
}

void TitelBar::StoreShow(bool& member, bool on, const char* name) {
    member = on;
    Changed(name);
    SetTBX_();
}

void TitelBar::Changed(const char* name) { Q_EMIT PropertyChanged(QLatin1String(name)); }

void TitelBar::Touch() {
    state_.foreColor = draw::OleTranslateColor(state_.captionColor);
    SetTBX_();
    CentreIcon();
    MarkDirty();
}

void TitelBar::StopTimers() {
    trackTimer_->SetEnabled(false);
    for (const CaptionButton& button : buttons_)
        button.timer->SetEnabled(false);
    spinRunning_ = false;
    HoldSpinning();
}

QWidget* TitelBar::ActiveControl() const {
    QWidget* active = QApplication::focusWidget();
    return active != this && isAncestorOf(active) ? active : nullptr;
}

double TitelBar::TwipsPerPixelX() { return forms::TwipsPerPixel(); }

double TitelBar::TwipsPerPixelY() { return forms::TwipsPerPixel(); }

base::Colour TitelBar::GetRealColor(base::Colour colour) {
    if (!draw::TryOleTranslateColor(colour))
        base::Yield();
    return draw::OleTranslateColor(colour);
}

void TitelBar::Refresh() {
    Touch();
    base::Yield();
}

} // namespace controls
