#include "suite/push_button.h"

#include "suite/paint_tools.h"

#include <QPainter>
#include <QPushButton>

namespace suite {

namespace {

constexpr double margin = 6; // left and right of the caption, pixels at 96 dots per inch

class ButtonFace : public QPushButton {
  public:
    explicit ButtonFace(QWidget* parent) : QPushButton(parent) {
        setAttribute(Qt::WA_Hover);
        setAutoDefault(true);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QColor ground = palette().color(QPalette::Window), fore = palette().color(QPalette::WindowText);
        const QColor face = Mix(ground, fore, isDown() ? 0.25 : underMouse() && isEnabled() ? 0.12 : 0.0);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Mix(ground, fore, 0.5), Scaled(1)));
        painter.setBrush(face);
        const double half = Scaled(1) / 2.0;
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), Scaled(3), Scaled(3));
        painter.setPen(isEnabled() ? fore : Mix(fore, ground, 0.5));
        const QRect room = rect().adjusted(Scaled(margin), 0, -Scaled(margin), 0);
        painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(ShownCaption(text()), Qt::ElideRight, room.width()));
        if (hasFocus())
            DrawFocusRing(painter, rect().adjusted(Scaled(3), Scaled(3), -Scaled(3), -Scaled(3)),
                          Mix(fore, face, 0.25));
    }
};

} // namespace

PushButton::PushButton(QWidget* container, const QString& name, const QString& caption)
    : HostedControl(container, name), button_(new ButtonFace(this)) {
    Host(button_);
    connect(button_, &QPushButton::clicked, this, &PushButton::Click);
    SetBackColor(base::Colour(0x8000000FU));
    SetForeColor(base::Colour(0x80000012U));
    SetCaption(caption);
}

void PushButton::SetCaption(const QString& caption) {
    caption_ = caption;
    button_->setText(caption);
    SetAccessibleLabel(ShownCaption(caption));
}

QString PushButton::ShownText() const { return ShownCaption(caption_); }

int PushButton::TextRoom() const { return width() - 2 * Scaled(margin); }

} // namespace suite
