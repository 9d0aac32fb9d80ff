#include "values/format_byte_size.h"

#include "base/numbers.h"
#include "base/yield.h"

namespace values {

QString FormatByteSize(double size) {
    constexpr double kilobyte = 1024;
    constexpr double megabyte = kilobyte * kilobyte;
    QString text;
    if (size < kilobyte)
        text = QString::number(size, 'g', 15) + QStringLiteral(" Bytes");
    else if (size <= megabyte)
        text = base::FormatNumber(size / kilobyte, QStringLiteral("0.00")) + QStringLiteral(" KB");
    else
        text = base::FormatNumber(size / megabyte, QStringLiteral("0.00")) + QStringLiteral(" MB");
    base::Yield();
    return text;
}

} // namespace values
