#include "suite/combo_box.h"

#include "suite/paint_tools.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QPainter>
#include <QPainterPath>

namespace suite {

namespace {

constexpr double margin = 6; // left of the text, pixels at 96 dots per inch
constexpr double arrowRoom = 22;

class ComboFace : public QComboBox {
  public:
    explicit ComboFace(QWidget* parent) : QComboBox(parent) { setAttribute(Qt::WA_Hover); }

    void showPopup() override {
        // Long entries are read whole in the list, however narrow the box is.
        int widest = width();
        for (int i = 0; i < count(); ++i)
            widest = std::max(widest, fontMetrics().horizontalAdvance(itemText(i)) + Scaled(arrowRoom + 16));
        view()->setMinimumWidth(std::min(widest, 3 * width()));
        QComboBox::showPopup();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QColor back = palette().color(QPalette::Base);
        const QColor fore = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Text);
        painter.setRenderHint(QPainter::Antialiasing);
        const double line = Scaled(1), half = line / 2;
        painter.setPen(QPen(Mix(back, fore, hasFocus() ? 0.85 : underMouse() ? 0.6 : 0.4), line));
        painter.setBrush(back);
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), Scaled(2), Scaled(2));

        const double arrow = Scaled(8), high = arrow * 0.5;
        const QPointF centre(width() - Scaled(arrowRoom) / 2.0, height() / 2.0);
        QPainterPath path;
        path.moveTo(centre + QPointF(-arrow / 2, -high / 2));
        path.lineTo(centre + QPointF(0, high / 2));
        path.lineTo(centre + QPointF(arrow / 2, -high / 2));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(fore, Scaled(1.5), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(path);

        const QRect room = rect().adjusted(Scaled(margin), 0, -Scaled(arrowRoom), 0);
        painter.setPen(fore);
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(currentText(), Qt::ElideRight, room.width()));
        if (hasFocus())
            DrawFocusRing(painter, rect().adjusted(Scaled(3), Scaled(3), -Scaled(3), -Scaled(3)), Mix(fore, back, 0.3));
    }
};

} // namespace

ComboBox::ComboBox(QWidget* container, const QString& name)
    : HostedControl(container, name), box_(new ComboFace(this)) {
    Host(box_);
    connect(box_, &QComboBox::activated, this, [this] { Q_EMIT Click(); });
}

void ComboBox::ApplyColours() {
    const QPalette palette = ControlPalette(ToQColor(BackColor()), ToQColor(ForeColor()));
    box_->setPalette(palette);
    box_->view()->setPalette(palette);
}

QString ComboBox::ShownText() const { return Text(); }

int ComboBox::TextRoom() const { return width() - Scaled(margin) - Scaled(arrowRoom); }

void ComboBox::AddItem(const QString& text) {
    box_->addItem(text);
    // The toolkit chooses a first entry by itself.
    if (box_->count() == 1)
        box_->setCurrentIndex(-1);
}

void ComboBox::Clear() { box_->clear(); }

int ComboBox::ListCount() const { return box_->count(); }

QString ComboBox::List(int index) const { return box_->itemText(index); }

QString ComboBox::Text() const { return box_->currentText(); }

void ComboBox::SetText(const QString& text) { box_->setCurrentIndex(box_->findText(text)); }

int ComboBox::ListIndex() const { return box_->currentIndex(); }

void ComboBox::SetListIndex(int index) {
    if (index < -1 || index >= box_->count() || index == box_->currentIndex())
        return;
    box_->setCurrentIndex(index);
    Q_EMIT Click();
}

} // namespace suite
