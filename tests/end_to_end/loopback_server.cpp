// A server for the end-to-end scripts: hands out the files of a folder under their paths, takes any upload, and writes
// down every request as it came. Prints its port; ends when its standard input does.
#include "support/scripted_server.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <cstdio>

namespace {

bool Write(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: loopback_server FOLDER REQUESTS\n", stderr);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const QDir requests(QString::fromLocal8Bit(argv[2]));
    support::ScriptedServer server;
    server.SetAnswer("*", support::Reply(200, "taken"));
    for (QDirIterator file(folder.path(), QDir::Files, QDirIterator::Subdirectories); file.hasNext();) {
        QFile content(file.next());
        if (content.open(QIODevice::ReadOnly))
            server.SetAnswer('/' + folder.relativeFilePath(content.fileName()).toUtf8(),
                             support::Reply(200, content.readAll()));
    }
    std::printf("%d\n", server.Port());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    int number = 0;
    for (const QByteArray& request : server.Requests())
        if (!Write(requests.filePath(QStringLiteral("%1").arg(++number, 3, 10, QLatin1Char('0'))), request))
            return 1;
    return 0;
}
