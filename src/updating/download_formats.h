// How the downloader and the update window write rates, times and sizes. The ranges leave gaps on purpose of old: a
// value that falls between two of them takes the last form.
#pragma once

#include <QString>

namespace updating {

// Bytes per second: "512 Bytes/s", "1.00 KB/s", "2.50 MB/s".
QString FormatRate(double bytesPerSecond);

// Seconds: "59 sec", "1 min 0 sec", "1 hr 0 min".
QString FormatTimeLeft(float seconds);

// A count of bytes behind "Total Bytes - ": the bare number up to 1,023, then "1.00 KB" to 1,048,576, then "1.00 MB".
QString FormatTransferSize(qint32 bytes);

} // namespace updating
