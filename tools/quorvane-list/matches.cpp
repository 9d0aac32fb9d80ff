#include "matches.h"

#include "base/paths.h"
#include "database/matching.h"
#include "database/store.h"
#include "inventory/device_lists.h"

#include <QFileInfo>

namespace list_tool {

namespace {

// The columns of the lookup window's list behind the row's text.
constexpr int MatchColumns = 4;

} // namespace

std::string OpenDatabase(const std::string& path) {
    const QString file = path.empty() ? base::FindProgramFile(QStringLiteral("hwids.mdb"))
                                      : QFileInfo(QString::fromLocal8Bit(path.c_str())).absoluteFilePath();
    if (file.isEmpty())
        return "there is no database; name one with --db";
    data::Error error;
    return database::OpenDatabaseFile(file, &error) ? std::string() : error.Description().toStdString();
}

Matches BestMatches(const suite::ListItem& device) {
    const QStringList ids = device.CellText(inventory::HardwareIdsColumn).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    if (ids.isEmpty())
        return {};
    suite::ListItems rows;
    for (int column = 0; column < MatchColumns; ++column)
        rows.AddColumn(QString::number(column), QString(), 0);
    database::FindMatches(database::MatchQuery(ids.join(QStringLiteral("\r\n"))), rows);
    Matches best;
    database::MarkBestMatches(rows, [&best](suite::ListItem& row) {
        best.push_back(
            {row.Text(), row.CellText(database::ManufacturerColumn), row.CellText(database::HardwareIdColumn)});
    });
    return best;
}

} // namespace list_tool
