#include "database/schema.h"

namespace database {

// Names are not unique on purpose: an insert that failed for that reason would leave a stale identity in use.
QStringList SchemaStatements() {
    return {
        QStringLiteral("CREATE TABLE hwids (hwid TEXT COLLATE NOCASE, info TEXT)"),
        QStringLiteral("CREATE TABLE devicenames (ID INTEGER PRIMARY KEY, devicename TEXT COLLATE NOCASE)"),
        QStringLiteral("CREATE TABLE mfgs (ID INTEGER PRIMARY KEY, mfg TEXT COLLATE NOCASE)"),
        QStringLiteral("CREATE TABLE version (dbversion TEXT)"),
        QStringLiteral("CREATE INDEX hwids_hwid ON hwids (hwid)"),
        QStringLiteral("CREATE INDEX devicenames_devicename ON devicenames (devicename)"),
        QStringLiteral("CREATE INDEX mfgs_mfg ON mfgs (mfg)"),
        // Of the same number for every row: what the rows are counted by at each start, a fifth of the pages of the
        // next smallest.
        QStringLiteral("CREATE INDEX hwids_count ON hwids (1)"),
    };
}

} // namespace database
