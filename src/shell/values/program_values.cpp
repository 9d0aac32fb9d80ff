#include "values/program_values.h"

#include "base/paths.h"

namespace values {

ProgramValues& Program() {
    static ProgramValues program;
    return program;
}

bool ProgramClosing() { return Program().ProgramClosing; }

QString ProgramFolder() { return base::ProgramFolder(); }

QString BuiltVersion() { return QStringLiteral(QUORVANE_VERSION); }

} // namespace values
