#include "controls/brindlex_pb.h"

#include "controls/accessible.h"
#include "controls/ambient_font.h"
#include "controls/dib_section.h"
#include "controls/gradient.h"
#include "draw/system_colours.h"
#include "forms/form.h"
#include "forms/late_bound.h"
#include "forms/screen.h"

#include <algorithm>
#include <cmath>

namespace controls {
namespace {

// What is see-through stays so; the bitmap in between knows no transparency.
draw::Picture Recoloured(const draw::Picture& picture, double lightness, double saturation) {
    const bool seeThrough = picture.Image().hasAlphaChannel();
    pcDibSection bitmap;
    if (!bitmap.CreateFromHBitmap(
            picture.Image().convertToFormat(QImage::Format_ARGB32).convertToFormat(QImage::Format_RGB32)))
        return picture;
    bitmap.ModifyHLS(1.0, lightness, saturation);
    QImage image = bitmap.hDib();
    if (seeThrough)
        image.setAlphaChannel(picture.Image().convertToFormat(QImage::Format_Alpha8));
    return draw::Picture::FromImage(image);
}

} // namespace

BrindlexPB::BrindlexPB(QWidget* container, const QString& name)
    : DrawnControl(container, name), dpiScale_(forms::ScaleForDotsPerInch(forms::DotsPerInch())) {
    setFocusPolicy(Qt::NoFocus);
    InstallAccessibility();
}

void BrindlexPB::SetValue(int value) {
    const double before = Percent();
    Store("Value", values_.value, value);
    // A download moves the bar hundreds of times a second; who listens is told of whole steps.
    if (std::lround(before) != std::lround(Percent()))
        AccessibleValueChanged(this, value);
}

template <typename Visitor> void BrindlexPB::ForEachValue(Visitor visit) {
    visit("Picture", &Values::picture);
    visit("BackColor", &Values::backColor);
    visit("ForeColor", &Values::foreColor);
    visit("Appearance", &Values::appearance);
    visit("BorderStyle", &Values::borderStyle);
    visit("BarColor", &Values::barColor);
    visit("BarForeColor", &Values::barForeColor);
    visit("BarPicture", &Values::barPicture);
    visit("BarPictureMode", &Values::barPictureMode);
    visit("BackPictureMode", &Values::backPictureMode);
    visit("Min", &Values::min);
    visit("Max", &Values::max);
    visit("Value", &Values::value);
    visit("ShowText", &Values::showText);
    visit("TextAlignX", &Values::textAlignX);
    visit("TextAlignY", &Values::textAlignY);
    visit("Text", &Values::text);
    visit("Segments", &Values::segments);
    visit("XpStyle", &Values::xpStyle);
    visit("BlendToParent", &Values::blendToParent);
}

void BrindlexPB::ReadProperties(const base::PropertyBag& bag) {
    values_ = Values();
    ForEachValue([this, &bag](const char* key, auto member) {
        values_.*member = bag.Read(QString::fromLatin1(key), values_.*member);
    });
    setFont(bag.Read(QStringLiteral("Font"), AmbientFont(*this)));
    MarkDirty();
}

void BrindlexPB::WriteProperties(base::PropertyBag& bag) const {
    const Values defaults;
    ForEachValue([this, &bag, &defaults](const char* key, auto member) {
        bag.WriteProperty(QString::fromLatin1(key), QVariant::fromValue(values_.*member),
                          QVariant::fromValue(defaults.*member));
    });
    bag.WriteProperty(QStringLiteral("Font"), font(), AmbientFont(*this));
}

void BrindlexPB::SetFont(const QFont& font) {
    setFont(font);
    MarkDirty();
    Q_EMIT PropertyChanged(QStringLiteral("Font"));
}

void BrindlexPB::SetPicture(const draw::Picture& picture) { StorePicture(values_.picture, picture); }

void BrindlexPB::SetBarPicture(const draw::Picture& picture) { StorePicture(values_.barPicture, picture); }

void BrindlexPB::StorePicture(draw::Picture& member, const draw::Picture& picture) {
    member = picture;
    MarkDirty();
    Q_EMIT PropertyChanged(QStringLiteral("Picture"));
    Q_EMIT PropertyChanged(QStringLiteral("BarPicture"));
}

void BrindlexPB::ModifyPicture(double lightness, double saturation, double, double) {
    values_.picture = Recoloured(values_.picture, lightness, saturation);
    MarkDirty();
}

void BrindlexPB::ModifyBarPicture(double lightness, double saturation, double, double) {
    values_.barPicture = Recoloured(values_.barPicture, lightness, saturation);
    MarkDirty();
}

double BrindlexPB::Fraction() const {
    const double range = double(values_.max) - values_.min;
    if (range == 0)
        return 0;
    return std::clamp((double(values_.value) - values_.min) / range, 0.0, 1.0);
}

// Of the control's container, or of the form where the container has no colour of its own.
base::Colour BrindlexPB::ParentBackColor() const {
    for (const QObject* object :
         {static_cast<const QObject*>(parentWidget()), static_cast<const QObject*>(ParentForm())}) {
        if (object == nullptr)
            continue;
        const QVariant colour = forms::GetProperty(object, "BackColor");
        if (colour.canConvert<base::Colour>())
            return draw::OleTranslateColor(colour.value<base::Colour>());
    }
    return draw::GetSysColor(draw::COLOR_BTNFACE);
}

void BrindlexPB::UpdateBlendImages(const BlendKey& key) {
    if (key == blendKey_)
        return;
    blendKey_ = key;
    backBlend_ = BlendFace(key.size, key.parentColor, key.backColor, key.parentColor).ToPicture();
    barBlend_ = BlendFace(key.size, key.parentColor, key.barColor, key.parentColor).ToPicture();
}

ProgressPaint BrindlexPB::PaintState() {
    ProgressPaint paint;
    paint.size = size();
    paint.fraction = Fraction();
    paint.blended = values_.blendToParent;
    paint.parentBackColor = ParentBackColor();
    if (paint.blended)
        UpdateBlendImages({size(), draw::OleTranslateColor(values_.backColor),
                           draw::OleTranslateColor(values_.barColor), paint.parentBackColor});
    paint.backPicture = paint.blended ? backBlend_ : values_.picture;
    paint.barPicture = paint.blended ? barBlend_ : values_.barPicture;
    paint.backPictureMode = values_.backPictureMode;
    paint.barPictureMode = values_.barPictureMode;
    paint.backColor = values_.backColor;
    paint.foreColor = values_.foreColor;
    paint.barColor = values_.barColor;
    paint.barForeColor = values_.barForeColor;
    paint.appearance = values_.appearance;
    paint.borderStyle = values_.borderStyle;
    paint.segments = values_.segments;
    paint.dpiScale = dpiScale_;
    if (values_.showText)
        paint.text = values_.text;
    paint.textAlignX = values_.textAlignX;
    paint.textAlignY = values_.textAlignY;
    paint.font = font();
    if (values_.xpStyle)
        paint.theme = ProgressTheme::OpenThemeData(*this);
    return paint;
}

void BrindlexPB::Draw(draw::Surface& surface) {
    memory_.SetWidth(surface.Width());
    memory_.SetHeight(surface.Height());
    const ProgressPaint paint = PaintState();
    if (!memory_.hdc().IsDrawable()) {
        DrawProgress(surface, paint);
        return;
    }
    DrawProgress(memory_.hdc(), paint);
    memory_.Draw(surface, 0, 0, surface.Width(), surface.Height());
}

} // namespace controls
