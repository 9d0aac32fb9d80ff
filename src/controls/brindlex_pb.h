// The program's progress bar: solid, with pictures, in the platform's visual style, or blended, where background and
// bar fade into the parent's colour at the upper and lower edge. Its orientation comes from its shape: wider than high
// is wide. Text on it changes colour exactly where the bar ends. The container owns it.
#pragma once

#include "base/colour.h"
#include "base/property_bag.h"
#include "controls/brindlex_pb_painter.h"
#include "controls/mem_dc.h"
#include "draw/picture.h"
#include "forms/drawn_control.h"

#include <QFont>

namespace controls {

class BrindlexPB : public forms::DrawnControl {
    Q_OBJECT
    Q_PROPERTY(draw::Picture Picture READ Picture WRITE SetPicture)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(int Appearance READ Appearance WRITE SetAppearance)
    Q_PROPERTY(int BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(base::Colour BarColor READ BarColor WRITE SetBarColor)
    Q_PROPERTY(base::Colour BarForeColor READ BarForeColor WRITE SetBarForeColor)
    Q_PROPERTY(draw::Picture BarPicture READ BarPicture WRITE SetBarPicture)
    Q_PROPERTY(int BarPictureMode READ BarPictureMode WRITE SetBarPictureMode)
    Q_PROPERTY(int BackPictureMode READ BackPictureMode WRITE SetBackPictureMode)
    Q_PROPERTY(int Min READ Min WRITE SetMin)
    Q_PROPERTY(int Max READ Max WRITE SetMax)
    Q_PROPERTY(int Value READ Value WRITE SetValue)
    Q_PROPERTY(bool ShowText READ ShowText WRITE SetShowText)
    Q_PROPERTY(int TextAlignX READ TextAlignX WRITE SetTextAlignX)
    Q_PROPERTY(int TextAlignY READ TextAlignY WRITE SetTextAlignY)
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(bool Segments READ Segments WRITE SetSegments)
    Q_PROPERTY(bool XpStyle READ XpStyle WRITE SetXpStyle)
    Q_PROPERTY(bool BlendToParent READ BlendToParent WRITE SetBlendToParent)
    Q_PROPERTY(double Percent READ Percent)

  public:
    BrindlexPB(QWidget* container, const QString& name);

    void ReadProperties(const base::PropertyBag& bag);
    void WriteProperties(base::PropertyBag& bag) const;

    // Setting one of the two pictures reports both as changed.
    draw::Picture Picture() const { return values_.picture; }
    void SetPicture(const draw::Picture& picture);
    draw::Picture BarPicture() const { return values_.barPicture; }
    void SetBarPicture(const draw::Picture& picture);
    base::Colour BackColor() const { return values_.backColor; }
    void SetBackColor(base::Colour colour) { Store("BackColor", values_.backColor, colour); }
    base::Colour ForeColor() const { return values_.foreColor; }
    void SetForeColor(base::Colour colour) { Store("ForeColor", values_.foreColor, colour); }
    // 0 flat, 1 thin, 2 three-dimensional.
    int Appearance() const { return values_.appearance; }
    void SetAppearance(int appearance) { Store("Appearance", values_.appearance, appearance); }
    // 0 none, 1 sunken, 2 raised.
    int BorderStyle() const { return values_.borderStyle; }
    void SetBorderStyle(int style) { Store("BorderStyle", values_.borderStyle, style); }
    base::Colour BarColor() const { return values_.barColor; }
    void SetBarColor(base::Colour colour) { Store("BarColor", values_.barColor, colour); }
    base::Colour BarForeColor() const { return values_.barForeColor; }
    void SetBarForeColor(base::Colour colour) { Store("BarForeColor", values_.barForeColor, colour); }
    // 1 tiles, anything else stretches.
    int BarPictureMode() const { return values_.barPictureMode; }
    void SetBarPictureMode(int mode) { Store("BarPictureMode", values_.barPictureMode, mode); }
    int BackPictureMode() const { return values_.backPictureMode; }
    void SetBackPictureMode(int mode) { Store("BackPictureMode", values_.backPictureMode, mode); }
    // The values at the empty and the full end, and the current one, which may lie outside. Equal ends show an empty
    // bar.
    int Min() const { return values_.min; }
    void SetMin(int value) { Store("Min", values_.min, value); }
    int Max() const { return values_.max; }
    void SetMax(int value) { Store("Max", values_.max, value); }
    int Value() const { return values_.value; }
    void SetValue(int value);
    bool ShowText() const { return values_.showText; }
    void SetShowText(bool show) { Store("ShowText", values_.showText, show); }
    // 0 left or top, 1 centre, 2 right or bottom.
    int TextAlignX() const { return values_.textAlignX; }
    void SetTextAlignX(int alignment) { Store("TextAlignX", values_.textAlignX, alignment); }
    int TextAlignY() const { return values_.textAlignY; }
    void SetTextAlignY(int alignment) { Store("TextAlignY", values_.textAlignY, alignment); }
    QString Text() const { return values_.text; }
    void SetText(const QString& text) { Store("Text", values_.text, text); }
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);
    bool Segments() const { return values_.segments; }
    void SetSegments(bool on) { Store("Segments", values_.segments, on); }
    bool XpStyle() const { return values_.xpStyle; }
    void SetXpStyle(bool on) { Store("XpStyle", values_.xpStyle, on); }
    bool BlendToParent() const { return values_.blendToParent; }
    void SetBlendToParent(bool on) { Store("BlendToParent", values_.blendToParent, on); }

    // 0 to 100.
    double Percent() const { return Fraction() * 100; }

    // Recolour the picture: its hue stays, lightness and saturation are multiplied by `lightness` and `saturation`. The
    // last two numbers are taken and have no effect. Nothing happens without a picture.
    Q_INVOKABLE void ModifyPicture(double lightness, double saturation, double third, double fourth);
    Q_INVOKABLE void ModifyBarPicture(double lightness, double saturation, double third, double fourth);

  protected:
    void Draw(draw::Surface& surface) override;

  private:
    // The persisted values with their defaults.
    struct Values {
        draw::Picture picture;
        base::Colour backColor{0x8000000FU};
        base::Colour foreColor{0x80000008U};
        int appearance = ThinBorder;
        int borderStyle = SunkenBorder;
        base::Colour barColor{0x800000U};
        base::Colour barForeColor{0xFFFFFFU};
        draw::Picture barPicture;
        int barPictureMode = TilePictureMode;
        int backPictureMode = TilePictureMode;
        int min = 0;
        int max = 100;
        int value = 0;
        bool showText = false;
        int textAlignX = 1;
        int textAlignY = 1;
        QString text;
        bool segments = false;
        bool xpStyle = false;
        bool blendToParent = true;
    };
    // Calls `visit(key, member)` for each persisted value but the font, in the order of saving.
    template <typename Visitor> static void ForEachValue(Visitor visit);

    // What the blend images were made for.
    struct BlendKey {
        QSize size;
        base::Colour backColor;
        base::Colour barColor;
        base::Colour parentColor;
        friend bool operator==(const BlendKey&, const BlendKey&) = default;
    };

    template <typename T> void Store(const char* name, T& member, const T& value) {
        member = value;
        MarkDirty();
        Q_EMIT PropertyChanged(QString::fromLatin1(name));
    }
    void StorePicture(draw::Picture& member, const draw::Picture& picture);
    double Fraction() const;
    base::Colour ParentBackColor() const;
    void UpdateBlendImages(const BlendKey& key);
    ProgressPaint PaintState();

    Values values_;
    double dpiScale_;
    pcMemDC memory_;
    BlendKey blendKey_;
    draw::Picture backBlend_;
    draw::Picture barBlend_;
};

} // namespace controls
