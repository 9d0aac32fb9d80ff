// What the ACPI and PnP identifiers of standard equipment mean.
#pragma once

#include <QString>
#include <QStringList>

namespace pnp {

struct AcpiKind {
    const char* id;
    const char16_t* guid;
    const char16_t* name;
    // False for what works without a driver of its own.
    bool needsDriver;
};

// The row of an identifier in upper case; null for one that is not in the table.
const AcpiKind* FindAcpiKind(const QString& id);

// Whether the identifier is one of the standard ones, which no maker stands behind (PNP...., ACPI....).
bool IsStandardAcpiId(const QString& id);

// The hardware IDs of an identifier: with vendor and device apart (and the revision, where it is given), joined, and
// with an asterisk. `revision` is empty or "&REV_n".
QStringList AcpiHardwareIds(const QString& id, const QString& revision);

// The maker's letters: the first three of seven characters, the first four of eight; empty for other forms.
QString AcpiVendor(const QString& id);
// The name of a maker with four letters; empty where unknown.
QString AcpiVendorName(const QString& letters);

} // namespace pnp
