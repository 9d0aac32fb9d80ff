// A drawing surface: a 32-bit image with the platform's drawing operations, their names and their exact conventions. A
// line leaves out its end point; rectangles leave out their right column and bottom row; lines and fills are never
// smoothed. Whoever makes it owns it. A surface of a size that cannot be had (no area, a side above 32767, over 64
// million pixels) keeps that size, takes no memory and ignores all drawing.
#pragma once

#include "base/colour.h"
#include "draw/picture.h"
#include "draw/pixels.h"
#include "draw/region.h"

#include <QFont>
#include <QImage>
#include <QRect>
#include <QRgb>
#include <QVector>
#include <span>

namespace draw {

// Rectangles are QRect, of a position and a size. This makes one from the platform's four numbers.
constexpr QRect RectOf(int left, int top, int right, int bottom) { return {left, top, right - left, bottom - top}; }

// What GetPixel gives outside the surface or the clipping region.
inline constexpr base::Colour CLR_INVALID{0xFFFFFFFFU};

struct Pen {
    base::Colour colour;
    int width = 1;       // pixels; below 1 counts as 1
    bool isNull = false; // draws nothing
};
inline constexpr Pen NullPen{base::Colour(), 1, true};

class Brush {
  public:
    // The null brush fills nothing.
    Brush() = default;
    Brush(base::Colour colour) : kind_(Kind::Solid), pixel_(ToRgb(colour)) {} // NOLINT: a colour is a brush

    bool IsNull() const { return kind_ == Kind::Null; }
    bool IsSolid() const { return kind_ == Kind::Solid; }
    QRgb Pixel() const { return pixel_; }
    const QImage& Pattern() const { return pattern_; }

    // A brush that repeats the picture from the surface's origin; null for an empty picture.
    friend Brush CreatePatternBrush(const Picture& picture);

  private:
    enum class Kind { Null, Solid, Pattern };
    Kind kind_ = Kind::Null;
    QRgb pixel_ = 0;
    QImage pattern_;
};
Brush CreatePatternBrush(const Picture& picture);
// The brush of a system colour index.
Brush GetSysColorBrush(int index);

enum BackgroundMode { TRANSPARENT = 1, OPAQUE = 2 };

// DrawTextW formats.
enum DrawTextFormat : unsigned {
    DT_LEFT = 0x0,
    DT_TOP = 0x0,
    DT_CENTER = 0x1,
    DT_RIGHT = 0x2,
    DT_VCENTER = 0x4,
    DT_BOTTOM = 0x8,
    DT_WORDBREAK = 0x10,
    DT_SINGLELINE = 0x20,
    DT_NOCLIP = 0x100,
    DT_CALCRECT = 0x400,
    DT_NOPREFIX = 0x800,
    DT_END_ELLIPSIS = 0x8000,
    DT_HIDEPREFIX = 0x100000,
};

// DrawEdge edges and flags.
enum EdgeType : unsigned {
    BDR_RAISEDOUTER = 1,
    BDR_SUNKENOUTER = 2,
    BDR_RAISEDINNER = 4,
    BDR_SUNKENINNER = 8,
    EDGE_RAISED = 5,
    EDGE_ETCHED = 6,
    EDGE_BUMP = 9,
    EDGE_SUNKEN = 10,
};
enum EdgeFlag : unsigned {
    BF_LEFT = 1,
    BF_TOP = 2,
    BF_RIGHT = 4,
    BF_BOTTOM = 8,
    BF_RECT = 15,
    BF_MIDDLE = 0x800,
    BF_SOFT = 0x1000,
    BF_ADJUST = 0x2000,
    BF_FLAT = 0x4000,
};

// GradientFill.
struct TriVertex {
    int x = 0;
    int y = 0;
    // 16 bits a channel: an 8-bit channel times 256.
    quint16 red = 0;
    quint16 green = 0;
    quint16 blue = 0;
};
TriVertex MakeTriVertex(int x, int y, base::Colour colour);
// Two indices into the vertices, for two opposite corners.
struct GradientRect {
    quint32 upperLeft = 0;
    quint32 lowerRight = 1;
};
enum GradientFillMode : quint32 { GRADIENT_FILL_RECT_H = 0, GRADIENT_FILL_RECT_V = 1 };

// DrawStateA flags.
enum DrawStateFlag : unsigned { DST_ICON = 3, DST_BITMAP = 4, DSS_NORMAL = 0, DSS_DISABLED = 0x20 };

// The pixels that a line takes, in order, the end point left out. Whatever the surface's size.
QVector<QPoint> LinePoints(QPoint from, QPoint to);

class Surface {
  public:
    Surface() = default;
    // Filled with black.
    explicit Surface(QSize size);
    Surface(int width, int height) : Surface(QSize(width, height)) {}
    // A surface with the picture's pixels over black, of its natural size.
    explicit Surface(const Picture& picture);

    // The size asked for, also where no memory was taken for it.
    QSize Size() const { return size_; }
    int Width() const { return size_.width(); }
    int Height() const { return size_.height(); }
    QRect Bounds() const { return {QPoint(0, 0), size_}; }
    // Whether there are pixels to draw on.
    bool IsDrawable() const { return !image_.isNull(); }
    // The pixels (null when not drawable). Format RGB32.
    const QImage& Image() const { return image_; }
    // For direct work on the pixels; every pixel's top byte must stay 0xFF.
    QImage& Pixels() { return image_; }
    Picture ToPicture() const { return Picture::FromImage(image_); }

    // Fills the whole surface whatever the clipping, and moves the current position to the origin. Without a colour it
    // takes the one of SetBkColor.
    void Cls() { Cls(backColour_); }
    void Cls(base::Colour colour);

    // State. The Select calls return what was selected before.
    Pen SelectPen(const Pen& pen);
    Brush SelectBrush(const Brush& brush);
    const Pen& CurrentPen() const { return pen_; }
    void SetTextColor(base::Colour colour) { textColour_ = colour; }
    void SetBkColor(base::Colour colour) { backColour_ = colour; }
    // TRANSPARENT at first.
    void SetBkMode(BackgroundMode mode) { backgroundMode_ = mode; }
    void SetFont(const QFont& font) { font_ = font; }
    const QFont& Font() const { return font_; }

    // Drawing stays within the region until ResetClip.
    void SelectClipRgn(const Region& region);
    void ResetClip();

    // Lines, with the current pen. The end point is not drawn.
    void MoveToEx(int x, int y) { position_ = {x, y}; }
    void LineTo(int x, int y);
    QPoint CurrentPosition() const { return position_; }
    // MoveToEx and LineTo with a pen of the given colour, one pixel wide.
    void Line(int x1, int y1, int x2, int y2, base::Colour colour);

    // False outside the surface or the clipping region.
    bool SetPixel(int x, int y, base::Colour colour);
    base::Colour GetPixel(int x, int y) const;

    // Filled and framed rectangles. An empty rectangle draws nothing.
    void FillRect(const QRect& rect, const Brush& brush);
    // One pixel wide, inside the rectangle.
    void FrameRect(const QRect& rect, const Brush& brush);
    // Outline with the current pen, inside with the current brush; corners in any order.
    void Rectangle(int left, int top, int right, int bottom);
    // The same with corners of an ellipse of `width` by `height`.
    void RoundRect(int left, int top, int right, int bottom, int width, int height);
    void FillRgn(const Region& region, const Brush& brush);
    // `rect` is shrunk to what is left inside with BF_ADJUST.
    void DrawEdge(QRect& rect, unsigned edge, unsigned flags);

    // Each rectangle from the one corner's colour to the other's. False, and nothing drawn, for an index without vertex
    // or an unknown mode.
    bool GradientFill(std::span<const TriVertex> vertices, std::span<const GradientRect> rects, quint32 mode);

    // Copies. Source and target may be one surface. What lies outside either is left out. False for a raster operation
    // that is not served, or when a side is not drawable.
    bool BitBlt(int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
                quint32 operation = SRCCOPY);
    // Copies rows of pixels in, `width` to a row, top row first; each pixel as draw::ToRgb makes it.
    void SetDIBitsToDevice(int x, int y, int width, int height, const QRgb* pixels);
    // Nearest pixel, no smoothing; a negative width or height mirrors.
    bool StretchBlt(int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight, quint32 operation = SRCCOPY);
    // `alpha` 0 to 255 for the whole. False when the source rectangle is not wholly inside its surface.
    bool AlphaBlend(int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight, int alpha);

    // Pictures, with the transparency they bring. Natural size, or stretched smoothly to the given size.
    void DrawPicture(const Picture& picture, int x, int y);
    void DrawPicture(const Picture& picture, int x, int y, int width, int height);
    // Repeated from the rectangle's corner, with part-tiles at the right and bottom edges.
    void TilePicture(const Picture& picture, const QRect& rect);
    // A width or height of 0 takes the natural one; the size clips and does not stretch. False when the flags' form
    // (DST_ICON, DST_BITMAP) does not fit the picture.
    bool DrawStateA(const Picture& picture, int x, int y, int width, int height, unsigned flags);

    // Text, with the current font, text colour and background mode. At most 8192 characters of a text are drawn.
    // Returns the text's height. "&" marks the underlined character unless DT_NOPREFIX. DT_VCENTER and DT_BOTTOM act
    // with DT_SINGLELINE only. With DT_CALCRECT nothing is drawn and `rect` gets the size that the text takes.
    int DrawTextW(const QString& text, QRect& rect, unsigned format);
    int DrawTextW(const QString& text, const QRect& rect, unsigned format);
    void TextOutW(int x, int y, const QString& text);
    QSize GetTextExtentPoint32W(const QString& text) const;
    int TextWidth(const QString& text) const { return GetTextExtentPoint32W(text).width(); }
    // The height of the font's text metrics: ascent and descent.
    int TextHeight() const;

  private:
    QRgb* Row(int y) { return reinterpret_cast<QRgb*>(bits_ + qsizetype(y) * image_.bytesPerLine()); }
    // Makes the image this surface's own again if copies of it were handed out. Before any write through Row.
    void Detach();
    bool IsInClip(int x, int y) const;
    // Calls `paintPart` for each part of the rectangle that the clipping lets through.
    template <typename PaintPart> void ForEachClipped(const QRect& rect, PaintPart paintPart) const;
    // The same parts, to be the clipping for a while.
    QVector<QRect> ClipWithin(const QRect& rect) const;
    void FillSolid(const QRect& rect, QRgb pixel);
    void FillPattern(const QRect& rect, const QImage& pattern);
    void DrawThinLine(QPoint from, QPoint to, QRgb pixel);
    void DrawThickLine(QPoint from, QPoint to);
    void DrawTextLine(int x, int y, const QString& text, int underlined);

    QSize size_{0, 0};
    QImage image_;
    uchar* bits_ = nullptr;
    // Disjoint, inside the surface; the whole surface without a clipping region.
    QVector<QRect> clip_;
    QPoint position_;
    Pen pen_;
    Brush brush_;
    base::Colour textColour_;
    base::Colour backColour_{0xFFFFFF};
    BackgroundMode backgroundMode_ = TRANSPARENT;
    QFont font_;
};

template <typename PaintPart> void Surface::ForEachClipped(const QRect& rect, PaintPart paintPart) const {
    for (const QRect& clip : clip_) {
        const QRect part = clip & rect;
        if (!part.isEmpty())
            paintPart(part);
    }
}

} // namespace draw
