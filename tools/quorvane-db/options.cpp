#include "options.h"

namespace tool {

QString Options::Read(const QStringList& arguments) {
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("--")) {
            arguments_ += arguments.mid(i + 1);
            break;
        }
        if (!argument.startsWith(QLatin1Char('-')) || argument == QLatin1String("-")) {
            arguments_.append(argument);
            continue;
        }
        const qsizetype equals = argument.indexOf(QLatin1Char('='));
        const QString name = argument.left(equals).mid(2);
        const bool named = argument.startsWith(QLatin1String("--"));
        if (named && equals < 0 && flags_.contains(name)) {
            values_.insert(name, QString());
        } else if (named && valued_.contains(name)) {
            if (equals < 0 && i + 1 == arguments.size()) {
                return QStringLiteral("option --%1 needs a value").arg(name);
            }
            values_.insert(name, equals < 0 ? arguments[++i] : argument.mid(equals + 1));
        } else {
            return QStringLiteral("unknown option %1").arg(argument);
        }
    }
    return QString();
}

} // namespace tool
