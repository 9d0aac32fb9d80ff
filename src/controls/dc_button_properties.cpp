// What the button keeps between runs.
#include "controls/dc_button.h"

#include "controls/ambient_font.h"
#include "draw/system_colours.h"
#include "forms/late_bound.h"

namespace controls {

namespace {

constexpr base::Colour defaultBackColor{0x808080};
constexpr base::Colour defaultBackStartColor{0x404040};
constexpr base::Colour newForeColor{0xFFFFFF};
constexpr base::Colour defaultMaskColor{0xC0C0C0};

void WritePicture(base::PropertyBag& bag, const QString& key, const draw::Picture& picture) {
    bag.WriteProperty(key, QVariant::fromValue(picture), QVariant::fromValue(draw::Picture()));
}

} // namespace

// A saved button without a text colour takes that of the nearest container that has one, a new one takes white. A
// form's client area, which holds most controls, has none.
base::Colour dcButton::AmbientForeColor() const {
    for (const QObject* container = parent(); container != nullptr; container = container->parent()) {
        const QVariant ambient = forms::GetProperty(container, "ForeColor");
        if (ambient.canConvert<base::Colour>())
            return ambient.value<base::Colour>();
    }
    return draw::SystemColour(draw::COLOR_BTNTEXT);
}

void dcButton::InitProperties() {
    backColor_ = defaultBackColor;
    backStartColor_ = defaultBackStartColor;
    foreColor_ = newForeColor;
    maskColor_ = defaultMaskColor;
    useMaskColor_ = true;
    buttonShape_ = SquareBoth;
    specialEffect_ = DarkBelow;
    caption_ = Name();
    checkBoxMode_ = false;
    value_ = false;
    handPointer_ = false;
    mousePointer_ = 0;
    mouseIcon_ = draw::Picture();
    pictureNormal_ = draw::Picture();
    pictureHot_ = draw::Picture();
    pictureDown_ = draw::Picture();
    pictureOpacity_ = 1;
    pictureSize_ = 0;
    pictureSizeH_ = 0;
    pictureSizeW_ = 0;
    currentState_ = NormalState;
    ApplyAccessKey();
    ApplyCursor();
    ComputeColours();
    LayoutChanged();
}

void dcButton::ColorScheme(bool noRefresh) {
    backColor_ = defaultBackColor;
    backStartColor_ = defaultBackStartColor;
    foreColor_ = newForeColor;
    ComputeColours();
    if (!noRefresh)
        Repaint(-1, true);
}

void dcButton::ReadProperties(const base::PropertyBag& bag) {
    backColor_ = bag.Read(QStringLiteral("BackColor"), defaultBackColor);
    backStartColor_ = bag.Read(QStringLiteral("BackStartColor"), defaultBackStartColor);
    foreColor_ = bag.Read(QStringLiteral("ForeColor"), AmbientForeColor());
    maskColor_ = bag.Read(QStringLiteral("MaskColor"), defaultMaskColor);
    useMaskColor_ = bag.Read(QStringLiteral("UseMask"), true);
    buttonShape_ = bag.Read(QStringLiteral("ButtonShape"), int(SquareBoth));
    specialEffect_ = bag.Read(QStringLiteral("Effects"), int(DarkBelow));
    caption_ = bag.Read(QStringLiteral("Caption"), Name());
    checkBoxMode_ = bag.Read(QStringLiteral("CheckBox"), false);
    value_ = bag.Read(QStringLiteral("Value"), false);
    handPointer_ = bag.Read(QStringLiteral("HandPointer"), false);
    mousePointer_ = bag.Read(QStringLiteral("MousePointer"), 0);
    mouseIcon_ = bag.Read(QStringLiteral("MouseIcon"), draw::Picture());
    setFont(bag.Read(QStringLiteral("Font"), AmbientFont(*this)));
    pictureNormal_ = bag.Read(QStringLiteral("PicNormal"), draw::Picture());
    pictureHot_ = bag.Read(QStringLiteral("PicHot"), draw::Picture());
    pictureDown_ = bag.Read(QStringLiteral("PicDown"), draw::Picture());
    pictureOpacity_ = bag.Read(QStringLiteral("PicOpacity"), 1.0F);
    pictureSize_ = bag.Read(QStringLiteral("PicSize"), 0);
    pictureSizeH_ = bag.Read(QStringLiteral("PicSizeH"), 0);
    pictureSizeW_ = bag.Read(QStringLiteral("PicSizeW"), 0);
    // "PicAlign" is written and deliberately not read: saved windows count on 3.
    DrawnControl::SetEnabled(bag.Read(QStringLiteral("Enabled"), true));
    currentState_ = bag.Read(QStringLiteral("State"), int(NormalState));
    ApplyAccessKey();
    ApplyCursor();
    ComputeColours();
    LayoutChanged();
}

void dcButton::WriteProperties(base::PropertyBag& bag) const {
    const auto write = [&bag](const char* key, const auto& value, const auto& fallback) {
        bag.WriteProperty(QLatin1String(key), QVariant::fromValue(value), QVariant::fromValue(fallback));
    };
    write("BackColor", backColor_, defaultBackColor);
    write("BackStartColor", backStartColor_, defaultBackStartColor);
    write("ForeColor", foreColor_, AmbientForeColor());
    write("MaskColor", maskColor_, defaultMaskColor);
    write("UseMask", useMaskColor_, true);
    write("ButtonShape", buttonShape_, int(SquareBoth));
    write("Effects", specialEffect_, int(DarkBelow));
    write("Caption", caption_, Name());
    write("CheckBox", checkBoxMode_, false);
    write("Value", value_, false);
    write("Enabled", Enabled(), true);
    write("HandPointer", handPointer_, false);
    write("MousePointer", mousePointer_, 0);
    WritePicture(bag, QStringLiteral("MouseIcon"), mouseIcon_);
    write("Font", font(), AmbientFont(*this));
    WritePicture(bag, QStringLiteral("PicNormal"), pictureNormal_);
    WritePicture(bag, QStringLiteral("PicHot"), pictureHot_);
    WritePicture(bag, QStringLiteral("PicDown"), pictureDown_);
    write("PicOpacity", pictureOpacity_, 1.0F);
    write("PicSize", pictureSize_, 0);
    write("PicSizeH", pictureSizeH_, 0);
    write("PicSizeW", pictureSizeW_, 0);
    write("PicAlign", pictureAlignment_, int(PictureAtLeft));
    write("State", currentState_, int(NormalState));
}

} // namespace controls
