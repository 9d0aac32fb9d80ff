// A picture as properties hold it: none, a bitmap or an icon, with its natural size in pixels. A plain value; copies
// share the pixels.
#pragma once

#include <QImage>
#include <QMetaType>

namespace draw {

enum class PictureType { None = 0, Bitmap = 1, Icon = 3 };

class Picture {
  public:
    Picture() = default;

    // None if the image is null or larger than a surface may be.
    static Picture FromImage(const QImage& image);
    static Picture IconFromImage(const QImage& image);

    PictureType Type() const { return type_; }
    bool IsEmpty() const { return type_ == PictureType::None; }
    // Natural size in pixels; 0 for none.
    int Width() const { return image_.width(); }
    int Height() const { return image_.height(); }
    const QImage& Image() const { return image_; }

    // The same type and the same pixels.
    friend bool operator==(const Picture&, const Picture&) = default;

  private:
    Picture(PictureType type, const QImage& image);

    PictureType type_ = PictureType::None;
    QImage image_;
};

// Reads a picture from a file or a resource name; a ".ico" or ".svg" gives an icon. None if the file cannot be read, is
// no picture or is larger than a surface may be.
Picture LoadPicture(const QString& fileName);

} // namespace draw

Q_DECLARE_METATYPE(draw::Picture)
