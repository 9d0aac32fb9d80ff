// What the ACPI and PnP identifiers of standard equipment mean.
#pragma once

#include "pnp/id_files.h"

#include <QString>
#include <QStringList>
#include <span>

namespace pnp {

struct AcpiKind {
    // Parted by blanks; an asterisk at the end of one stands for anything.
    const char* ids;
    const char16_t* guid;
    const char16_t* name;
    // False for what works without a driver of its own.
    bool needsDriver;
    // Null where the identifier's letters tell it.
    const char16_t* maker = nullptr;
};

// All that is known, in the order in which it is looked through.
std::span<const AcpiKind> AcpiKinds();
// The row of an identifier in upper case; null for one that is not in the table.
const AcpiKind* FindAcpiKind(const QString& id);

// Whether the identifier is one of the standard ones, which no maker stands behind (PNP...., ACPI....).
bool IsStandardAcpiId(const QString& id);

// The hardware IDs of an identifier: with vendor and device apart (and the revision, where it is given), joined, and
// with an asterisk. `revision` is empty or "&REV_n".
QStringList AcpiHardwareIds(const QString& id, const QString& revision);

// The maker's letters: the first three of seven characters, the first four of eight; empty for other forms.
QString AcpiVendor(const QString& id);
// Who makes what bears the identifier, from our own tables, else from the ID files; empty where unknown.
QString AcpiMaker(const QString& id, IdFile& pci, IdFile& usb, PnpVendorFile& pnp);

} // namespace pnp
