// The header of a list view: flat captions in the list's own colours, an arrow on the sorted column, and the keyboard:
// with the focus on it, left and right choose a column and the space bar or the return key clicks it.
#pragma once

#include <QHeaderView>

namespace suite {

class ListHeader : public QHeaderView {
    Q_OBJECT

  public:
    explicit ListHeader(QWidget* parent);

    void SetColours(const QColor& back, const QColor& fore);
    // The sorted column, counted from 0, or -1.
    void SetSortMark(int column, bool descending);
    // The width that a caption takes with its margins, in pixels.
    int CaptionWidth(int column) const;

  Q_SIGNALS:
    // By mouse or keyboard; counted from 0.
    void Clicked(int column);

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int column) const override;
    void paintEvent(QPaintEvent* event) override;
    QSize sectionSizeFromContents(int column) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    QString Caption(int column) const;
    // The next shown column from `from` in direction `step`; `from` itself where there is none.
    int NextShown(int from, int step) const;

    QColor back_;
    QColor fore_;
    int sorted_ = -1;
    bool descending_ = false;
    int focused_ = -1;
};

} // namespace suite
