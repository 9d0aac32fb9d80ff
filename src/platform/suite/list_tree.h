// The tree widget inside a list view. It paints whole rows itself, shows elided cells as tool tips, and reports mouse
// and popup keys after the toolkit has moved the selection, so a handler sees the row that was clicked.
#pragma once

#include <QHash>
#include <QPixmap>
#include <QTreeView>

namespace suite {

class ListItems;
class ListModel;

class ListTree : public QTreeView {
    Q_OBJECT

  public:
    ListTree(const ListItems& items, ListModel* model, QWidget* parent);

    // Pixels; 0 or less shows no icons.
    void SetIconSize(int pixels);
    void ForgetIcons();
    // Height of a row, pixels.
    int RowHeight() const;
    // Left and right of a cell's text together, pixels.
    static int CellMargins();
    // Between a row's icon and its text, pixels.
    static int IconGap();

  Q_SIGNALS:
    // Places are in pixels from the viewport's corner; buttons and modifiers as the toolkit has them.
    void Pressed(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, QPoint place);
    void Moved(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, QPoint place);
    void Released(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, QPoint place);
    void RowDoubleClicked();
    // The menu key or Shift+F10, with the place below the selected row's start.
    void PopupAsked(QPoint place);

  protected:
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paintEvent(QPaintEvent* event) override;
    int sizeHintForColumn(int column) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyboardSearch(const QString& typed) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    // What is left of a cell for its text.
    QRect TextRect(const QRect& cell, int column) const;
    void DrawIcon(QPainter& painter, const QRect& cell, qint32 id) const;
    bool SelectCurrent();
    QPoint PopupPlace() const;
    bool ShowCellTip(const QPoint& place, const QPoint& globalPlace);

    const ListItems& items_;
    ListModel* model_;
    int iconSize_ = 0;
    mutable QHash<qint32, QPixmap> icons_;
};

} // namespace suite
