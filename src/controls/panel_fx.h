// A box with a title strip above a body, both plain, with a gradient or tiled; it holds other controls, which are made
// with it as their container. It can carry an icon and a caption, have round corners, collapse to its title and be
// dragged by it. Its own container owns it.
#pragma once

#include "base/colour.h"
#include "base/property_bag.h"
#include "draw/picture.h"
#include "forms/drawn_control.h"

#include <QFont>
#include <optional>

namespace controls {

class PanelFx : public forms::DrawnControl {
    Q_OBJECT
    Q_PROPERTY(base::Colour PanelBorderColor READ PanelBorderColor WRITE SetPanelBorderColor)
    Q_PROPERTY(int TileHeight READ TileHeight WRITE SetTileHeight)
    Q_PROPERTY(bool HideTitleIcon READ HideTitleIcon WRITE SetHideTitleIcon)
    Q_PROPERTY(int TitleIconWidth READ TitleIconWidth WRITE SetTitleIconWidth)
    Q_PROPERTY(int TitleIconHeight READ TitleIconHeight WRITE SetTitleIconHeight)
    Q_PROPERTY(int TitleIconXPos READ TitleIconXPos WRITE SetTitleIconXPos)
    Q_PROPERTY(int TitleIconYPos READ TitleIconYPos WRITE SetTitleIconYPos)
    Q_PROPERTY(draw::Picture TitleIcon READ TitleIcon WRITE SetTitleIcon)
    Q_PROPERTY(draw::Picture TitleBitmap READ TitleBitmap WRITE SetTitleBitmap)
    Q_PROPERTY(draw::Picture PanelBitmap READ PanelBitmap WRITE SetPanelBitmap)
    Q_PROPERTY(base::Colour gCPanelStart READ gCPanelStart WRITE SetgCPanelStart)
    Q_PROPERTY(base::Colour gCPanelEnd READ gCPanelEnd WRITE SetgCPanelEnd)
    Q_PROPERTY(base::Colour gCTitleStart READ gCTitleStart WRITE SetgCTitleStart)
    Q_PROPERTY(base::Colour gCTitleEnd READ gCTitleEnd WRITE SetgCTitleEnd)
    Q_PROPERTY(int gCTitleDir READ gCTitleDir WRITE SetgCTitleDir)
    Q_PROPERTY(int gCPanelDir READ gCPanelDir WRITE SetgCPanelDir)
    Q_PROPERTY(bool AllowDraging READ AllowDraging WRITE SetAllowDraging)
    Q_PROPERTY(bool AllowParentDraging READ AllowParentDraging WRITE SetAllowParentDraging)
    Q_PROPERTY(bool CanCollapse READ CanCollapse WRITE SetCanCollapse)
    Q_PROPERTY(bool Collapse READ Collapse WRITE SetCollapse)
    Q_PROPERTY(int RoundEdge READ RoundEdge WRITE SetRoundEdge)
    Q_PROPERTY(base::Colour PanelBackColor READ PanelBackColor WRITE SetPanelBackColor)
    Q_PROPERTY(base::Colour TileBackColor READ TileBackColor WRITE SetTileBackColor)
    Q_PROPERTY(base::Colour TitleForeColor READ TitleForeColor WRITE SetTitleForeColor)
    Q_PROPERTY(QString TitleCaption READ TitleCaption WRITE SetTitleCaption)
    Q_PROPERTY(int TitleAlignment READ TitleAlignment WRITE SetTitleAlignment)
    Q_PROPERTY(int BackGroundStyle READ BackGroundStyle WRITE SetBackGroundStyle)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)

  public:
    enum Direction { Horizontal = 0, Vertical = 1 };
    enum Alignment { AlignLeft = 0, AlignCentre = 1, AlignRight = 2 };
    enum Style { Plain = 0, Gradient = 1, Tiled = 2 };
    enum Part { Title = 0, Body = 1 };

    PanelFx(QWidget* container, const QString& name);

    void InitProperties();
    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

    base::Colour PanelBorderColor() const { return values_.panelBorderColor; }
    void SetPanelBorderColor(base::Colour colour) { Store("PanelBorderColor", values_.panelBorderColor, colour); }
    // Pixels, as all measures of the title and its icon.
    int TileHeight() const { return values_.tileHeight; }
    void SetTileHeight(int pixels) { Store("TileHeight", values_.tileHeight, To16Bit(pixels)); }
    bool HideTitleIcon() const { return values_.hideTitleIcon; }
    void SetHideTitleIcon(bool hide) { Store("HideTitleIcon", values_.hideTitleIcon, hide); }
    int TitleIconWidth() const { return values_.titleIconWidth; }
    void SetTitleIconWidth(int pixels) { Store("TitleIconWidth", values_.titleIconWidth, To16Bit(pixels)); }
    int TitleIconHeight() const { return values_.titleIconHeight; }
    void SetTitleIconHeight(int pixels) { Store("TitleIconHeight", values_.titleIconHeight, To16Bit(pixels)); }
    int TitleIconXPos() const { return values_.titleIconXPos; }
    void SetTitleIconXPos(int pixels) { Store("TitleIconXPos", values_.titleIconXPos, To16Bit(pixels)); }
    int TitleIconYPos() const { return values_.titleIconYPos; }
    void SetTitleIconYPos(int pixels) { Store("TitleIconYPos", values_.titleIconYPos, To16Bit(pixels)); }
    draw::Picture TitleIcon() const { return values_.titleIcon; }
    void SetTitleIcon(const draw::Picture& icon) { Store("TitleIcon", values_.titleIcon, icon); }
    draw::Picture TitleBitmap() const { return values_.titleBitmap; }
    void SetTitleBitmap(const draw::Picture& tile) { Store("TitleBitmap", values_.titleBitmap, tile); }
    draw::Picture PanelBitmap() const { return values_.panelBitmap; }
    void SetPanelBitmap(const draw::Picture& tile) { Store("PanelBitmap", values_.panelBitmap, tile); }
    base::Colour gCPanelStart() const { return values_.panelStart; }
    void SetgCPanelStart(base::Colour colour) { Store("gCPanelStart", values_.panelStart, colour); }
    base::Colour gCPanelEnd() const { return values_.panelEnd; }
    void SetgCPanelEnd(base::Colour colour) { Store("gCPanelEnd", values_.panelEnd, colour); }
    base::Colour gCTitleStart() const { return values_.titleStart; }
    void SetgCTitleStart(base::Colour colour) { Store("gCTitleStart", values_.titleStart, colour); }
    base::Colour gCTitleEnd() const { return values_.titleEnd; }
    void SetgCTitleEnd(base::Colour colour) { Store("gCTitleEnd", values_.titleEnd, colour); }
    int gCTitleDir() const { return values_.titleDirection; }
    void SetgCTitleDir(int direction) { Store("gCTitleDir", values_.titleDirection, direction); }
    int gCPanelDir() const { return values_.panelDirection; }
    void SetgCPanelDir(int direction) { Store("gCPanelDir", values_.panelDirection, direction); }
    // A drag of the title moves the panel, or the form with AllowParentDraging as well.
    bool AllowDraging() const { return values_.allowDraging; }
    void SetAllowDraging(bool allow) { Store("AllowDraging", values_.allowDraging, allow); }
    bool AllowParentDraging() const { return values_.allowParentDraging; }
    void SetAllowParentDraging(bool allow) { Store("AllowParentDraging", values_.allowParentDraging, allow); }
    bool CanCollapse() const { return values_.canCollapse; }
    void SetCanCollapse(bool can) { Store("CanCollapse", values_.canCollapse, can); }
    // The diameter of the corners in pixels; 0 is square.
    int RoundEdge() const { return values_.roundEdge; }
    void SetRoundEdge(int pixels);
    base::Colour PanelBackColor() const { return values_.panelBackColor; }
    void SetPanelBackColor(base::Colour colour) { Store("PanelBackColor", values_.panelBackColor, colour); }
    base::Colour TileBackColor() const { return values_.tileBackColor; }
    void SetTileBackColor(base::Colour colour) { Store("TileBackColor", values_.tileBackColor, colour); }
    base::Colour TitleForeColor() const { return values_.titleForeColor; }
    void SetTitleForeColor(base::Colour colour) { Store("TitleForeColor", values_.titleForeColor, colour); }
    QString TitleCaption() const { return values_.titleCaption; }
    void SetTitleCaption(const QString& caption);
    int TitleAlignment() const { return values_.titleAlignment; }
    void SetTitleAlignment(int alignment) { Store("TitleAlignment", values_.titleAlignment, alignment); }
    int BackGroundStyle() const { return values_.backGroundStyle; }
    void SetBackGroundStyle(int style) { Store("BackGroundStyle", values_.backGroundStyle, style); }
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);

    // True shrinks the panel to its title, false gives it the size back that it had. Acts with CanCollapse only.
    bool Collapse() const { return collapse_; }
    void SetCollapse(bool collapse);

    // The part at a height in pixels.
    Part PanelOrTitle(double y) const { return y < values_.tileHeight ? Title : Body; }
    draw::Surface& hdc() { return UpToDateSurface(); }

  Q_SIGNALS:
    void TitleClick();
    void PanelClick();
    // Positions in pixels; `part` is PanelOrTitle of y. They stand in for the events of the same names without a part.
    void MouseDown(int button, int shift, double x, double y, int part);
    void MouseMove(int button, int shift, double x, double y, int part);
    void MouseUp(int button, int shift, double x, double y, int part);

  protected:
    void Draw(draw::Surface& surface) override;

    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    // The persisted values with their defaults.
    struct Values {
        base::Colour panelBorderColor{0x400000};
        qint16 tileHeight = 20;
        bool hideTitleIcon = false;
        qint16 titleIconWidth = 32;
        qint16 titleIconHeight = 32;
        qint16 titleIconXPos = 8;
        qint16 titleIconYPos = 6;
        draw::Picture titleIcon;
        draw::Picture titleBitmap;
        draw::Picture panelBitmap;
        base::Colour panelStart{0xDE9A39};
        base::Colour panelEnd{0xFFFFFF};
        base::Colour titleStart{0xDE9A39};
        base::Colour titleEnd{0xFFFFFF};
        int titleDirection = Vertical;
        int panelDirection = Vertical;
        bool allowDraging = false;
        bool allowParentDraging = false;
        bool canCollapse = false;
        qint16 roundEdge = 0;
        base::Colour panelBackColor{0x80000005U};
        base::Colour tileBackColor{0x8000000DU};
        base::Colour titleForeColor{0xFFFFFF};
        QString titleCaption = QStringLiteral("Panel");
        int titleAlignment = AlignLeft;
        int backGroundStyle = Plain;
    };
    // Calls `visit(key, member)` for each persisted value, in order.
    template <typename Visitor> static void ForEachValue(Visitor visit);

    template <typename T> void Store(const char* name, T& member, const T& value) {
        member = value;
        Refresh();
        Q_EMIT PropertyChanged(QLatin1String(name));
    }
    static qint16 To16Bit(int value) { return qint16(qBound(-32768, value, 32767)); }

    void ApplyRegion();
    void FillPart(draw::Surface& surface, const QRect& area, Part part) const;
    void DrawTitleIcon(draw::Surface& surface);
    int CaptionLeft(const draw::Surface& surface) const;
    void BeginDrag(const QPointF& pointer);
    void FollowDrag(const QPointF& pointer);

    Values values_;
    bool collapse_ = false;
    bool iconDrawn_ = false;
    // Size before the collapse, in twips.
    std::optional<double> savedHeight_;
    double savedWidth_ = 0;
    std::optional<QPoint> dragGrip_; // where the pointer holds the panel, while it is dragged
};

} // namespace controls
