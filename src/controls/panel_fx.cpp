#include "controls/panel_fx.h"

#include "base/numbers.h"
#include "controls/accessible.h"
#include "controls/ambient_font.h"
#include "draw/region.h"
#include "draw/surface.h"
#include "draw/system_colours.h"
#include "forms/form.h"
#include "forms/screen.h"
#include "forms/tool_tip.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QToolTip>
#include <array>

namespace controls {

namespace {

constexpr int captionMargin = 4; // pixels
constexpr int leastOfTitle = 24; // pixels of a dragged panel that stay within its container

} // namespace

template <typename Visitor> void PanelFx::ForEachValue(Visitor visit) {
    visit("PanelBorderColor", &Values::panelBorderColor);
    visit("TileHeight", &Values::tileHeight);
    visit("HideTitleIcon", &Values::hideTitleIcon);
    visit("TitleIconWidth", &Values::titleIconWidth);
    visit("TitleIconHeight", &Values::titleIconHeight);
    visit("TitleIconXPos", &Values::titleIconXPos);
    visit("TitleIconYPos", &Values::titleIconYPos);
    visit("TitleIcon", &Values::titleIcon);
    visit("TitleBitmap", &Values::titleBitmap);
    visit("PanelBitmap", &Values::panelBitmap);
    visit("gCPanelStart", &Values::panelStart);
    visit("gCPanelEnd", &Values::panelEnd);
    visit("gCTitleStart", &Values::titleStart);
    visit("gCTitleEnd", &Values::titleEnd);
    visit("gCTitleDir", &Values::titleDirection);
    visit("gCPanelDir", &Values::panelDirection);
    visit("AllowDraging", &Values::allowDraging);
    visit("AllowParentDraging", &Values::allowParentDraging);
    visit("CanCollapse", &Values::canCollapse);
    visit("RoundEdge", &Values::roundEdge);
    visit("PanelBackColor", &Values::panelBackColor);
    visit("TileBackColor", &Values::tileBackColor);
    visit("TitleForeColor", &Values::titleForeColor);
    visit("TitleCaption", &Values::titleCaption);
    visit("TitleAlignment", &Values::titleAlignment);
    visit("BackGroundStyle", &Values::backGroundStyle);
}

PanelFx::PanelFx(QWidget* container, const QString& name) : DrawnControl(container, name) {
    InstallAccessibility();
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);
    InitProperties();
}

void PanelFx::InitProperties() {
    values_ = Values();
    SetTitleCaption(Name());
    ApplyRegion();
}

void PanelFx::ReadProperties(const base::PropertyBag& bag) {
    values_ = Values();
    ForEachValue([this, &bag](const char* key, auto member) {
        values_.*member = bag.Read(QString::fromLatin1(key), values_.*member);
    });
    setFont(bag.Read(QStringLiteral("Font"), AmbientFont(*this)));
    SetTitleCaption(values_.titleCaption);
    ApplyRegion();
}

void PanelFx::WriteProperties(base::PropertyBag& bag) const {
    const Values defaults;
    ForEachValue([this, &bag, &defaults](const char* key, auto member) {
        bag.WriteProperty(QString::fromLatin1(key), QVariant::fromValue(values_.*member),
                          QVariant::fromValue(defaults.*member));
    });
    bag.WriteProperty(QStringLiteral("Font"), font(), AmbientFont(*this));
}

void PanelFx::SetRoundEdge(int pixels) {
    values_.roundEdge = To16Bit(pixels);
    ApplyRegion();
    Store("RoundEdge", values_.roundEdge, values_.roundEdge);
}

void PanelFx::SetTitleCaption(const QString& caption) {
    setAccessibleName(caption);
    Store("TitleCaption", values_.titleCaption, caption);
}

void PanelFx::SetFont(const QFont& font) {
    setFont(font);
    Q_EMIT PropertyChanged(QStringLiteral("Font"));
}

void PanelFx::SetCollapse(bool collapse) {
    collapse_ = collapse;
    const QPointer<PanelFx> alive(this);
    Q_EMIT PropertyChanged(QStringLiteral("Collapse"));
    if (!alive || !values_.canCollapse)
        return;
    AccessibleExpandChanged(this);
    const double titleHeight = values_.tileHeight * forms::TwipsPerPixel();
    if (collapse) {
        if (Height() == titleHeight)
            return;
        savedHeight_ = Height();
        savedWidth_ = Width();
        SetHeight(titleHeight);
    } else if (savedHeight_) {
        Move(Left(), Top(), savedWidth_, *savedHeight_);
    }
}

void PanelFx::ApplyRegion() {
    if (values_.roundEdge <= 0) {
        if (!mask().isEmpty())
            clearMask();
        return;
    }
    const int edge = values_.roundEdge;
    setMask(draw::CreateRoundRectRgn(0, 0, width(), height(), edge, edge).ToQRegion());
}

void PanelFx::FillPart(draw::Surface& surface, const QRect& area, Part part) const {
    if (area.isEmpty())
        return;
    const bool title = part == Title;
    switch (values_.backGroundStyle) {
    case Plain:
        surface.FillRect(area, draw::OleTranslateColor(title ? values_.tileBackColor : values_.panelBackColor));
        break;
    case Gradient: {
        const base::Colour start = draw::OleTranslateColor(title ? values_.titleStart : values_.panelStart);
        const base::Colour end = draw::OleTranslateColor(title ? values_.titleEnd : values_.panelEnd);
        const std::array vertices = {draw::MakeTriVertex(area.left(), area.top(), start),
                                     draw::MakeTriVertex(area.right() + 1, area.bottom() + 1, end)};
        const std::array rects = {draw::GradientRect{}};
        const int direction = title ? values_.titleDirection : values_.panelDirection;
        surface.GradientFill(vertices, rects, quint32(direction));
        break;
    }
    case Tiled:
        surface.FillRect(area, draw::CreatePatternBrush(title ? values_.titleBitmap : values_.panelBitmap));
        break;
    default:
        break;
    }
}

void PanelFx::DrawTitleIcon(draw::Surface& surface) {
    iconDrawn_ = !values_.hideTitleIcon && !values_.titleIcon.IsEmpty();
    if (iconDrawn_)
        surface.DrawPicture(values_.titleIcon, values_.titleIconXPos, values_.titleIconYPos, values_.titleIconWidth,
                            values_.titleIconHeight);
}

int PanelFx::CaptionLeft(const draw::Surface& surface) const {
    switch (values_.titleAlignment) {
    case AlignCentre:
        return base::RoundToInt((width() - surface.TextWidth(values_.titleCaption)) / 2.0);
    case AlignRight:
        return width() - surface.TextWidth(values_.titleCaption) - captionMargin;
    default:
        return iconDrawn_ ? values_.titleIconXPos + values_.titleIconWidth + captionMargin : captionMargin;
    }
}

void PanelFx::Draw(draw::Surface& surface) {
    const int w = width();
    const int h = height();
    const int title = values_.tileHeight;
    const base::Colour border = draw::OleTranslateColor(values_.panelBorderColor);
    surface.Cls(draw::OleTranslateColor(values_.panelBackColor));
    surface.FrameRect(draw::RectOf(1, 1, w, h), border);
    FillPart(surface, draw::RectOf(0, 1, w - 1, title), Title);
    surface.FrameRect(draw::RectOf(0, title, w, h), border);
    FillPart(surface, draw::RectOf(1, title, w - 1, h - 1), Body);
    surface.SelectPen(draw::Pen{border});
    surface.SelectBrush(draw::Brush());
    surface.RoundRect(0, 0, w - 1, h - 1, values_.roundEdge, values_.roundEdge);
    // The one pixel of a square panel's edge that frame and outline both leave out.
    surface.SetPixel(w - 1, 0, border);
    DrawTitleIcon(surface);
    if (values_.titleCaption.isEmpty())
        return;
    surface.SetFont(font());
    surface.SetTextColor(draw::OleTranslateColor(values_.titleForeColor));
    surface.TextOutW(CaptionLeft(surface), (title - surface.TextHeight()) / 2, values_.titleCaption);
}

bool PanelFx::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        auto* help = static_cast<QHelpEvent*>(event);
        const int room = width() - captionMargin - (iconDrawn_ ? values_.titleIconXPos + values_.titleIconWidth : 0);
        if (PanelOrTitle(help->pos().y()) == Title && fontMetrics().horizontalAdvance(values_.titleCaption) > room)
            QToolTip::showText(help->globalPos(), forms::PlainTip(values_.titleCaption), this);
        return true;
    }
    return DrawnControl::event(event);
}

void PanelFx::resizeEvent(QResizeEvent* event) {
    DrawnControl::resizeEvent(event);
    ApplyRegion();
}

void PanelFx::mousePressEvent(QMouseEvent* event) {
    const QPointer<PanelFx> alive(this);
    const QPointF at = event->position();
    const Part part = PanelOrTitle(at.y());
    const bool left = event->button() == Qt::LeftButton;
    Q_EMIT MouseDown(forms::ButtonOf(event->button()), forms::ShiftOf(event->modifiers()), at.x(), at.y(), part);
    if (!alive || !left)
        return;
    if (part == Title)
        Q_EMIT TitleClick();
    else
        Q_EMIT PanelClick();
}

void PanelFx::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT DblClick();
}

void PanelFx::mouseMoveEvent(QMouseEvent* event) {
    if (dragGrip_) {
        FollowDrag(event->globalPosition());
        return;
    }
    const QPointer<PanelFx> alive(this);
    const QPointF at = event->position();
    const QPointF global = event->globalPosition();
    const bool drag = event->buttons().testFlag(Qt::LeftButton) && PanelOrTitle(at.y()) == Title;
    Q_EMIT MouseMove(forms::ButtonsOf(event->buttons()), forms::ShiftOf(event->modifiers()), at.x(), at.y(),
                     PanelOrTitle(at.y()));
    if (alive && drag && values_.allowDraging)
        BeginDrag(global);
}

void PanelFx::BeginDrag(const QPointF& pointer) {
    if (!values_.allowParentDraging)
        dragGrip_ = mapFromGlobal(pointer.toPoint());
    else if (forms::Form* form = ParentForm())
        form->NcLButtonDown(forms::HtCaption);
}

// The title stays within reach: at least a corner of it remains inside the container.
void PanelFx::FollowDrag(const QPointF& pointer) {
    QPoint corner = pointer.toPoint() - *dragGrip_;
    if (const QWidget* container = parentWidget()) {
        corner = container->mapFromGlobal(corner);
        corner.setX(qBound(leastOfTitle - width(), corner.x(),
                           qMax(leastOfTitle - width(), container->width() - leastOfTitle)));
        corner.setY(qBound(0, corner.y(), qMax(0, container->height() - int(values_.tileHeight))));
    }
    move(corner);
}

void PanelFx::mouseReleaseEvent(QMouseEvent* event) {
    // The release that ends a drag belongs to the drag.
    if (dragGrip_ && event->button() == Qt::LeftButton) {
        dragGrip_.reset();
        return;
    }
    const QPointF at = event->position();
    Q_EMIT MouseUp(forms::ButtonOf(event->button()), forms::ShiftOf(event->modifiers()), at.x(), at.y(),
                   PanelOrTitle(at.y()));
}

} // namespace controls
