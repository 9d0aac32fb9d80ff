// What rows of the ID table hold: decoding, and additions to a database whose rows hold anything.
#include "database/device_info.h"
#include "base/paths.h"
#include "base/text.h"
#include "data/recordset.h"
#include "database/additions.h"
#include "database/contribution_line.h"
#include "database/database_builder.h"
#include "database/matching.h"
#include "database/store.h"
#include "fuzz_support.h"
#include "suite/list_items.h"

#include <QFile>

namespace {

// An in-memory copy of a small database for each input: opened anew, so that no input sees another's rows.
void OpenFresh() {
    static const QByteArray empty = [] {
        database::DatabaseBuilder builder;
        builder.Add(QStringLiteral("PCI\\VEN_8086&DEV_2922"), QStringLiteral("SATA Controller"),
                    QStringLiteral("Intel"));
        const QString path = fuzz::Folder() + QStringLiteral("/made.mdb");
        QString error;
        fuzz::Require(builder.Write(path, QStringLiteral("1.0.0"), &error), "a database can be made");
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    database::CloseDeviceDatabase();
    fuzz::Require(database::OpenDatabaseFile(fuzz::WriteFile(QStringLiteral("hwids.mdb"), empty)), "a database opens");
}

void CheckDecoding(const QString& info) {
    for (const database::InfoEntry& entry : database::DecodeInfo(info)) {
        fuzz::Require(!entry.NameId.contains(u',') && !entry.ManufacturerId.contains(u','), "numbers hold no comma");
        for (const QString& id : {entry.NameId, entry.ManufacturerId}) {
            if (!database::IsDecimal(id))
                continue;
            bool isNumber = false;
            static_cast<void>(base::Trim(id).toLatin1().toULongLong(&isNumber));
            fuzz::Require(isNumber || base::Trim(id).size() > 19, "what counts as decimal is a number");
        }
    }
}

void CheckRoundTrip(fuzz::Reader reader) {
    QString info;
    QStringList pairs;
    while (!reader.AtEnd() && pairs.size() < 20) {
        pairs.append(QStringLiteral("%1,%2").arg(reader.Word()).arg(reader.Word()));
        info += pairs.last() + QStringLiteral("\r\n");
    }
    QStringList decoded;
    for (const database::InfoEntry& entry : database::DecodeInfo(info))
        decoded.append(entry.NameId + u',' + entry.ManufacturerId);
    fuzz::Require(decoded == pairs, "pairs come out as they went in");
}

void CheckAddition(fuzz::Reader reader) {
    OpenFresh();
    const QString hwid = base::Left(reader.Text(), 60).remove(u'|');
    const QString name = base::Left(reader.Text(), 60).remove(u'|');
    const QString info = reader.Text();
    const QString line = database::ContributionLine(hwid, name, reader.Text());
    if (!info.isEmpty()) {
        // A row that somebody else filled.
        data::Ran([&] {
            data::Recordset rows;
            rows.Open(QStringLiteral("SELECT * FROM hwids Where [hwids].[ID] = 1"), database::DatabaseConnection());
            rows.SetValue(QStringLiteral("info"), info);
            rows.SetValue(QStringLiteral("hwid"), hwid);
            rows.Update();
        });
    }
    database::AddDeviceToDatabase(line);
    const bool known = database::IsDeviceInDatabase(line);
    database::AddDeviceToDatabase(line);
    fuzz::Require(database::IsDeviceInDatabase(line) == known, "a second addition changes nothing");
    suite::ListItems rows;
    for (int column = 0; column <= database::LengthColumn; ++column)
        rows.AddColumn(QString::number(column), QString(), 1);
    database::FindMatches(database::MatchQuery(hwid + QStringLiteral("\r\n") + info), rows);
    for (int i = 1; i <= rows.Count(); ++i)
        fuzz::Require(rows.Item(i)->CellText(database::LengthColumn).size() >= 3, "each match has its length");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::NeedApplication();
    base::SetProgramFolder(fuzz::Folder());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString info = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    CheckDecoding(info);
    CheckRoundTrip(fuzz::Reader(data, size));
    CheckAddition(fuzz::Reader(data, size));
    return 0;
}
