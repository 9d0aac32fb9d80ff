// Byte counts as the windows show them.
#pragma once

#include <QString>

namespace values {

// "n Bytes" below 1,024, "0.00 KB" from there to 1,048,576 inclusive, "0.00 MB" above; yields at its end.
QString FormatByteSize(double size);

} // namespace values
