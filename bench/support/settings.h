// How large the benchmarks are, from the environment that bench/compare sets.
#pragma once

#include <QString>

namespace bench {

// QUORVANE_BENCH_SHORT: everything small and once, to see that it runs; the figures mean nothing then.
bool IsShort();

// A size in full, or in the short form.
inline int Size(int full, int brief) { return IsShort() ? brief : full; }

// QUORVANE_BENCH_FOLDER: where what takes long to make is kept between benchmark programs; empty if not set.
QString SharedFolder();

// The built program or tool of this name, which stands beside the benchmark.
QString BuiltProgram(const QString& name);

} // namespace bench
