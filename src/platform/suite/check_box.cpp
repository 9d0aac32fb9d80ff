#include "suite/check_box.h"

#include "suite/paint_tools.h"

#include <QCheckBox>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>

namespace suite {

namespace {

constexpr double boxSide = 14; // pixels at 96 dots per inch
constexpr double gap = 6;

// The toolkit's check box for keys, mnemonics and screen readers, with a face of our own.
class CheckFace : public QCheckBox {
  public:
    explicit CheckFace(QWidget* parent) : QCheckBox(parent) { setAttribute(Qt::WA_Hover); }

  protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QColor back = palette().color(QPalette::Window), fore = palette().color(QPalette::WindowText);
        painter.fillRect(rect(), back);
        const int side = Scaled(boxSide);
        const QRect box(Scaled(1), (height() - side) / 2, side, side);
        DrawBox(painter, box, back, fore);
        const QRect room = CaptionRect();
        painter.setPen(fore);
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(ShownCaption(text()), Qt::ElideRight, room.width()));
        if (hasFocus()) {
            const int width = std::min(room.width(), fontMetrics().horizontalAdvance(ShownCaption(text())));
            const QRect around(room.left() - Scaled(3), 0, width + Scaled(6), height());
            DrawFocusRing(painter, around.intersected(rect()), Mix(fore, back, 0.25));
        }
    }

  private:
    QRect CaptionRect() const { return rect().adjusted(Scaled(boxSide + gap + 1), 0, -Scaled(2), 0); }

    void DrawBox(QPainter& painter, const QRect& box, const QColor& back, const QColor& fore) const {
        painter.setRenderHint(QPainter::Antialiasing);
        const double line = Scaled(1);
        painter.setPen(QPen(Mix(back, fore, isEnabled() ? 0.75 : 0.35), line));
        painter.setBrush(Mix(back, fore, isDown() ? 0.3 : underMouse() && isEnabled() ? 0.18 : 0.08));
        const double half = line / 2;
        painter.drawRoundedRect(QRectF(box).adjusted(half, half, -half, -half), Scaled(2), Scaled(2));
        if (isChecked()) {
            QPainterPath mark;
            mark.moveTo(box.left() + box.width() * 0.24, box.top() + box.height() * 0.52);
            mark.lineTo(box.left() + box.width() * 0.43, box.top() + box.height() * 0.71);
            mark.lineTo(box.left() + box.width() * 0.78, box.top() + box.height() * 0.29);
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(fore, box.width() / 7.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawPath(mark);
        }
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
};

} // namespace

CheckBox::CheckBox(QWidget* container, const QString& name, const QString& caption)
    : HostedControl(container, name), box_(new CheckFace(this)) {
    Host(box_);
    connect(box_, &QCheckBox::clicked, this, &CheckBox::TellChange);
    SetBackColor(base::Colour(0x8000000FU));
    SetForeColor(base::Colour(0x80000012U));
    SetCaption(caption);
}

void CheckBox::TellChange() {
    const QPointer<CheckBox> alive(this);
    Q_EMIT Click();
    if (alive)
        Q_EMIT MouseUp(forms::LeftButton, 0, width() / 2.0, height() / 2.0);
}

void CheckBox::SetCaption(const QString& caption) {
    caption_ = caption;
    box_->setText(caption);
    SetAccessibleLabel(ShownCaption(caption));
}

QString CheckBox::ShownText() const { return ShownCaption(caption_); }

int CheckBox::TextRoom() const { return width() - Scaled(boxSide + gap + 1) - Scaled(2); }

int CheckBox::Value() const { return box_->isChecked() ? 1 : 0; }

void CheckBox::SetValue(int value) { box_->setChecked(value != 0); }

} // namespace suite
