// A program's folder with a database, a made-up machine, a server that has a newer database, and processes of the
// program at work in that folder.
#pragma once

#include "database/database_builder.h"
#include "device_fixture.h"
#include "support/long_form.h"
#include "support/scripted_server.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>

// One process; killed at the latest with the object.
class AtWork {
  public:
    // Starts `command`, in which the program is asked for a job; see at_work.cpp for what it tells.
    AtWork(const QStringList& command, const QProcessEnvironment& environment);
    ~AtWork();
    AtWork(const AtWork&) = delete;
    AtWork& operator=(const AtWork&) = delete;

    qint64 Id() const { return process_.processId(); }
    // How long a process may take for anything: what a busy machine needs, and far below what a hang takes.
    static int Patience() { return support::Rounds(60'000, 600'000); }

    // Reads until a line begins so; false where the process ends first or its time is over.
    bool Reaches(const QString& start);
    // Reads to the end. False where it has not ended by itself after that time, and is killed.
    bool Ends(int milliseconds = Patience());
    // Reads what there is.
    void Poll();
    void Signal(int number) const;
    void Kill();

    // As a shell counts: the exit status, or 128 and the signal.
    int Status() const;
    const QStringList& Lines() const { return lines_; }
    // What the last line that begins so says behind it; null if there is none.
    QString Last(const QString& start) const;
    QString Text() const { return lines_.join(u'\n'); }

  private:
    void Read();

    QProcess process_;
    QByteArray rest_;
    QStringList lines_;
};

class SystemFaults : public testing::Test {
  protected:
    SystemFaults();

    QString Path(const QString& name) const { return folder_.filePath(name); }
    QString Folder() const { return folder_.path(); }
    void RestoreTheOldDatabase() const;
    QByteArray Content(const QString& path) const;

    QStringList Command(const QStringList& job) const;
    // The job with these further variables, NAME=value.
    std::unique_ptr<AtWork> Start(const QStringList& job, const QStringList& variables = {}) const;
    // The program itself starts, opens the database of the folder and ends with status 0 when asked to.
    void ExpectThatTheProgramStarts() const;

    // The folder on a small file system of its own, mounted for the job alone. `script` runs there first, with $1 as
    // the folder; the files are copied back to the folder at the end. Empty where this user may not mount.
    std::unique_ptr<AtWork> StartOnSmallDisk(int kilobytes, const QString& script, const QStringList& job) const;
    static bool MayMount();

    // Opens the database, checks it throughout, and gives its version; null and a failure where it is damaged.
    QString CheckedVersion(const QString& path) const;
    QString CheckedVersion() const { return CheckedVersion(Path("hwids.mdb")); }
    // The numbers, of those below `count`, of the additions of this tag that the database holds whole: each its own
    // name and its own maker. One that it holds in part is a failure.
    QList<int> Additions(const QString& tag, int count) const;
    // A last submission offers and sends what was not sent: since request `from` the server has had every row of the
    // machine, and nothing is left.
    void ExpectEveryRowSent(qsizetype from) const;
    // Of the devices that the new database of the server holds.
    void ExpectTheNewDatabase() const;

    static constexpr int newDevices = 3000;
    static constexpr int machineDevices = 12;
    static constexpr int idsOfADevice = 1;
    QTemporaryDir folder_;
    DeviceFixture devices_;
    support::ScriptedServer server_;
    QByteArray oldDatabase_;
    QByteArray newDatabase_;
    std::minstd_rand random_{17};
};
