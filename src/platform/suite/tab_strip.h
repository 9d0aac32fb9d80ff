// The strip of a tab control: the toolkit's tab bar for mouse, keyboard and screen readers, with a face of our own in
// the colours of the paint manager.
#pragma once

#include <QTabBar>

namespace suite {

class TabPaintManager;

class TabStrip : public QTabBar {
    Q_OBJECT

  public:
    TabStrip(const TabPaintManager& look, QWidget* parent);

    // Follows new metrics, fonts and captions.
    void Relayout();

  protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void DrawTab(QPainter& painter, int index) const;
    int SidePadding() const;

    const TabPaintManager& look_;
    int hovered_ = -1;
};

} // namespace suite
