#include "inventory/problem_text.h"

#include "base/yield.h"

#include <algorithm>

namespace inventory {

namespace {

struct ProblemRow {
    const char16_t* code;
    const char16_t* text;
};

// Codes that are not here have no meaning for devices of today.
constexpr ProblemRow Problems[] = {
    {u"0", u"OK"},
    {u"1", u"Not configured correctly"},
    {u"3", u"Driver corrupted or low on memory/resources"},
    {u"9", u"Invalid hardware identification number"},
    {u"10", u"Device cannot start"},
    {u"12", u"Cannot find enough free resources"},
    {u"14", u"Computer restart needed"},
    {u"16", u"Windows cannot identify all the resources this device uses"},
    {u"18", u"Reinstall the drivers for this device"},
    {u"19", u"Configuration information in the registry is incomplete or damaged"},
    {u"21", u"Windows is removing this device"},
    {u"22", u"Device is disabled"},
    {u"24", u"Device is not present, not working properly, or all drivers installed"},
    {u"28", u"Drivers are not installed"},
    {u"29", u"Disabled, the firmware did not give it the required resources"},
    {u"31", u"Windows cannot load the drivers required"},
    {u"32", u"A driver (service) for this device has been disabled"},
    {u"33", u"Windows cannot determine which resources are required for this device"},
    {u"34", u"Windows cannot determine the settings for this device"},
    {u"35", u"MB Bios does not include enough information to configure this device"},
    {u"36", u"Requesting a PCI interrupt but is configured for an ISA interrupt (or vice versa)"},
    {u"37", u"Windows cannot initialize the device driver"},
    {u"38", u"Previous instance of the device driver is still in memory"},
    {u"39", u"Driver may be corrupted or missing"},
    {u"40", u"Service key information in the registry is missing or recorded incorrectly"},
    {u"41", u"Cannot find the hardware device"},
    {u"42", u"Duplicate device already running in the system"},
    {u"43", u"Device has reported problems"},
    {u"44", u"An application or service has shut down this hardware device"},
    {u"45", u"Device is not connected to the computer"},
    {u"46", u"Operating system is in the process of shutting down"},
    {u"47", u"Prepared for safe removal"},
    {u"48", u"Blocked from starting, known problems with Windows"},
    {u"49", u"System hive is too large (exceeds the Registry Size Limit)"},
    {u"50", u"Windows cannot apply all of the properties for this device"},
    {u"51", u"Currently waiting on another device or set of devices to start"},
    {u"52", u"Windows cannot verify the digital signature for the drivers required for this device"},
};

} // namespace

QString GetProblemText(const QString& errorCodeText) {
    const auto found = std::find_if(std::begin(Problems), std::end(Problems), [&errorCodeText](const ProblemRow& row) {
        return errorCodeText == QStringView(row.code);
    });
    const QString text =
        found == std::end(Problems) ? QStringLiteral("Unknown Error") : QString::fromUtf16(found->text);
    base::Yield();
    return QLatin1Char('(') + errorCodeText + QStringLiteral(") ") + text;
}

} // namespace inventory
