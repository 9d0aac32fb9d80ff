#include "support/settings.h"

#include <QCoreApplication>

namespace bench {

bool IsShort() { return qEnvironmentVariableIsSet("QUORVANE_BENCH_SHORT"); }

QString SharedFolder() { return qEnvironmentVariable("QUORVANE_BENCH_FOLDER"); }

QString BuiltProgram(const QString& name) {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/") + name;
}

} // namespace bench
