// The program's start: makes the application, tells the collection of forms how the windows are made, and shows the
// main one. The process ends when the last form is gone.
#include "appearance/frm_colors.h"
#include "base/standard_streams.h"
#include "contribution/frm_improve.h"
#include "database/frm_lookup.h"
#include "database/store.h"
#include "forms/density.h"
#include "forms/desktop.h"
#include "forms/desktop_theme.h"
#include "forms/dialogs.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/key_repeat.h"
#include "inventory/frm_menu.h"
#include "shell/frm_main.h"
#include "shell/termination.h"
#include "updating/frm_update.h"
#include "values/program_values.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QStyleFactory>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

// The program measures in device pixels and scales by itself; the toolkit must not scale a second time.
constexpr const char* scalingSwitch = "QT_ENABLE_HIGHDPI_SCALING";

// The widest window is the main one, the highest that of contributions; twips.
constexpr double widestWindow = shell::mainWidth;
constexpr double highestWindow = 8715;

void PrepareEnvironment() {
    qputenv(scalingSwitch, "0");
    qunsetenv("QT_SCALE_FACTOR");
    qunsetenv("QT_SCREEN_SCALE_FACTORS");
    // Under Wayland the X11 way is preferred where there is one: it knows where windows stand.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? "xcb" : "xcb;wayland");
}

// The toolkit ends the process by a signal where no display answers, and advises to install it again. What it says on
// the way is left out.
void TellNoDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*text*/) {
    if (type != QtFatalMsg)
        return;
    const auto named = [](const char* variable) {
        const QByteArray value = qgetenv(variable);
        return value.isEmpty() ? QByteArrayLiteral("not set") : value;
    };
    std::fprintf(
        stderr,
        "quorvane: no display to show windows on (DISPLAY: %s, WAYLAND_DISPLAY: %s). quorvane-list lists the devices without one.\n",
        named("DISPLAY").constData(), named("WAYLAND_DISPLAY").constData());
    std::_Exit(EXIT_FAILURE);
}

void RegisterWindows() {
    shell::RegisterMainWindow();
    appearance::RegisterForms();
    inventory::RegisterMenuForm();
    database::RegisterLookupForm();
    contribution::RegisterImproveForm();
    updating::RegisterUpdateForm();
}

} // namespace

int main(int argc, char** argv) {
    base::PrepareStandardStreams();
    const bool platformGiven = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    PrepareEnvironment();
    forms::StartNoSessionBus();
    // Plugins come from the system alone; a folder of them beside the program must not run.
    QCoreApplication::setLibraryPaths({QLibraryInfo::path(QLibraryInfo::PluginsPath)});
    const QtMessageHandler usual = qInstallMessageHandler(TellNoDisplay);
    std::optional<forms::NoRuntimeFolder> noRuntimeFolder(std::in_place);
    QApplication application(argc, argv);
    noRuntimeFolder.reset();
    qInstallMessageHandler(usual);
    // Programs that we start, such as the browser, get the environment that we got.
    qunsetenv(scalingSwitch);
    if (!platformGiven)
        qunsetenv("QT_QPA_PLATFORM");
    QApplication::setApplicationName(QStringLiteral("quorvane"));
    QApplication::setApplicationVersion(values::BuiltVersion());
    QApplication::setDesktopFileName(QStringLiteral("quorvane"));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    forms::TellKeyRepeats();
    forms::ApplyDensity(widestWindow, highestWindow);
    forms::FollowDesktopTheme();
    database::SetFatalHandlers([](const QString& message) { forms::MsgBox(message); },
                               [] { std::_Exit(EXIT_FAILURE); });

    RegisterWindows();
    const shell::Termination termination;
    forms::Forms& all = forms::Forms::Instance();
    if (forms::Form* main = all.Shared(QStringLiteral("FrmMain")))
        main->Show();
    const int status = all.Loaded().isEmpty() ? EXIT_SUCCESS : QApplication::exec();
    all.Clear();
    return status;
}
