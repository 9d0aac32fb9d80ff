// A made-up device database of 1,000,000 hardware IDs (QUORVANE_BENCH_ROWS makes it smaller), with one device that has
// many IDs of several entries each.
#pragma once

#include <QString>

namespace bench {

constexpr int idsOfDevice = 8;
constexpr int entriesOfId = 3;

int RowCount();
// One of the RowCount() IDs, counted from 0; names and makers go with the number.
QString HardwareId(int number);
QString NameOf(int number);
QString MakerOf(int number);
// One of the device's idsOfDevice IDs.
QString DeviceId(int number);

// A folder with the database as hwids.mdb, made once for the process, or for all that share a folder. Ends the process
// with a message if it cannot be made. For reading only.
QString LargeDatabaseFolder();

} // namespace bench
