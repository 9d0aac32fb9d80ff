// The whole program with all its windows, set to work on one long job without a hand at the mouse, so that tests can
// kill it, starve it and take the ground from under it. Tells on standard output what it has finished, a line for each
// step.
//
//   at_work FOLDER JOB [COUNT [TAG]]
//
// Jobs: start, scan, add, submit, update, settings. FOLDER is the program's folder. From the environment:
// QUORVANE_TEST_SERVER (address of server and upload host), QUORVANE_TEST_DEVICES (device root), and limits that begin
// with the job: QUORVANE_TEST_FILES (further file descriptors), QUORVANE_TEST_MEMORY (further MiB of address space),
// QUORVANE_TEST_SEND (milliseconds that an upload may stand still).
#include "appearance/colour_table.h"
#include "appearance/frm_colors.h"
#include "base/paths.h"
#include "base/yield.h"
#include "contribution/frm_improve.h"
#include "controls/dc_button.h"
#include "database/additions.h"
#include "database/contribution_line.h"
#include "database/frm_lookup.h"
#include "database/store.h"
#include "draw/system_colours.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "inventory/frm_menu.h"
#include "net/wininet.h"
#include "pnp/sources.h"
#include "shell/frm_main.h"
#include "shell/termination.h"
#include "suite/list_view.h"
#include "updating/frm_update.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "values/settings.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QTimer>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int longestWait = 600'000; // milliseconds

struct Order {
    QString job;
    int count = 1;
    QString tag = "x";
};

void Tell(const QString& line) {
    const QByteArray bytes = line.toUtf8().replace('\r', ' ').replace('\n', ' ') + '\n';
    [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, bytes.constData(), size_t(bytes.size()));
}

// One turn of the program's own loop; no yield, so that closed windows are destroyed in it.
void Turn() {
    QTimer limit;
    limit.start(10);
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

// False where the program was told to end, which leaves no window to ask, or the wait was in vain.
template <typename Condition> bool WaitFor(Condition condition) {
    const QDeadlineTimer deadline(longestWait);
    while (!values::ProgramClosing() && !deadline.hasExpired()) {
        if (condition())
            return true;
        Turn();
    }
    return false;
}

template <typename Window> Window* Find(const char* name) {
    return static_cast<Window*>(forms::Forms::Instance().Find(QLatin1String(name)));
}

shell::FrmMain* Main() { return Find<shell::FrmMain>("FrmMain"); }

// What people must never get to see, in whatever label of whatever window.
void WatchLabels() {
    for (const forms::Form* form : forms::Forms::Instance().Loaded()) {
        for (QObject* control : form->Controls()) {
            const auto* label = qobject_cast<forms::Label*>(control);
            if (label != nullptr && label->Caption().contains("locked", Qt::CaseInsensitive))
                Tell("shown " + label->Caption());
        }
    }
}

// The number of descriptors that are in use. Numbers that lie free between them are taken, since a limit would not
// cover them.
int OpenFiles() {
    int highest = 0;
    for (const QString& name : QDir("/proc/self/fd").entryList(QDir::System | QDir::Files))
        highest = std::max(highest, name.toInt());
    int last = 0;
    while (last < highest) {
        const int taken = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (taken < 0)
            break;
        last = taken;
    }
    return std::max(highest, last) + 1;
}

void LimitResources() {
    bool given = false;
    if (const int files = qEnvironmentVariableIntValue("QUORVANE_TEST_FILES", &given); given) {
        const rlim_t limit = rlim_t(OpenFiles() + files);
        const rlimit both{limit, limit};
        setrlimit(RLIMIT_NOFILE, &both);
    }
    if (const int still = qEnvironmentVariableIntValue("QUORVANE_TEST_SEND", &given); given)
        net::SetSendLimits(still, still);
    if (const int memory = qEnvironmentVariableIntValue("QUORVANE_TEST_MEMORY", &given); given) {
        QFile sizes("/proc/self/statm");
        if (!sizes.open(QIODevice::ReadOnly))
            std::_Exit(EXIT_FAILURE);
        const rlim_t pages = sizes.readAll().split(' ').first().toULongLong();
        const rlim_t limit = pages * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(memory) << 20);
        const rlimit both{limit, limit};
        setrlimit(RLIMIT_AS, &both);
    }
}

bool Scanned() { return Main() != nullptr && Main()->LabelStatus->Caption() == "Status: Done"; }

void Scan(const Order& order) {
    for (int i = 0; i < order.count && !values::ProgramClosing(); ++i) {
        Main()->CommandGetHardware_Click();
        if (!values::ProgramClosing())
            Tell(QStringLiteral("scanned %1").arg(Main()->ListViewHardware->ListItems().Count()));
    }
}

void Add(const Order& order) {
    for (int i = 0; i < order.count && !values::ProgramClosing(); ++i) {
        database::AddDeviceToDatabase(database::ContributionLine(QStringLiteral("%1\\%2").arg(order.tag).arg(i),
                                                                 QStringLiteral("Name %1 %2").arg(order.tag).arg(i),
                                                                 "Maker " + order.tag));
        // Closed meanwhile, it may have had no database any more.
        if (!values::ProgramClosing())
            Tell(QStringLiteral("added %1").arg(i));
    }
}

void Submit(const Order&) {
    Main()->CommandImproveHardware_Click();
    auto* window = Find<contribution::FrmImprove>("FrmImprove");
    if (values::ProgramClosing() || window == nullptr)
        return;
    const auto done = [&] { return window->StatusText == "Done."; };
    window->CommandGetHardware_Click();
    if (!WaitFor(done))
        return;
    Tell(QStringLiteral("offered %1").arg(window->ListViewHardware->ListItems().Count()));
    window->CommandSaveSubmit_Click();
    if (!values::ProgramClosing())
        Tell("submitted " + window->ImportantLabelSubmitStatus->Caption());
}

void Update(const Order&) {
    Main()->CommandCheckForUpdates_Click();
    const auto window = [] { return Find<updating::FrmUpdate>("FrmUpdate"); };
    const auto unanswered = [&] { return window()->Label4->Caption() == "Online Version: Error"; };
    if (!WaitFor([&] { return window() == nullptr || window()->CommandDownloadDatabase->Enabled() || unanswered(); }) ||
        window() == nullptr)
        return;
    if (unanswered()) {
        Tell("failed " + window()->Label4->Caption());
        return;
    }
    QTimer watch;
    bool unpacking = false;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!unpacking && window() != nullptr && window()->ImportantLabelUnzip->Visible()) {
            unpacking = true;
            Tell("unpacking");
        }
    });
    watch.start(0);
    Tell("downloading");
    Q_EMIT window()->CommandDownloadDatabase->Click();
    const auto failed = [&] { return window() != nullptr && window()->lblerr->Caption().contains(u'['); };
    if (!WaitFor([&] { return window() == nullptr || failed(); }))
        return;
    if (failed()) {
        Tell("failed " + window()->lblerr->Caption());
        return;
    }
    if (WaitFor([] { return !Main()->TimerCountDatabase->Enabled() && Main()->CommandGetHardware->Enabled(); }))
        Tell("updated " + values::Program().DatabaseVersion);
}

// All colours are the number of the round, in the settings and in a preset.
void Settings(const Order& order) {
    for (int round = 1; round <= order.count && !values::ProgramClosing(); ++round) {
        QString path = values::SettingsPath();
        values::WriteSetting("main", "CheckForUpdates", QString::number(round % 2), path);
        for (const appearance::ColourRow& row : appearance::colourRows)
            appearance::SetColor(row.Index, base::Colour(quint32(round)));
        appearance::SaveColors();
        appearance::SaveColorPreset(order.tag);
        Tell(QStringLiteral("saved %1").arg(round));
        base::Yield();
    }
}

void Work(const Order& order) {
    if (!WaitFor(Scanned))
        return;
    Tell(QStringLiteral("started %1 %2")
             .arg(values::Program().DatabaseVersion)
             .arg(values::Program().DatabaseDeviceCount));
    LimitResources();
    static const std::pair<const char*, void (*)(const Order&)> jobs[] = {
        {"scan", Scan}, {"add", Add}, {"submit", Submit}, {"update", Update}, {"settings", Settings},
    };
    for (const auto& [name, job] : jobs) {
        if (order.job == QLatin1String(name))
            job(order);
    }
}

void Prepare(const QString& folder) {
    base::SetProgramFolder(folder);
    if (const QString server = qEnvironmentVariable("QUORVANE_TEST_SERVER"); !server.isEmpty()) {
        values::ServerAddresses().UpdateHost = server;
        values::ServerAddresses().UploadHost = server;
    }
    if (const QString devices = qEnvironmentVariable("QUORVANE_TEST_DEVICES"); !devices.isEmpty())
        pnp::SetDeviceRoot(devices);
    draw::SetSysColors(QApplication::palette());
    forms::SetMsgBoxRecorder([](const QString& text, forms::MessageIcon) { Tell("box " + text); });
    database::SetFatalHandlers([](const QString& text) { Tell("fatal " + text); }, [] { std::_Exit(EXIT_FAILURE); });
    shell::RegisterMainWindow();
    appearance::RegisterForms();
    inventory::RegisterMenuForm();
    database::RegisterLookupForm();
    contribution::RegisterImproveForm();
    updating::RegisterUpdateForm();
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3)
        return EXIT_FAILURE;
    Order order{arguments[2]};
    if (arguments.size() > 3)
        order.count = arguments[3].toInt();
    if (arguments.size() > 4)
        order.tag = arguments[4];
    Prepare(arguments[1]);

    const shell::Termination termination;
    forms::Forms& all = forms::Forms::Instance();
    bool gone = false;
    all.SetAllGone([&gone] { gone = true; });
    QTimer labels;
    QObject::connect(&labels, &QTimer::timeout, WatchLabels);
    labels.start(20);
    all.Shared("FrmMain")->Show();
    Work(order);
    if (forms::Form* main = Main())
        main->Unload();
    const QDeadlineTimer deadline(longestWait);
    while (!gone && !deadline.hasExpired())
        Turn();
    all.Clear();
    Tell("end");
    return gone ? EXIT_SUCCESS : EXIT_FAILURE;
}
