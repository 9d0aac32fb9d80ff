// How the title bar looks: the caption strip with its diagonal end and grip dots, the icon, the caption, the border.
#include "controls/titel_bar.h"

#include "base/numbers.h"
#include "controls/colour_helpers.h"
#include "draw/system_colours.h"
#include "forms/screen.h"
#include "forms/tool_tip.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QToolTip>
#include <array>

namespace controls {

namespace {

constexpr int rowsWithoutHeight = 25;
constexpr double slantHeights = 1.2; // the diagonal starts so many heights left of the buttons
constexpr int dotRows = 4;
constexpr int dotDistanceTwips = 60;
constexpr base::Colour dotShade = base::Colour::FromRgb(90, 90, 90);
constexpr base::Colour dotLight = base::Colour::FromRgb(255, 255, 255);
constexpr int captionMargin = 6;
// No strip is wide enough to show more, and eliding measures every character that it is given.
constexpr int longestCaption = 2000;

// A colour that goes from `begin` to `end` in `rows` equal steps.
class RowRamp {
  public:
    RowRamp(base::Colour begin, base::Colour end, int rows)
        : begin_(begin), step_{float(begin.Red() - end.Red()) / float(rows),
                               float(begin.Green() - end.Green()) / float(rows),
                               float(begin.Blue() - end.Blue()) / float(rows)} {}

    base::Colour At(int row) const {
        return base::Colour::FromRgb(base::RoundToInt(begin_.Red() - double(step_[0]) * row),
                                     base::RoundToInt(begin_.Green() - double(step_[1]) * row),
                                     base::RoundToInt(begin_.Blue() - double(step_[2]) * row));
    }

  private:
    base::Colour begin_;
    std::array<float, 3> step_;
};

} // namespace

void TitelBar::Draw(draw::Surface& surface) {
    // A hidden control gets no resize event.
    if (laidOutFor_ != size()) {
        SetTBX_();
        CentreIcon();
    }
    surface.Cls(draw::OleTranslateColor(state_.backColor));
    SetVerlauf(state_.backColorV1Begin, state_.backColorV1End, state_.backColorV2Begin, state_.backColorV2End);
    SetImageI();
    Shadow();
    BSetBorder(state_.borderNormal);
}

void TitelBar::Cls() {
    hdc().Cls(draw::OleTranslateColor(state_.backColor));
    update();
}

int TitelBar::RowCount() const { return height() < 1 ? rowsWithoutHeight : height(); }

// Without any button the strip is as wide as the bar.
int TitelBar::SlantStart() const {
    const AlphaImage* last = LastShownButton();
    return last == nullptr ? width() : base::RoundToInt(last->x() - slantHeights * RowCount());
}

void TitelBar::SetVerlauf(base::Colour v1Begin, base::Colour v1End, base::Colour v2Begin, base::Colour v2End) {
    if (state_.style != titel_bar::SlantedStyle)
        return;
    draw::Surface& surface = hdc();
    DrawBands(surface, {draw::OleTranslateColor(v1Begin), draw::OleTranslateColor(v1End),
                        draw::OleTranslateColor(v2Begin), draw::OleTranslateColor(v2End)});
    DrawDots(surface);
    if (state_.dashBack)
        DrawDashBack(surface);
}

// The first band ends on a diagonal that runs down to the right. Right of it the background stays, unless the cover row
// lets the second band in.
void TitelBar::DrawBands(draw::Surface& surface, const std::array<base::Colour, 4>& colours) const {
    const int rows = RowCount();
    const RowRamp first(colours[0], colours[1], rows);
    const RowRamp second(colours[2], colours[3], rows);
    const double coverRow = base::Fix(state_.backColorCover / TwipsPerPixelY());
    const int slantStart = SlantStart();
    const int secondEnd = width() - rows / 2;
    for (int row = 0; row <= rows; ++row) {
        const int slant = slantStart + row;
        // A line to the left of its start would still draw the start.
        if (slant > 0)
            surface.Line(0, row, slant, row, first.At(row));
        if (row > coverRow)
            surface.Line(slant, row, secondEnd + row, row, second.At(row));
    }
}

// Two triangles of grip dots, each a grey pixel with a white one at its lower side, left and right of the button row.
void TitelBar::DrawDots(draw::Surface& surface) const {
    const AlphaImage* last = LastShownButton();
    if (last == nullptr)
        return;
    const AlphaImage* close = buttons_[CloseButton].image;
    const int gap = int(dotDistanceTwips / TwipsPerPixelX());
    const int left = last->x();
    const int right = close->x() + close->width();
    const int top = close->y();
    for (int row = 0; row < dotRows; ++row) {
        const int y = top + gap * row;
        for (int dot = 0; dot < dotRows - row; ++dot) {
            surface.SetPixel(left - 5 - gap * dot, y + 2, dotShade);
            surface.SetPixel(left - 6 - gap * dot, y + 3, dotLight);
        }
    }
    for (int row = 0; row < dotRows; ++row) {
        const int y = top + gap * row;
        for (int dot = 0; dot <= row; ++dot) {
            surface.SetPixel(right + 3 + gap * dot, y + 3, dotShade);
            surface.SetPixel(right + 4 + gap * dot, y + 4, dotLight);
        }
    }
}

// The band behind the caption is the strip upside down.
void TitelBar::DrawDashBack(draw::Surface& surface) const {
    const int top = state_.borderNormal;
    const int bandHeight = height() - 2 * top;
    surface.SetFont(font());
    const int bandWidth = surface.TextWidth(ShownCaption());
    if (bandHeight < 1 || bandWidth < 1)
        return;
    draw::Surface column(1, bandHeight);
    column.BitBlt(0, 0, 1, bandHeight, surface, captionMargin, top);
    for (int row = 0; row < bandHeight; ++row)
        surface.StretchBlt(captionMargin, top + row, bandWidth, 1, column, 0, bandHeight - 1 - row, 1, 1);
}

// The centred place overwrites the stored one, so that a later mode 0 keeps it.
void TitelBar::CentreIcon() {
    const draw::Picture& icon = state_.picture;
    if (icon.IsEmpty())
        return;
    if (state_.picturePosMode == 1 || state_.picturePosMode == 3)
        state_.picturePosX = base::RoundToInt((width() - icon.Width()) / 2.0);
    if (state_.picturePosMode == 2 || state_.picturePosMode == 3)
        state_.picturePosY = base::RoundToInt((height() - icon.Height()) / 2.0);
}

void TitelBar::SetImageI() {
    CentreIcon();
    if (!state_.picture.IsEmpty())
        hdc().DrawPicture(state_.picture, state_.picturePosX, state_.picturePosY);
}

int TitelBar::CaptionStart() const {
    return state_.picture.IsEmpty() ? captionMargin : state_.picture.Width() + captionMargin + state_.picturePosX;
}

// The caption as far as the strip reaches; beyond it the text would float over what lies behind the window.
QString TitelBar::ShownCaption() const {
    const int end = state_.style == titel_bar::SlantedStyle ? SlantStart() : width();
    const int room = end - CaptionStart();
    const QFontMetrics metrics(font());
    QString text = state_.caption.left(longestCaption);
    if (room > 0 && metrics.horizontalAdvance(text) <= room)
        return text;
    return room > 0 ? metrics.elidedText(text, Qt::ElideRight, room) : QString();
}

void TitelBar::Shadow() {
    draw::Surface& surface = hdc();
    const QString text = ShownCaption();
    if (text.isEmpty())
        return;
    surface.SetFont(font());
    const int textWidth = surface.TextWidth(text);
    const int textHeight = surface.TextHeight();
    const int border = state_.borderNormal;
    int x = CaptionStart();
    if (state_.captionPosX == 1)
        x = border + drawWidth_;
    else if (state_.captionPosX == 2)
        x = (width() - textWidth - drawWidth_) / 2;
    else if (state_.captionPosX == 3)
        x = width() - textWidth - border - drawWidth_;
    int y = 0;
    if (state_.captionPosY == 0)
        y = (height() - textHeight - drawWidth_) / 2;
    else if (state_.captionPosY == 2)
        y = (height() - textHeight - border - drawWidth_) / 2;
    else if (state_.captionPosY == 3)
        y = height() - textHeight - border - drawWidth_;
    const base::Colour middle = LerpColour(draw::OleTranslateColor(state_.backColorV1Begin),
                                           draw::OleTranslateColor(state_.backColorV1End), 0.5);
    surface.SetBkMode(draw::TRANSPARENT);
    surface.SetTextColor(ShiftColour(middle, -0.1));
    surface.TextOutW(x + 1, y + 1, text);
    surface.SetTextColor(draw::OleTranslateColor(state_.foreColor));
    surface.TextOutW(x, y, text);
}

// The four lines run head to tail, so that each corner is the start of one. The pen's width stays for the next paint.
void TitelBar::BSetBorder(int width) {
    if (width <= 0)
        return;
    drawWidth_ = width;
    draw::Surface& surface = hdc();
    const int right = surface.Width() - 1;
    const int bottom = surface.Height() - 1;
    const draw::Pen before = surface.SelectPen({draw::OleTranslateColor(state_.borderColorDarkLight), width});
    surface.MoveToEx(right, bottom);
    surface.LineTo(0, bottom);
    surface.MoveToEx(right, 0);
    surface.LineTo(right, bottom);
    surface.SelectPen({draw::OleTranslateColor(state_.borderColorHighLight), width});
    surface.MoveToEx(0, 0);
    surface.LineTo(right, 0);
    surface.MoveToEx(0, bottom);
    surface.LineTo(0, 0);
    surface.SelectPen(before);
}

bool TitelBar::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && ToolTipText().isEmpty() && ShownCaption() != state_.caption) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), forms::PlainTip(state_.caption), this);
        return true;
    }
    return DrawnControl::event(event);
}

} // namespace controls
