// Lines of contributions on their way: gathered from all files, compared with a database, reported in their order and
// put into it, all in little memory whatever their number. The database is touched in one transaction at the end. Every
// operation that can fail returns the line to print, empty where it went well.
#pragma once

#include "contribution_file.h"
#include "data/workspace.h"

#include <QString>
#include <functional>
#include <memory>

namespace tool {

enum class State {
    Good, // not in the database yet, as far as that was asked
    LeftOut,
    Malformed,
    Suspicious,
    Duplicate, // of one above it
    Known,
    OtherName, // good, and the database has the ID under other names only
};

struct StagedLine {
    QString File;
    int Number = 0;
    QString Text; // as much as a report shows
    QString Reason;
    QString HardwareId;
    State As = State::Good;
};

class Stage {
  public:
    // Reads the files; `decide` says what becomes of each line, and may ask IsNew about its device in stored form. Good
    // lines that give one ID more names than anything has become `crowded`.
    using Decision = std::function<State(const JudgedLine& line, const database::Contribution& stored)>;
    QString Read(const QStringList& paths, const Decision& decide, State crowded);
    // False if it was asked about the same device before.
    bool IsNew(const database::Contribution& stored);

    // Opens a database, and marks the good lines that it knows.
    QString Compare(const QString& path);
    // Marks the good ones whose ID it knows by another name.
    QString FindOtherNames();
    // The names that it has for an ID: "NAME, MAKER", joined by "; ".
    QString NamesOf(const QString& hardwareId);

    // Calls `use` with each line, in order of files and lines.
    QString Each(const std::function<void(const StagedLine& line)>& use);
    qint64 Count(State state);

    // Adds the good lines to the database that was compared, whatever others added meanwhile, and gives it the version
    // where that is not empty. All of it is done and on the disk, or nothing; but very many go in portion by portion,
    // so that others that write have their turn, and the line to print tells how many are in where one fails.
    QString AddAll(const QString& version);

  private:
    QString Ran(const QString& about, const std::function<void()>& work);
    void Attach();
    qint64 Last();
    void MarkKnown(qint64 first, qint64 last);
    void AddPortion(qint64 first, qint64 last);
    void Add(const QString& version);

    std::unique_ptr<data::Workspace> work_;
    QString path_;
    QVariant seen_; // the database's own count of changes when it was compared
    QStringList files_;
    qint64 added_ = 0; // lines from the first on
};

} // namespace tool
