#include "database/contribution_line.h"

#include "base/text.h"

namespace database {

namespace {

const QString& Separator() {
    static const QString separator = QStringLiteral("|||");
    return separator;
}

} // namespace

QString ContributionLine(const QString& hardwareId, const QString& name, const QString& manufacturer) {
    return hardwareId + Separator() + name + Separator() + manufacturer;
}

Contribution SplitContribution(const QString& line) {
    const QStringList fields = base::Split(line, Separator());
    return {fields.value(0), fields.value(1), fields.value(2)};
}

} // namespace database
