#include "database/matching.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/yield.h"
#include "data/error.h"
#include "data/recordset.h"
#include "database/device_info.h"
#include "database/store.h"
#include "values/program_values.h"

#include <algorithm>

namespace database {

namespace {

constexpr int mostAttempts = 3; // searches of one window while others keep replacing the database

// The two lookups of one entry and those of the next read one state of the database, unless something else ran between
// them.
void AddMatches(const QString& hwid, const QString& info, suite::ListItems& rows, data::ReadHold& hold) {
    const QString length = base::FormatNumber(double(hwid.size()), QStringLiteral("000"));
    for (const InfoEntry& entry : DecodeInfo(info)) {
        hold.Hold(DatabaseConnection());
        suite::ListItem* row = rows.Add(DeviceNameById(entry.NameId));
        row->SetSubItems(ManufacturerColumn, ManufacturerById(entry.ManufacturerId));
        row->SetSubItems(HardwareIdColumn, hwid);
        row->SetSubItems(LengthColumn, length);
        base::Yield([&hold] { hold.LetGo(); });
    }
}

void RunQuery(const QString& query, suite::ListItems& rows) {
    data::ReadHold hold;
    const auto letGo = [&hold] { hold.LetGo(); };
    // The slot is everyone's; these rows stay this search's own while another search interleaves.
    const auto found = std::make_shared<data::Recordset>();
    RecordsetSlot(Slot::Hwids) = found;
    hold.Hold(DatabaseConnection());
    data::Ran([&] { found->Open(query, DatabaseConnection()); });
    base::Yield(letGo);

    qint64 count = 1; // where it cannot be read: one pass over nothing
    data::Ran([&] { count = found->RecordCount(); });
    for (qint64 i = 0; i < count && !values::ProgramClosing(); ++i) {
        QString hwid;
        QString info;
        data::Ran([&] { hwid = found->Value(QStringLiteral("hwid")).toString(); });
        data::Ran([&] { info = found->Value(QStringLiteral("info")).toString(); });
        base::Yield(letGo);
        AddMatches(hwid, info, rows, hold);
        data::Ran([&] { found->MoveNext(); });
        base::Yield(letGo);
    }
}

qsizetype IdLength(const suite::ListItem& row) { return row.CellText(HardwareIdColumn).size(); }

} // namespace

QString MatchQuery(const QString& text) {
    const QStringList lines = base::Split(text, QStringLiteral("\r\n"));
    const QString start = QStringLiteral("SELECT * FROM hwids Where [hwids].[hwid] = '");
    const QString quote = QStringLiteral("'");
    if (lines.size() == 1) {
        return start + DoubleApostrophes(text) + quote;
    }
    QString query;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString id = DoubleApostrophes(base::Trim(lines[i]));
        if (!id.isEmpty()) {
            query += (i == 0 ? start : QStringLiteral(" OR [hwids].[hwid] = '")) + id + quote;
        }
        base::Yield();
    }
    return query;
}

void FindMatches(const QString& query, suite::ListItems& rows) {
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const quint64 generation = DatabaseGeneration();
        RunQuery(query, rows);
        const quint64 now = DatabaseGeneration();
        if (now == generation || now == 0 || values::ProgramClosing()) {
            return;
        }
        if (attempt + 1 < mostAttempts) {
            rows.Clear();
        }
    }
}

void MarkBestMatches(suite::ListItems& rows, const std::function<void(suite::ListItem&)>& colour) {
    qsizetype best = 0;
    for (int i = 1; i <= rows.Count(); ++i) {
        best = std::max(best, IdLength(*rows.Item(i)));
        base::Yield();
    }
    for (int i = 1; i <= rows.Count(); ++i) {
        suite::ListItem& row = *rows.Item(i);
        if (IdLength(row) == best) {
            colour(row);
        }
        base::Yield();
    }
}

QString ResultsText(int rowCount) {
    return rowCount == 0 ? QStringLiteral("Results: No Matches")
                         : QStringLiteral("Results: %1 Possible Matches").arg(rowCount);
}

} // namespace database
