#include "suite/color_picker.h"

#include "forms/late_bound.h"
#include "suite/group_box.h"
#include "suite/paint_tools.h"

#include <QColorDialog>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSettings>

namespace suite {

namespace {

constexpr double swatchWidth = 30; // pixels at 96 dots per inch
constexpr double swatchHeight = 16;
constexpr double gap = 7;

// A label reads in the colour of the frame it stands in, for a skin colours the ground of pickers and not their text.
QColor InkOn(const QWidget* picker, const QColor& ground) {
    for (const QWidget* ancestor = picker->parentWidget(); ancestor; ancestor = ancestor->parentWidget()) {
        const QVariant ink = forms::GetProperty(ancestor, "ForeColor");
        if (ink.canConvert<base::Colour>())
            return ReadableOn(ground, ToQColor(ink.value<base::Colour>()));
    }
    return ReadableOn(ground, Qt::black);
}

class PickerFace : public QPushButton {
  public:
    explicit PickerFace(ColorPicker* picker) : QPushButton(picker), picker_(picker) {
        setAttribute(Qt::WA_Hover);
        setAutoDefault(true);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QColor back = ToQColor(picker_->BackColor());
        const QColor ink = InkOn(picker_, back);
        painter.fillRect(rect(), back);
        DrawSwatch(painter, back, ink);
        const QRect room = CaptionRect();
        painter.setPen(isEnabled() ? ink : Mix(ink, back, 0.5));
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(Label(), Qt::ElideRight, room.width()));
        if (hasFocus())
            DrawFocusRing(painter, rect(), Mix(ink, back, 0.25));
    }

  private:
    QString Label() const { return ShownCaption(picker_->Caption()); }
    QRect CaptionRect() const { return rect().adjusted(Scaled(swatchWidth + gap + 3), 0, -Scaled(2), 0); }

    void DrawSwatch(QPainter& painter, const QColor& back, const QColor& ink) const {
        const int high = std::min(Scaled(swatchHeight), height() - 2 * Scaled(2));
        const QRectF swatch(Scaled(3), (height() - high) / 2.0, Scaled(swatchWidth), high);
        const QColor colour = ToQColor(picker_->Color());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Mix(back, ink, underMouse() || isDown() ? 0.9 : 0.55), Scaled(1)));
        painter.setBrush(isEnabled() ? colour : Mix(colour, back, 0.5));
        const double half = Scaled(1) / 2.0;
        painter.drawRoundedRect(swatch.adjusted(half, half, -half, -half), Scaled(2), Scaled(2));
        painter.setRenderHint(QPainter::Antialiasing, false);
    }

    ColorPicker* picker_;
};

// The dialog keeps custom colours in a settings file of the toolkit's when the process ends. This program has one
// settings file and no other use of the toolkit's, so these are sent where no file can be made.
void KeepNoConfiguration() {
    static const bool done = [] {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null/none"));
        return true;
    }();
    Q_UNUSED(done)
}

std::optional<base::Colour> AskToolkit(QWidget* owner, base::Colour start, const QString& title) {
    KeepNoConfiguration();
    const QColor chosen =
        QColorDialog::getColor(ToQColor(start), owner->window(), title, QColorDialog::DontUseNativeDialog);
    return chosen.isValid() ? std::optional(FromQColor(chosen)) : std::nullopt;
}

ColourDialog& Dialog() {
    static ColourDialog dialog = AskToolkit;
    return dialog;
}

} // namespace

ColorPicker::ColorPicker(QWidget* container, const QString& name, const QString& caption)
    : HostedControl(container, name), button_(new PickerFace(this)) {
    Host(button_);
    connect(button_, &QPushButton::clicked, this, &ColorPicker::Pick);
    SetBackColor(base::Colour(0x8000000FU));
    SetForeColor(base::Colour(0x80000012U));
    SetCaption(caption);
}

void ColorPicker::SetCaption(const QString& caption) {
    caption_ = caption;
    button_->setText(caption);
    SetAccessibleLabel(ShownCaption(caption));
    Describe();
}

void ColorPicker::SetColor(base::Colour colour) {
    if (colour_ == colour)
        return;
    colour_ = colour;
    Describe();
    button_->update();
}

void ColorPicker::Describe() { button_->setAccessibleDescription(ToQColor(colour_).name().toUpper()); }

// The swatch alone does not tell its number.
QString ColorPicker::TipText() const {
    const QString cut = HostedControl::TipText();
    const QString colour = ToQColor(colour_).name().toUpper();
    return cut.isEmpty() ? colour : cut + QStringLiteral(": ") + colour;
}

QString ColorPicker::ShownText() const { return ShownCaption(caption_); }

int ColorPicker::TextRoom() const { return width() - Scaled(swatchWidth + gap + 3) - Scaled(2); }

// Pickers of several groups may bear one caption.
QString ColorPicker::DialogTitle() const {
    const auto* const group = qobject_cast<const GroupBox*>(parentWidget());
    const QString own = ShownCaption(caption_);
    return group == nullptr ? own : ShownCaption(group->Caption()) + QStringLiteral(": ") + own;
}

void ColorPicker::Pick() {
    // The dialog lets everything else of the program run, and must not open twice for one colour.
    if (picking_)
        return;
    picking_ = true;
    const QPointer<ColorPicker> alive(this);
    const auto chosen = Dialog()(this, colour_, DialogTitle());
    if (!alive)
        return;
    picking_ = false;
    if (!chosen)
        return;
    SetColor(*chosen);
    Q_EMIT Change();
}

void SetColourDialog(ColourDialog dialog) { Dialog() = dialog ? std::move(dialog) : AskToolkit; }

} // namespace suite
