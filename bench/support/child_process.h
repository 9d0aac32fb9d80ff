// Child processes that are timed from outside.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace bench {

// Wall time of a whole process with its output thrown away; nothing if it is not there or fails.
std::optional<double> SecondsOf(const QString& program, const QStringList& arguments);

// What a process of status 0 printed; nothing if it failed or took longer than five minutes.
std::optional<QByteArray> OutputOf(const QString& program, const QStringList& arguments);

// Microseconds of a clock that all processes share.
qint64 NowMicroseconds();

// Of this process: processor time so far, resident memory in KiB, and how often its threads have gone to sleep so far.
qint64 ProcessorMicroseconds();
double ResidentKib();
qint64 SleepCount();

} // namespace bench
