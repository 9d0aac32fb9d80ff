// A folder inside the target folder where files are written before they are put in place: on the same file system, gone
// with this object, and, where a killed process left one behind, removed by the next one. Never holds more than one
// process's files.
#pragma once

#include <QFile>
#include <QString>

namespace net {

class StagingFolder {
  public:
    // Makes the folder below `target` (native), after removing those that no living process holds.
    explicit StagingFolder(const QString& target);
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    // False where the folder could not be made; nothing else works then.
    bool IsReady() const { return !path_.isEmpty(); }

    // Starts the next file; a false result means disk or permissions.
    bool OpenFile();
    bool Write(const char* data, qsizetype size);
    bool CloseFile();
    // Brings all of the files to the disk at once.
    bool Sync() const;

    // The full path of the file with that number, in the order of their opening.
    QString FilePath(qsizetype index) const;

  private:
    QString path_;
    int lock_ = -1;
    QFile file_;
    qsizetype count_ = 0;
};

} // namespace net
