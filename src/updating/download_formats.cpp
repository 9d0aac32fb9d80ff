#include "updating/download_formats.h"

#include "base/numbers.h"

namespace updating {

namespace {

constexpr double kilo = 1024;
constexpr double mega = 1048576;

QString TwoDecimals(double value) { return base::FormatNumber(value, QStringLiteral("0.00")); }

QString Whole(double value) { return base::FormatNumber(base::Fix(value), QStringLiteral("#0")); }

QString Modulo60(double value) {
    return base::FormatNumber(double(base::RoundToInt64(value) % 60), QStringLiteral("0"));
}

} // namespace

QString FormatRate(double bytesPerSecond) {
    if (bytesPerSecond >= 0 && bytesPerSecond <= 1023) {
        return base::FormatNumber(bytesPerSecond, QStringLiteral("0")) + QStringLiteral(" Bytes/s");
    }
    if (bytesPerSecond >= kilo && bytesPerSecond <= mega) {
        return TwoDecimals(bytesPerSecond / kilo) + QStringLiteral(" KB/s");
    }
    return TwoDecimals(bytesPerSecond / mega) + QStringLiteral(" MB/s");
}

QString FormatTimeLeft(float seconds) {
    const double value = seconds;
    if (value >= 0 && value <= 59) {
        return base::FormatNumber(value, QStringLiteral("0")) + QStringLiteral(" sec");
    }
    if (value >= 60 && value <= 3599) {
        return Whole(value / 60) + QStringLiteral(" min ") + Modulo60(value) + QStringLiteral(" sec");
    }
    return Whole(value / 3600) + QStringLiteral(" hr ") + Modulo60(value / 60) + QStringLiteral(" min");
}

QString FormatTransferSize(qint32 bytes) {
    if (bytes >= 0 && bytes <= 1023) {
        return QString::number(bytes);
    }
    if (bytes >= 1024 && bytes <= 1048576) {
        return TwoDecimals(bytes / kilo) + QStringLiteral(" KB");
    }
    return TwoDecimals(bytes / mega) + QStringLiteral(" MB");
}

} // namespace updating
