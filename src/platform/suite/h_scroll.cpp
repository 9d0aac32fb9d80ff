#include "suite/h_scroll.h"

#include "suite/paint_tools.h"

#include <QPainter>
#include <QScrollBar>
#include <utility>

namespace suite {

namespace {

constexpr int mostByDefault = 32767;
constexpr int pageStep = 10;

class BarFace : public QScrollBar {
  public:
    explicit BarFace(QWidget* parent) : QScrollBar(Qt::Horizontal, parent) {
        // The toolkit's scroll bars count downwards with the right arrow key.
        setInvertedControls(false);
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        QScrollBar::paintEvent(event);
        if (!hasFocus())
            return;
        QPainter painter(this);
        DrawFocusRing(painter, rect(), palette().color(QPalette::Highlight));
    }

    void focusInEvent(QFocusEvent* event) override {
        QScrollBar::focusInEvent(event);
        update();
    }

    void focusOutEvent(QFocusEvent* event) override {
        QScrollBar::focusOutEvent(event);
        update();
    }
};

} // namespace

HScroll::HScroll(QWidget* container, const QString& name) : Control(container, name), bar_(new BarFace(this)) {
    bar_->setRange(0, mostByDefault);
    bar_->setPageStep(pageStep);
    bar_->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(bar_);
    bar_->show();
    connect(bar_, &QScrollBar::valueChanged, this, [this](int value) {
        if (bar_->isSliderDown()) {
            Q_EMIT Scroll();
            return;
        }
        reported_ = value;
        Q_EMIT Change();
    });
    connect(bar_, &QScrollBar::sliderReleased, this, [this] {
        if (std::exchange(reported_, Value()) != Value())
            Q_EMIT Change();
    });
}

int HScroll::Min() const { return bar_->minimum(); }
void HScroll::SetMin(int value) { bar_->setMinimum(value); }
int HScroll::Max() const { return bar_->maximum(); }
void HScroll::SetMax(int value) { bar_->setMaximum(value); }
int HScroll::Value() const { return bar_->value(); }
void HScroll::SetValue(int value) { bar_->setValue(value); }

void HScroll::SetAccessibleLabel(const QString& label) {
    setAccessibleName(label);
    bar_->setAccessibleName(label);
}

void HScroll::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    bar_->setGeometry(rect());
}

} // namespace suite
