#include "database/store.h"

#include "base/numbers.h"
#include "base/yield.h"
#include "data/error.h"
#include "database/device_info.h"
#include "database/schema.h"
#include "values/addresses.h"
#include "values/program_values.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>

namespace database {

namespace {

struct Store {
    data::ConnectionPtr Connection;
    std::array<data::RecordsetPtr, 5> Slots;
    std::function<void(const QString&)> ShowFatal;
    std::function<void()> EndProcess;
};

Store& TheStore() {
    static Store store;
    return store;
}

void EndAfterFatalError(const data::Error& error) {
    const QString message =
        QStringList{
            QStringLiteral("ERROR: ") + QString::number(error.Number()),
            error.Description(),
            QString(),
            QStringLiteral("Looks like the program had trouble opening the database with ADO!"),
            QStringLiteral("Please check for help or report this error at ") + values::ServerAddresses().WebSite +
                QStringLiteral("/forums/"),
            QString(),
            QStringLiteral("The Program Will Now Close."),
        }
            .join(QStringLiteral("\r\n"));
    // Copies: the message box dispatches events, and a handler may set new ones.
    const auto show = TheStore().ShowFatal;
    const auto end = TheStore().EndProcess;
    if (show) {
        show(message);
    } else {
        std::fprintf(stderr, "%s\n", qPrintable(message));
    }
    if (end) {
        end();
    } else {
        std::_Exit(1);
    }
}

// The text in `column` of the row that the query finds.
QString LookUp(Slot slot, const QString& query, const QString& column, const QString& id) {
    QString text;
    if (!IsDecimal(id)) {
        return text;
    }
    const auto rows = std::make_shared<data::Recordset>();
    RecordsetSlot(slot) = rows;
    data::Ran([&] { rows->Open(query + id, DatabaseConnection()); });
    data::Ran([&] { rows->MoveFirst(); });
    data::Ran([&] { text = rows->Value(column).toString(); });
    data::Ran([&] { rows->Close(); });
    return text;
}

} // namespace

const data::ConnectionPtr& DatabaseConnection() { return TheStore().Connection; }

quint64 DatabaseGeneration() { return DatabaseConnection() ? DatabaseConnection()->Generation() : 0; }

data::RecordsetPtr& RecordsetSlot(Slot slot) { return TheStore().Slots[size_t(slot)]; }

void SetFatalHandlers(std::function<void(const QString&)> show, std::function<void()> end) {
    TheStore().ShowFatal = std::move(show);
    TheStore().EndProcess = std::move(end);
}

bool OpenDatabaseFile(const QString& path, data::Error* error) {
    return data::Ran(
        [&] {
            const auto connection = std::make_shared<data::Connection>();
            TheStore().Connection = connection;
            connection->SetCursorLocation(data::adUseClient);
            connection->SetRules(&Rules());
            connection->SetConnectionString(data::ConnectionStringFor(path));
            connection->Open(QString(), QString(), data::adConnectUnspecified);
        },
        error);
}

bool OpenDeviceDatabase() {
    data::Error error;
    if (!OpenDatabaseFile(values::ProgramFolder() + QStringLiteral("\\hwids.mdb"), &error)) {
        EndAfterFatalError(error);
        return false;
    }
    base::Yield();
    return true;
}

void CloseDeviceDatabase() {
    for (const Slot slot : {Slot::Identity, Slot::Hwids, Slot::DeviceNames, Slot::Mfgs, Slot::Version}) {
        const data::RecordsetPtr rows = std::move(RecordsetSlot(slot));
        if (rows) {
            data::Ran([&] { rows->Close(); });
        }
        base::Yield();
    }
    const data::ConnectionPtr connection = std::move(TheStore().Connection);
    TheStore().Connection.reset();
    if (connection) {
        data::Ran([&] { connection->Close(); });
    }
    base::Yield();
}

QString DeviceNameById(const QString& id) {
    return LookUp(Slot::DeviceNames, QStringLiteral("SELECT * FROM devicenames Where [devicenames].[ID] = "),
                  QStringLiteral("devicename"), id);
}

QString ManufacturerById(const QString& id) {
    return LookUp(Slot::Mfgs, QStringLiteral("SELECT * FROM mfgs Where [mfgs].[ID] = "), QStringLiteral("mfg"), id);
}

void ReadVersionAndCount() {
    const auto hwids = std::make_shared<data::Recordset>();
    const auto version = std::make_shared<data::Recordset>();
    RecordsetSlot(Slot::Hwids) = hwids;
    data::Ran([&] { hwids->Open(QStringLiteral("SELECT * FROM hwids"), DatabaseConnection()); });
    base::Yield();
    RecordsetSlot(Slot::Version) = version;
    data::Ran([&] { version->Open(QStringLiteral("SELECT * FROM version"), DatabaseConnection()); });
    base::Yield();
    data::Ran([&] { hwids->MoveFirst(); });
    data::Ran([&] { version->MoveFirst(); });

    values::ProgramValues& program = values::Program();
    data::Ran([&] { program.DatabaseVersion = version->Value(QStringLiteral("dbversion")).toString(); });
    if (const data::ConnectionPtr connection = DatabaseConnection();
        connection && hwids->State() != data::adStateClosed) {
        constexpr qint64 most = std::numeric_limits<qint32>::max();
        const std::optional<qint64> count =
            connection->CountRows(QStringLiteral("hwids"), [] { return values::ProgramClosing(); });
        program.DatabaseDeviceCount = count ? qint32(std::min(*count, most)) : program.DatabaseDeviceCount;
    }
    base::Yield();
    data::Ran([&] { hwids->Close(); });
    data::Ran([&] { version->Close(); });
    RecordsetSlot(Slot::Hwids).reset();
    RecordsetSlot(Slot::Version).reset();
    base::Yield();
}

QString DeviceCountCaption() {
    return QStringLiteral("Devices In Database: ") +
           base::FormatNumber(values::Program().DatabaseDeviceCount, QStringLiteral("###,###,###,###"));
}

QString DatabaseVersionCaption() { return QStringLiteral("Database Version: ") + values::Program().DatabaseVersion; }

QString DoubleApostrophes(const QString& text) {
    QString doubled = text;
    return doubled.replace(QLatin1Char('\''), QLatin1String("''"));
}

} // namespace database
