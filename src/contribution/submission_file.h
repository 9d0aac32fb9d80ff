// new_hardware.txt as one submission writes it, and beside it, in new_hardware_unsent.txt, the lines that were
// submitted and have not reached the server. A line stands there from before anything is done with its row until the
// server has it, so whatever ends a submission, the next scan can offer it again. One submission at a time in a folder,
// whatever process it runs in; who only reads waits for nobody.
#pragma once

#include "base/plain_file.h"

#include <QString>
#include <QStringList>

namespace contribution {

class SubmissionFile {
  public:
    // In the program's folder.
    SubmissionFile();

    // False while another submission runs in this folder. To be called until it is true, then `Begin` once.
    bool TryToLock();

    // Keeps `lines` as unsent, and those of earlier submissions but for `known`: what the user was offered is either
    // among `lines` or was taken out of the list. Then makes new_hardware.txt anew. False where the lines could not be
    // kept on the disk; nothing may be done with their rows then.
    bool Begin(const QStringList& lines, const QStringList& known);

    // The next line of new_hardware.txt, on the disk when it returns.
    void Write(const QString& line);

    // Whether new_hardware.txt is this submission's and holds everything that was written.
    bool IsWhole() const { return whole_; }

    // The server has the lines.
    void Sent();

  private:
    bool Keep(const QStringList& lines);

    base::FolderLock lock_;
    base::Descriptor file_;
    QStringList others_; // unsent lines of earlier submissions that are not of this one
    bool whole_ = false;
};

// Of new_hardware.txt, as a path of the program.
QString SubmissionPath();

// What earlier submissions left unsent; nothing while one is running.
QStringList UnsentLines();

} // namespace contribution
