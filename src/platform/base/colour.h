// A colour as the platform keeps it: 32 bits, 0x00BBGGRR, red in the low byte. With the top bit set it is the index of
// a system colour, which draw::OleTranslateColor resolves.
#pragma once

#include <QMetaType>
#include <QtGlobal>

namespace base {

class Colour {
  public:
    constexpr Colour() = default;
    constexpr explicit Colour(quint32 value) : value_(value) {}

    static constexpr Colour FromRgb(int red, int green, int blue) {
        return Colour(quint32(red & 0xFF) | quint32(green & 0xFF) << 8 | quint32(blue & 0xFF) << 16);
    }

    constexpr quint32 Value() const { return value_; }
    // The signed form, which is what settings files hold in decimal.
    constexpr qint32 SignedValue() const { return qint32(value_); }
    constexpr int Red() const { return int(value_ & 0xFF); }
    constexpr int Green() const { return int(value_ >> 8 & 0xFF); }
    constexpr int Blue() const { return int(value_ >> 16 & 0xFF); }
    constexpr bool IsSystemColour() const { return (value_ & 0x80000000U) != 0; }

    friend constexpr bool operator==(Colour, Colour) = default;

  private:
    quint32 value_ = 0;
};

} // namespace base

Q_DECLARE_METATYPE(base::Colour)
