#include "command.h"

#include "base/standard_streams.h"

#include <cstdio>

namespace tool {

const QString unwritable = QStringLiteral("standard output cannot be written");

int Fail(const QString& line) {
    Note(line);
    return Failed;
}

int RefuseUsage(const QString& line) {
    Note(line + QStringLiteral(" (see quorvane-db --help)"));
    return BadUsage;
}

void Note(const QString& line) {
    // What has been printed so far comes first, if both go to one place.
    std::fflush(stdout);
    std::fprintf(stderr, "quorvane-db: %s\n", line.toUtf8().constData());
}

bool Print(const QString& line) {
    const QByteArray bytes = line.toUtf8() + '\n';
    return std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size());
}

bool Printed() { return base::StandardOutputWritten(); }

int Finish(int status) { return Printed() ? status : Fail(unwritable); }

QString Legible(const QString& text) {
    QString legible;
    for (const QChar character : text) {
        const QChar::Category category = character.category();
        const bool hidden = category == QChar::Other_Control || category == QChar::Other_Format ||
                            category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
        if (hidden) {
            legible += QStringLiteral("\\u%1").arg(ushort(character.unicode()), 4, 16, QLatin1Char('0'));
        } else {
            legible += character;
        }
    }
    return legible;
}

} // namespace tool
