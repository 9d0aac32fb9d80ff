// The text form of a contributed device: hardware ID, name and manufacturer joined by "|||". The fields are not
// escaped, and what stands behind the third one does not count.
#pragma once

#include <QString>

namespace database {

struct Contribution {
    QString HardwareId;
    QString Name;
    QString Manufacturer;
};

QString ContributionLine(const QString& hardwareId, const QString& name, const QString& manufacturer);

// Fields that the line lacks are empty.
Contribution SplitContribution(const QString& line);

} // namespace database
