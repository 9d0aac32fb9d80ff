#include "forms/dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace forms {

namespace {

std::function<void(const QString&, MessageIcon)>& MsgBoxRecorder() {
    static std::function<void(const QString&, MessageIcon)> recorder;
    return recorder;
}

InputBoxAnswer& Answer() {
    static InputBoxAnswer answer;
    return answer;
}

} // namespace

void MsgBox(const QString& text, MessageIcon icon) {
    if (MsgBoxRecorder()) {
        MsgBoxRecorder()(text, icon);
        return;
    }
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(QStringLiteral("Quorvane"));
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setIcon(icon == MessageIcon::Critical ? QMessageBox::Critical : QMessageBox::NoIcon);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

std::optional<QString> InputBox(const QString& prompt, const QString& title, const QString& defaultText) {
    if (Answer())
        return Answer()(prompt, title, defaultText);
    bool accepted = false;
    const QString text =
        QInputDialog::getText(QApplication::activeWindow(), title, prompt, QLineEdit::Normal, defaultText, &accepted);
    return accepted ? std::optional<QString>(text) : std::nullopt;
}

void EndDialogs() {
    const QWidgetList all = QApplication::topLevelWidgets();
    for (QWidget* window : all) {
        if (auto* dialog = qobject_cast<QDialog*>(window))
            dialog->reject();
        else if (window->windowType() == Qt::Popup)
            window->close();
    }
}

void SetMsgBoxRecorder(std::function<void(const QString&, MessageIcon)> recorder) {
    MsgBoxRecorder() = std::move(recorder);
}

void SetInputBoxAnswer(InputBoxAnswer answer) { Answer() = std::move(answer); }

} // namespace forms
