// An off-screen bitmap of 32 bits a pixel whose bytes the program reads and writes directly: rows from the bottom up,
// each pixel blue, green, red and a fourth byte that nobody interprets. Whoever makes it owns it. Holds nothing until
// Create or one of its kin succeeds; operations on an empty one do nothing.
#pragma once

#include "draw/picture.h"
#include "draw/surface.h"

#include <QString>
#include <memory>

namespace controls {

// What the last failed operation would tell: a source and a text. Empty while nothing has failed.
struct SurfaceError {
    QString source;
    QString description;
};

class pcDibSection {
  public:
    // Pixels are all 0. False, and empty, for a size that cannot be had.
    bool Create(int width, int height);
    // Only the pixels; Create releases first what was held, and keeps UseDrawDib.
    bool CreateDIB(int width, int height);
    bool CreateFromHBitmap(const QImage& bitmap);
    bool CreateFromPicture(const draw::Picture& picture);

    int Width() const { return width_; }
    int Height() const { return height_; }
    int BytesPerScanLine() const { return width_ * 4; }
    // The bottom row's first pixel; null when empty.
    quint8* DIBSectionBitsPtr() { return reinterpret_cast<quint8*>(bits_.get()); }
    const quint8* DIBSectionBitsPtr() const { return reinterpret_cast<const quint8*>(bits_.get()); }
    // The bitmap as an image of its own, top row first; null when empty.
    QImage hDib() const;
    // A context to copy from, made of the pixels as they are now.
    draw::Surface hdc() const;
    bool UseDrawDib() const { return useDrawDib_; }
    void SetUseDrawDib(bool use) { useDrawDib_ = use; }

    // Copies in. A negative width or height stands for this surface's.
    void LoadPictureBlt(const draw::Surface& source, int sourceLeft = 0, int sourceTop = 0, int width = -1,
                        int height = -1, quint32 operation = draw::SRCCOPY);
    // Copies out, with the same meaning of negative sizes.
    void PaintPicture(draw::Surface& context, int left = 0, int top = 0, int width = -1, int height = -1,
                      int sourceLeft = 0, int sourceTop = 0, quint32 operation = draw::SRCCOPY) const;
    // Copies out with a constant alpha of 0 to 255. False, with LastError set, when the platform's call fails.
    bool AlphaPaintPicture(draw::Surface& context, int left = 0, int top = 0, int width = -1, int height = -1,
                           int sourceLeft = 0, int sourceTop = 0, int constantAlpha = 255);
    // Blends `source` into `target`, both counted from their bottom left corners. A width or height of -1 takes the
    // smaller of the two surfaces'; what lies outside either is left out.
    static void CodeAlphaBlend(const pcDibSection& source, pcDibSection& target, int width = -1, int height = -1,
                               int targetX = 0, int targetY = 0, int sourceX = 0, int sourceY = 0,
                               int constantAlpha = 255);

    void Clear();
    void ClearUp();
    // Lightness times 1 + percent / 100, at most 1.
    void Lighten(int percent);
    // Hue, lightness and saturation times these; the last two at most 1.
    void ModifyHLS(double hue, double lightness, double saturation);
    // Each channel times a random number of 0 up to 1; with `gray` one number for the three channels of a pixel.
    void RandomiseBits(bool gray = false);
    // A resized copy; null for a size that cannot be had or while this one is empty.
    std::unique_ptr<pcDibSection> Resample(int newHeight, int newWidth) const;
    // Writes a bitmap file, over an old one. False, with LastError set, if not every byte was written.
    bool SavePicture(const QString& fileName);

    const SurfaceError& LastError() const { return lastError_; }

  private:
    bool IsEmpty() const { return bits_ == nullptr; }
    // Row 0 is the bottom row.
    quint32* Row(int row) { return bits_.get() + qsizetype(row) * width_; }
    const quint32* Row(int row) const { return bits_.get() + qsizetype(row) * width_; }
    // Pixels of any value. False, and unchanged, for a size that cannot be had.
    bool Allocate(int width, int height);
    qsizetype PixelCount() const { return qsizetype(width_) * height_; }
    bool Fail(const QString& description);
    void StoreImage(const QImage& image);

    std::unique_ptr<quint32[]> bits_;
    int width_ = 0;
    int height_ = 0;
    bool useDrawDib_ = false;
    SurfaceError lastError_;
};

} // namespace controls
