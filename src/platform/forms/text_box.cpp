#include "forms/text_box.h"

#include "draw/system_colours.h"

#include <QPlainTextEdit>

namespace forms {

namespace {

QColor Resolved(base::Colour colour) {
    const base::Colour plain = draw::OleTranslateColor(colour);
    return {plain.Red(), plain.Green(), plain.Blue()};
}

} // namespace

TextBox::TextBox(QWidget* container, const QString& name)
    : Control(container, name), editor_(new QPlainTextEdit(this)) {
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

void TextBox::ApplyColours() {
    // The scroll bars take their shades from the same colour.
    const QColor back = Resolved(backColor_);
    QPalette palette(back, back);
    palette.setColor(QPalette::Base, back);
    palette.setColor(QPalette::Text, Resolved(foreColor_));
    editor_->setPalette(palette);
}

void TextBox::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    editor_->setGeometry(rect());
}

} // namespace forms
