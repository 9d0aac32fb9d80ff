#include "controls/brindlex_pb_painter.h"

#include "base/numbers.h"
#include "draw/system_colours.h"

#include <algorithm>

namespace controls {
namespace {

constexpr base::Colour black{0};

QRect Shrunk(const QRect& rect, int by) {
    return draw::RectOf(rect.x() + by, rect.y() + by, rect.x() + std::max(by, rect.width() - by),
                        rect.y() + std::max(by, rect.height() - by));
}

int RightOf(const QRect& rect) { return rect.x() + rect.width(); }
int BottomOf(const QRect& rect) { return rect.y() + rect.height(); }

class ProgressPainter {
  public:
    ProgressPainter(draw::Surface& target, const ProgressPaint& paint)
        : target_(target), paint_(paint), client_(QPoint(0, 0), paint.size),
          isWide_(paint.size.width() > paint.size.height()) {}

    void Paint() {
        target_.SetFont(paint_.font);
        target_.SetBkMode(draw::TRANSPARENT);
        DrawBackground();
        if (paint_.segments && !themeDrawn_)
            segment_ = SegmentSizeFor(client_.width(), paint_.dpiScale);
        inner_ = Shrunk(client_, BorderWidth());
        const bool textShown = !paint_.text.isEmpty();
        if (textShown && !themeDrawn_)
            DrawPlainText(paint_.foreColor);
        bar_ = BarRectangle();
        if (!themeDrawn_)
            target_.SelectClipRgn(draw::CreateRectRgn(bar_.x(), bar_.y(), RightOf(bar_), BottomOf(bar_)));
        DrawBar();
        if (paint_.segments && !themeDrawn_)
            DrawGaps();
        if (textShown)
            DrawTextOverBar();
        target_.ResetClip();
        DrawBorder();
    }

  private:
    void DrawImage(const draw::Picture& picture, int mode, const QRect& rect) {
        if (mode == TilePictureMode)
            target_.TilePicture(picture, rect);
        else
            target_.DrawPicture(picture, rect.x(), rect.y(), rect.width(), rect.height());
    }

    void DrawBackground() {
        if (!paint_.backPicture.IsEmpty()) {
            // What is see-through in it shows the colour, and not the paint before this one.
            if (paint_.backPicture.Image().hasAlphaChannel())
                target_.FillRect(client_, PlainBackground());
            DrawImage(paint_.backPicture, paint_.backPictureMode, client_);
        } else if (paint_.blended || !DrawThemedBackground())
            target_.FillRect(client_, PlainBackground());
    }

    // The system brush goes by the low five bits of the colour alone.
    draw::Brush PlainBackground() const {
        if (paint_.backColor.IsSystemColour())
            return draw::GetSysColorBrush(int(paint_.backColor.Value() & 31U));
        return paint_.backColor;
    }

    bool DrawThemedBackground() {
        if (!paint_.theme)
            return false;
        const std::optional<int> chunk = paint_.theme->GetThemeInt(ProgressTheme::TMT_PROGRESSCHUNKSIZE);
        const std::optional<int> gap = paint_.theme->GetThemeInt(ProgressTheme::TMT_PROGRESSSPACESIZE);
        if (!chunk || !gap)
            return false;
        segment_ = {*chunk + *gap, *gap};
        paint_.theme->DrawThemeBackground(target_, isWide_ ? ProgressTheme::PP_BAR : ProgressTheme::PP_BARVERT,
                                          client_);
        themeDrawn_ = true;
        return true;
    }

    int BorderWidth() const {
        if (paint_.borderStyle <= NoBorder)
            return 0;
        return paint_.appearance == ThreeDimensionalBorder && !themeDrawn_ ? 2 : 1;
    }

    unsigned TextFormat() const {
        return unsigned(paint_.textAlignX) + draw::DT_SINGLELINE + 4U * unsigned(paint_.textAlignY);
    }

    void DrawPlainText(base::Colour colour) {
        target_.SetTextColor(draw::OleTranslateColor(colour));
        target_.DrawTextW(QStringLiteral(" ") + paint_.text + QStringLiteral(" "), std::as_const(inner_), TextFormat());
    }

    // The bar starts at the control's own edge; the border covers what of it lies under it.
    QRect BarRectangle() const {
        const bool inSteps = (paint_.segments || themeDrawn_) && segment_.Step() > 0;
        if (isWide_) {
            int right = base::RoundToInt(inner_.x() + inner_.width() * paint_.fraction);
            if (inSteps)
                right -= (right - client_.x()) % segment_.Step();
            right = std::max(right, inner_.x());
            return draw::RectOf(client_.x(), client_.y(), right, BottomOf(client_));
        }
        int top = base::RoundToInt(inner_.y() + inner_.height() * (1 - paint_.fraction));
        if (inSteps)
            top -= (top - BottomOf(client_)) % segment_.Step(); // not above 0: moves down
        top = std::min(top, BottomOf(inner_));
        return draw::RectOf(client_.x(), top, RightOf(client_), BottomOf(client_));
    }

    void DrawBar() {
        if (!paint_.barPicture.IsEmpty())
            DrawImage(paint_.barPicture, paint_.barPictureMode, bar_);
        else if (themeDrawn_)
            paint_.theme->DrawThemeBackground(target_, isWide_ ? ProgressTheme::PP_CHUNK : ProgressTheme::PP_CHUNKVERT,
                                              bar_.adjusted(2, 2, -1, -1));
        else
            target_.FillRect(bar_, draw::OleTranslateColor(paint_.barColor));
    }

    // A wide bar's first gap follows its first segment; a tall bar's first gap lies at the bottom edge itself.
    void DrawGaps() {
        if (segment_.Step() <= 0)
            return;
        const draw::Brush brush = paint_.parentBackColor;
        if (isWide_) {
            for (int x = bar_.x() + segment_.chunk; x <= RightOf(bar_); x += segment_.Step())
                target_.FillRect(draw::RectOf(x, inner_.y(), x + segment_.gap, BottomOf(inner_)), brush);
        } else {
            for (int y = BottomOf(bar_); y >= bar_.y() + segment_.chunk; y -= segment_.Step())
                target_.FillRect(draw::RectOf(inner_.x(), y, RightOf(inner_), y + segment_.gap), brush);
        }
    }

    void DrawTextOverBar() {
        if (themeDrawn_)
            paint_.theme->DrawThemeText(target_, paint_.text, TextFormat(), inner_);
        else
            DrawPlainText(paint_.barForeColor);
    }

    void DrawBorder() {
        const bool sunken = paint_.borderStyle == SunkenBorder;
        if (!sunken && paint_.borderStyle != RaisedBorder)
            return;
        switch (paint_.appearance) {
        case FlatBorder:
            target_.FrameRect(client_, black);
            break;
        case ThinBorder:
            DrawThinBorder(sunken ? draw::COLOR_BTNSHADOW : draw::COLOR_BTNHIGHLIGHT,
                           sunken ? draw::COLOR_BTNHIGHLIGHT : draw::COLOR_BTNSHADOW);
            break;
        case ThreeDimensionalBorder: {
            QRect edge = client_;
            target_.DrawEdge(edge, sunken ? draw::EDGE_SUNKEN : draw::EDGE_RAISED, draw::BF_RECT | draw::BF_SOFT);
            break;
        }
        default:
            break;
        }
    }

    void DrawThinBorder(int topLeft, int bottomRight) {
        const QRect& all = client_;
        target_.FillRect(QRect(all.left(), all.top(), 1, all.height()), draw::GetSysColorBrush(topLeft));
        target_.FillRect(QRect(all.left(), all.top(), all.width(), 1), draw::GetSysColorBrush(topLeft));
        target_.FillRect(QRect(all.right(), all.top(), 1, all.height()), draw::GetSysColorBrush(bottomRight));
        target_.FillRect(QRect(all.left(), all.bottom(), all.width(), 1), draw::GetSysColorBrush(bottomRight));
    }

    draw::Surface& target_;
    const ProgressPaint& paint_;
    QRect client_;
    QRect inner_;
    QRect bar_;
    SegmentSize segment_;
    bool isWide_;
    bool themeDrawn_ = false;
};

} // namespace

void DrawProgress(draw::Surface& target, const ProgressPaint& paint) {
    if (target.IsDrawable() && !paint.size.isEmpty())
        ProgressPainter(target, paint).Paint();
}

// The surplus of the control's width is put onto every segment, so that the last one is whole.
SegmentSize SegmentSizeFor(int controlWidth, double dpiScale) {
    SegmentSize size{8, 2};
    if (dpiScale > 0)
        size = {base::RoundToInt(8 * dpiScale), base::RoundToInt(2 * dpiScale)};
    if (size.Step() > 0)
        size.chunk += controlWidth % size.Step();
    return size;
}

} // namespace controls
