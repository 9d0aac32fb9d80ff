#include "database/additions.h"

#include "base/text.h"
#include "base/yield.h"
#include "data/command.h"
#include "data/error.h"
#include "data/recordset.h"
#include "database/contribution_line.h"
#include "database/schema.h"
#include "database/store.h"
#include "inventory/clean_text.h"

#include <optional>

namespace database {

namespace {

constexpr int mostAttempts = 3; // of one addition while others keep replacing the database or writing to it

struct TextTable {
    const char16_t* Name;
    const char16_t* Column;
    const char16_t* Insert;
};

constexpr TextTable deviceNames{u"devicenames", u"devicename", InsertDeviceName};
constexpr TextTable manufacturers{u"mfgs", u"mfg", InsertManufacturer};
constexpr TextTable hardwareIds{u"hwids", u"hwid", InsertHardwareId};

QString Text(const char16_t* text) { return QString::fromUtf16(text); }

// Throws like any other use of a closed connection.
data::Connection& RequireConnection() {
    if (!DatabaseConnection()) {
        throw data::Error(data::ErrorInvalidConnection);
    }
    return *DatabaseConnection();
}

// The recordset standing on the first row whose text equals `value` in lower case; null where there is none. The
// database's comparison knows fewer letters, so it is checked again.
data::RecordsetPtr FindRow(const TextTable& table, const QString& value) {
    auto rows = std::make_shared<data::Recordset>();
    const QString query =
        QStringLiteral("SELECT * FROM %1 Where [%1].[%2] = '").arg(Text(table.Name), Text(table.Column)) +
        DoubleApostrophes(value) + QStringLiteral("'");
    data::RecordsetPtr found;
    data::Ran([&] {
        const QString wanted = base::LowerCase(value);
        for (rows->Open(query, DatabaseConnection()); !rows->Eof(); rows->MoveNext()) {
            if (base::LowerCase(rows->Value(Text(table.Column)).toString()) == wanted) {
                found = rows;
                return;
            }
        }
    });
    return found;
}

// The number of the row; 0 where it cannot be read.
qint32 RowId(const data::RecordsetPtr& row) {
    qint32 id = 0;
    data::Ran([&] { id = row->Value(QStringLiteral("ID")).toInt(); });
    return id;
}

void Execute(const TextTable& table, const std::vector<data::Parameter>& parameters) {
    data::Command command;
    command.SetActiveConnection(DatabaseConnection());
    command.SetCommandType(data::adCmdText);
    command.SetPrepared(true);
    command.SetCommandText(Text(table.Insert));
    for (const data::Parameter& parameter : parameters) {
        command.AppendParameter(parameter);
    }
    command.Execute(data::adCmdText + data::adExecuteNoRecords);
}

// Ends the transaction: kept where every statement in it ran, taken back otherwise.
void EndTransaction(bool keep) {
    if (!keep || !data::Ran([] { RequireConnection().CommitTrans(); })) {
        data::Ran([] { RequireConnection().RollbackTrans(); });
    }
}

qint32 LastIdentity() {
    qint32 id = 0;
    data::Ran([&] {
        data::Command command;
        command.SetActiveConnection(DatabaseConnection());
        command.SetCommandText(QStringLiteral("SELECT @@Identity"));
        const data::RecordsetPtr result = command.Execute(data::adCmdText);
        id = result->Value(0).toInt();
        result->Close();
    });
    return id;
}

// The number of the name or manufacturer, which is written if it is missing. Another instance may write it in the same
// moment, so it is looked for once more when nobody else can. Nothing where the turn to write did not come: any number
// would be that of another name.
std::optional<qint32> FindOrInsert(const TextTable& table, const QString& value) {
    if (const data::RecordsetPtr row = FindRow(table, value)) {
        return RowId(row);
    }
    const bool begun = data::Ran([] { RequireConnection().BeginTrans(); });
    if (begun) {
        if (const data::RecordsetPtr row = FindRow(table, value)) {
            EndTransaction(false);
            return RowId(row);
        }
        EndTransaction(data::Ran([&] {
            Execute(table, {{QString(), data::adVarChar, data::adParamInput, NameSize, value}});
        }));
    }
    base::Yield();
    return begun ? std::optional(LastIdentity()) : std::nullopt;
}

// Writes the pair under the ID, or nothing where it is there. The row is read inside the transaction: what another
// instance appended a moment ago must not be lost.
bool WriteEntry(const QString& hwid, const QString& pair) {
    const QString entry = pair + QStringLiteral("\r\n");
    const data::RecordsetPtr row = FindRow(hardwareIds, hwid);
    if (!row) {
        return data::Ran([&] {
            Execute(hardwareIds, {{QString(), data::adVarChar, data::adParamInput, HardwareIdSize, hwid},
                                  {QString(), data::adLongVarChar, data::adParamInput, entry.size(), entry}});
        });
    }
    return data::Ran([&] {
        const QString info = row->Value(QStringLiteral("info")).toString();
        // Anywhere in the text, so "12,34" counts as present in "112,345": contributions rely on it.
        if (!info.contains(pair)) {
            row->SetValue(QStringLiteral("info"), info + entry);
            row->Update();
        }
    });
}

// One run against one file. False where it must be tried again: the file was replaced meanwhile, whereupon the numbers
// mean other names, or others kept it from being written.
bool TryToAdd(const QString& hwid, const QString& name, const QString& manufacturer) {
    const quint64 generation = DatabaseGeneration();
    const std::optional<qint32> nameId = FindOrInsert(deviceNames, name);
    const std::optional<qint32> manufacturerId = nameId ? FindOrInsert(manufacturers, manufacturer) : std::nullopt;
    base::Yield();
    if (!manufacturerId || !data::Ran([] { RequireConnection().BeginTrans(); })) {
        return false;
    }
    const QString pair = QStringLiteral("%1,%2").arg(*nameId).arg(*manufacturerId);
    const bool same = DatabaseGeneration() == generation;
    EndTransaction(same && WriteEntry(hwid, pair));
    base::Yield();
    return same;
}

bool IsKnown(const QString& hwid, const QString& name, const QString& manufacturer) {
    const data::RecordsetPtr nameRow = FindRow(deviceNames, name);
    if (!nameRow) {
        return false;
    }
    const data::RecordsetPtr manufacturerRow = FindRow(manufacturers, manufacturer);
    if (!manufacturerRow) {
        return false;
    }
    const data::RecordsetPtr row = FindRow(hardwareIds, hwid);
    if (!row) {
        return false;
    }
    QString info;
    data::Ran([&] { info = row->Value(QStringLiteral("info")).toString(); });
    const QString pair = QStringLiteral("%1,%2").arg(RowId(nameRow)).arg(RowId(manufacturerRow));
    const QStringList lines = base::Split(info, QStringLiteral("\r\n"));
    // A single entry without CR LF reads as not known and stays on offer.
    return lines.size() != 1 && lines.contains(pair);
}

QString OrUnknown(const QString& text) { return text.isEmpty() ? QStringLiteral("Unknown") : text; }

} // namespace

bool IsDeviceInDatabase(const QString& line) {
    const Contribution device = SplitContribution(line);
    base::Yield();
    data::ReadHold hold;
    hold.Hold(DatabaseConnection());
    return IsKnown(device.HardwareId, OrUnknown(device.Name), OrUnknown(device.Manufacturer));
}

void AddDeviceToDatabase(const QString& line) {
    const Contribution device = SplitContribution(line);
    const QString name = OrUnknown(inventory::CleanText(device.Name));
    const QString manufacturer = OrUnknown(inventory::CleanText(device.Manufacturer));
    base::Yield();
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        if (TryToAdd(device.HardwareId, name, manufacturer)) {
            return;
        }
    }
}

} // namespace database
