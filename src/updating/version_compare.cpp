#include "updating/version_compare.h"

#include "base/numbers.h"
#include "base/text.h"

namespace updating {

bool IsVersionCurrent(const QString& remote, const QString& local) {
    const QStringList remoteFields = base::Split(remote, QStringLiteral("."));
    const QStringList localFields = base::Split(local, QStringLiteral("."));
    for (qsizetype field = 0; field < 3; ++field) {
        if (field >= remoteFields.size() || field >= localFields.size()) {
            return true;
        }
        const QString remoteField = base::FormatNumber(remoteFields.at(field), QStringLiteral("00000"));
        const QString localField = base::FormatNumber(localFields.at(field), QStringLiteral("00000"));
        if (remoteField != localField) {
            return remoteField < localField;
        }
    }
    return true;
}

QString VersionInCaption(const QString& caption) {
    return base::Trim(base::Split(caption, QStringLiteral(":")).value(1));
}

} // namespace updating
