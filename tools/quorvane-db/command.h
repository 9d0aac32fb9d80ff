// What the sub-commands share: their table's form, their statuses and how they speak. Results go to standard output,
// one line on each failure goes to standard error.
#pragma once

#include <QString>
#include <QStringList>

namespace tool {

enum Status {
    Done = 0,
    Failed = 1,   // a file is missing, of the wrong kind or cannot be written; the line on standard error says which
    BadUsage = 2, // an option or argument that the sub-command does not take
    Findings = 3, // it ran to its end, and lines were malformed, suspicious or left out
};

struct SubCommand {
    const char* Name;
    const char* Arguments;
    const char* Summary;
    int (*Run)(const QStringList& arguments);
};

// The line for a standard output that is closed or full.
extern const QString unwritable;

// Prints the one line and returns the status.
int Fail(const QString& line);
int RefuseUsage(const QString& line);
// A line on standard error that is no failure.
void Note(const QString& line);

// Prints a line of the result as UTF-8. False once standard output is closed or full.
bool Print(const QString& line);
// Whether everything printed so far reached standard output; for those that stop rather than change a file unseen.
bool Printed();
// Ends the results: Done, or Failed where they did not reach standard output whole.
int Finish(int status = Done);

// The text on one line of a terminal: control characters, direction marks and line ends spelled out.
QString Legible(const QString& text);

int Build(const QStringList& arguments);
int Check(const QStringList& arguments);
int Export(const QStringList& arguments);
int ImportJet(const QStringList& arguments);
int Info(const QStringList& arguments);
int Keygen(const QStringList& arguments);
int Merge(const QStringList& arguments);
int Pack(const QStringList& arguments);

} // namespace tool
