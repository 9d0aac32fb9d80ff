// Message boxes and input boxes, and the recorder that stands in for them in tests.
#pragma once

#include <QString>
#include <functional>
#include <optional>

namespace forms {

enum class MessageIcon { None, Critical };

// A modal box with one OK button; the title is the program's name. Returns when it has been closed.
void MsgBox(const QString& text, MessageIcon icon = MessageIcon::None);

// The typed text, or nothing if the user cancelled.
std::optional<QString> InputBox(const QString& prompt, const QString& title, const QString& defaultText);

// Closes every dialog, box and popup that waits for its user, as if they had been cancelled. What stands below them on
// the stack goes on once the caller has returned to the loop.
void EndDialogs();

// Takes the place of the boxes; null restores them.
void SetMsgBoxRecorder(std::function<void(const QString& text, MessageIcon icon)> recorder);
using InputBoxAnswer =
    std::function<std::optional<QString>(const QString& prompt, const QString& title, const QString& defaultText)>;
void SetInputBoxAnswer(InputBoxAnswer answer);

} // namespace forms
