// Whether the processor has the 256-bit registers that some pixel loops are compiled for a second time. Such a loop is
// an always-inlined body with two callers, one of them for the wide registers; both compute the same.
#pragma once

namespace controls {

inline bool HasWideRegisters() {
#if defined(__x86_64__)
    static const bool has = __builtin_cpu_supports("avx2") != 0;
    return has;
#else
    return false;
#endif
}

} // namespace controls
