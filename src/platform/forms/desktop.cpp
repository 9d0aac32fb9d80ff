#include "forms/desktop.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>
#include <cstdio>
#include <unistd.h>

namespace forms {

namespace {

std::function<void(const QString&)>& BrowserRecorder() {
    static std::function<void(const QString&)> recorder;
    return recorder;
}

std::function<void(const QString&)>& ClipboardRecorder() {
    static std::function<void(const QString&)> recorder;
    return recorder;
}

constexpr const char* runtimeVariable = "XDG_RUNTIME_DIR";
constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";
// A kind of address that there is not: every connection to the bus fails at once.
constexpr const char* noBus = "disabled:";

QStringList RuntimeFolders() {
    QStringList folders;
    const auto all = QDir::temp().entryInfoList({QStringLiteral("runtime-*")}, QDir::Dirs);
    for (const QFileInfo& folder : all)
        if (folder.ownerId() == geteuid())
            folders.append(folder.filePath());
    return folders;
}

bool IsOpenable(const QString& address) {
    const QString scheme = QUrl(address.section(u'?', 0, 0)).scheme();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") || scheme == QLatin1String("mailto");
}

bool IsHexDigit(char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F') || (byte >= 'a' && byte <= 'f');
}

bool IsEscape(const QByteArray& bytes, qsizetype at) {
    return bytes[at] == '%' && at + 2 < bytes.size() && IsHexDigit(bytes[at + 1]) && IsHexDigit(bytes[at + 2]);
}

// Who else tells messages; null is the toolkit itself.
QtMessageHandler& UsualHandler() {
    static QtMessageHandler handler = nullptr;
    return handler;
}

void TellButOfPaths(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (message.startsWith(QLatin1String("QStandardPaths:")))
        return;
    if (UsualHandler() != nullptr)
        UsualHandler()(type, context, message);
    else
        std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, message)));
}

} // namespace

QByteArray EncodedAddress(const QString& address) {
    // What may stand in an address as it is, after RFC 3986. A "#" and a "+" from a device name would end the query or
    // turn into a blank at the site. Escapes stay, since the program has escaped "&" already; a "%" that begins none
    // would make the whole address invalid.
    static const QByteArray plain = QByteArrayLiteral("-._~:/?[]@!$&'()*,;=");
    const QByteArray bytes = address.toUtf8();
    QByteArray encoded;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char byte = bytes[i];
        const bool letterOrDigit =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        if (letterOrDigit || plain.contains(byte) || IsEscape(bytes, i))
            encoded.append(byte);
        else
            encoded.append('%').append(QByteArray(1, byte).toHex().toUpper());
    }
    return encoded;
}

void ShellExecuteA(const Form* owner, const QString& address) {
    Q_UNUSED(owner)
    if (BrowserRecorder()) {
        BrowserRecorder()(address);
        return;
    }
    if (!IsOpenable(address))
        return;
    // The browser gets the environment that we got.
    const bool ours = qgetenv(busVariable) == noBus;
    if (ours)
        qunsetenv(busVariable);
    const NoRuntimeFolder noRuntimeFolder;
    QDesktopServices::openUrl(QUrl::fromEncoded(EncodedAddress(address), QUrl::StrictMode));
    if (ours)
        qputenv(busVariable, noBus);
}

void StartNoSessionBus() {
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const bool userBus = !runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + QStringLiteral("/bus"));
    if (qEnvironmentVariableIsEmpty(busVariable) && !userBus)
        qputenv(busVariable, noBus);
}

NoRuntimeFolder::NoRuntimeFolder() : missing_(qEnvironmentVariableIsEmpty(runtimeVariable)), before_(RuntimeFolders()) {
    if (missing_)
        UsualHandler() = qInstallMessageHandler(TellButOfPaths);
}

NoRuntimeFolder::~NoRuntimeFolder() {
    if (!missing_)
        return;
    qInstallMessageHandler(UsualHandler());
    // One with anything in it stays.
    for (const QString& folder : RuntimeFolders())
        if (!before_.contains(folder))
            QDir().rmdir(folder);
}

void ClearClipboard() {
    if (ClipboardRecorder())
        return;
    QGuiApplication::clipboard()->clear();
}

void SetClipboardText(const QString& text) {
    if (ClipboardRecorder()) {
        ClipboardRecorder()(text);
        return;
    }
    QGuiApplication::clipboard()->setText(text);
}

void SetBrowserRecorder(std::function<void(const QString&)> recorder) { BrowserRecorder() = std::move(recorder); }

void SetClipboardRecorder(std::function<void(const QString&)> recorder) { ClipboardRecorder() = std::move(recorder); }

} // namespace forms
