// How often a test repeats what it does at random moments. One switch for all of them: the environment variable that
// `./check --long` sets.
#pragma once

#include <QtGlobal>

namespace support {

// `longForm` in the long run of the suite, `shortForm` in the everyday one.
inline int Rounds(int shortForm, int longForm) {
    return qEnvironmentVariableIntValue("QUORVANE_LONG") == 1 ? longForm : shortForm;
}

} // namespace support
