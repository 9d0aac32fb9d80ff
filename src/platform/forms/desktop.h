// What leaves the process towards the desktop: the browser and the clipboard.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

namespace forms {

class Form;

// ShellExecuteA with the verb "Open" and normal show state: hands an address to the user's default browser. The address
// may hold blanks and backslashes; they reach the site as such. Does nothing for other schemes than http, https and
// mailto, or without a browser.
void ShellExecuteA(const Form* owner, const QString& address);

// Before the application object is made. Where there is no session bus the toolkit would have one started, a process
// that stays behind when the program ends; afterwards it does without. Programs that ShellExecuteA starts are not told.
void StartNoSessionBus();

// While the toolkit looks into the user's run-time folder, as it does when the application is made and when an address
// is opened: where the user has none, it makes one below the temporary folder and says so. It goes again, without a
// word.
class NoRuntimeFolder {
  public:
    NoRuntimeFolder();
    ~NoRuntimeFolder();
    NoRuntimeFolder(const NoRuntimeFolder&) = delete;
    NoRuntimeFolder& operator=(const NoRuntimeFolder&) = delete;

  private:
    const bool missing_;
    const QStringList before_;
};

// The encoded form in which an address is handed over: blanks, backslashes, quotes and characters beyond ASCII as
// percent escapes, everything that was escaped already untouched.
QByteArray EncodedAddress(const QString& address);

// The clipboard, plain text only.
void ClearClipboard();
void SetClipboardText(const QString& text);

// Take the place of browser and clipboard; null restores them.
void SetBrowserRecorder(std::function<void(const QString& address)> recorder);
void SetClipboardRecorder(std::function<void(const QString& text)> recorder);

} // namespace forms
