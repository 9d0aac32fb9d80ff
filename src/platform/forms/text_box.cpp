#include "forms/text_box.h"

#include "forms/screen.h"
#include "forms/toolkit.h"

#include <QPainter>
#include <QPlainTextEdit>

namespace forms {

namespace {

// Shows that it has the keyboard also where no caret does: in a locked box.
class FocusEdit : public QPlainTextEdit {
  public:
    using QPlainTextEdit::QPlainTextEdit;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPlainTextEdit::paintEvent(event);
        if (!hasFocus() || !isActiveWindow())
            return;
        QPainter painter(viewport());
        const QRect area = viewport()->rect();
        const QColor ink = palette().color(QPalette::Text);
        const int line = Scaled(1);
        painter.fillRect(QRect(area.left(), area.top(), area.width(), line), ink);
        painter.fillRect(QRect(area.left(), area.bottom() + 1 - line, area.width(), line), ink);
        painter.fillRect(QRect(area.left(), area.top(), line, area.height()), ink);
        painter.fillRect(QRect(area.right() + 1 - line, area.top(), line, area.height()), ink);
    }

    void focusInEvent(QFocusEvent* event) override {
        QPlainTextEdit::focusInEvent(event);
        viewport()->update();
    }

    void focusOutEvent(QFocusEvent* event) override {
        QPlainTextEdit::focusOutEvent(event);
        viewport()->update();
    }

    // Scrolling moves the painted pixels, the frame's among them.
    void scrollContentsBy(int dx, int dy) override {
        QPlainTextEdit::scrollContentsBy(dx, dy);
        if (hasFocus())
            viewport()->update();
    }
};

} // namespace

TextBox::TextBox(QWidget* container, const QString& name) : Control(container, name), editor_(new FocusEdit(this)) {
    editor_->setFrameShape(QFrame::NoFrame);
    editor_->setTabChangesFocus(true);
    setFocusProxy(editor_);
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
        if (!setting_)
            text_ = editor_->toPlainText().replace(u'\n', QStringLiteral("\r\n"));
        Q_EMIT Change();
    });
    ApplyColours();
}

void TextBox::SetText(const QString& text) {
    text_ = text;
    setting_ = true;
    QString shown = text;
    editor_->setPlainText(shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    setting_ = false;
}

bool TextBox::Locked() const { return editor_->isReadOnly(); }

void TextBox::SetLocked(bool locked) {
    editor_->setReadOnly(locked);
    if (locked)
        editor_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void TextBox::SetBackColor(base::Colour colour) {
    backColor_ = colour;
    ApplyColours();
}

void TextBox::SetForeColor(base::Colour colour) {
    foreColor_ = colour;
    ApplyColours();
}

void TextBox::SetAccessibleLabel(const QString& label) {
    setAccessibleName(label);
    editor_->setAccessibleName(label);
}

void TextBox::ApplyColours() {
    // The scroll bars take their shades from the same colour.
    const QColor back = ToQColor(backColor_);
    QPalette palette(back, back);
    palette.setColor(QPalette::Base, back);
    palette.setColor(QPalette::Text, ToQColor(foreColor_));
    editor_->setPalette(palette);
}

void TextBox::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    editor_->setGeometry(rect());
}

} // namespace forms
