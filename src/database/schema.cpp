#include "database/schema.h"

namespace database {

namespace {

// A text of so many UTF-16 units takes at most three bytes for each; what others write may be longer than what we do.
constexpr int longestName = 1024;
constexpr int longestId = 2048;
constexpr int largestNumber = 2'000'000'000;

constexpr data::ColumnRule hwids[] = {{"hwid", false, longestId}, {"info", false, LongestInfo}};
constexpr data::ColumnRule deviceNames[] = {{"ID", true, largestNumber}, {"devicename", false, longestName}};
constexpr data::ColumnRule manufacturers[] = {{"ID", true, largestNumber}, {"mfg", false, longestName}};
constexpr data::ColumnRule version[] = {{"dbversion", false, 3 * VersionSize}};

// Some twenty times what the ID files of PCI and USB make.
constexpr qint64 mostRows = 1'000'000;
constexpr data::TableRule tables[] = {
    {"hwids", hwids, mostRows},
    {"devicenames", deviceNames, mostRows},
    {"mfgs", manufacturers, mostRows},
    {"version", version, 100},
};

constexpr data::IndexRule indexes[] = {
    {"hwids_hwid", "CREATE INDEX hwids_hwid ON hwids (hwid)", true},
    {"devicenames_devicename", "CREATE INDEX devicenames_devicename ON devicenames (devicename)", true},
    {"mfgs_mfg", "CREATE INDEX mfgs_mfg ON mfgs (mfg)", true},
    // Of the same number for every row: what the rows are counted by at each start, a fifth of the pages of the next
    // smallest.
    {"hwids_count", "CREATE INDEX hwids_count ON hwids (1)", false},
};

} // namespace

// Names are not unique on purpose: an insert that failed for that reason would leave a stale identity in use.
QStringList SchemaStatements() {
    QStringList statements = {
        QStringLiteral("CREATE TABLE hwids (hwid TEXT COLLATE NOCASE, info TEXT)"),
        QStringLiteral("CREATE TABLE devicenames (ID INTEGER PRIMARY KEY, devicename TEXT COLLATE NOCASE)"),
        QStringLiteral("CREATE TABLE mfgs (ID INTEGER PRIMARY KEY, mfg TEXT COLLATE NOCASE)"),
        QStringLiteral("CREATE TABLE version (dbversion TEXT)"),
    };
    for (const data::IndexRule& index : indexes) {
        statements.append(QLatin1String(index.Definition));
    }
    return statements;
}

const data::DatabaseRules& Rules() {
    static constexpr data::DatabaseRules rules{tables, indexes, qint64(48) << 20, qint64(1) << 20};
    return rules;
}

} // namespace database
