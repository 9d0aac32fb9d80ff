// Files of contributed devices as users send them, and a judgement of each line. Nothing in them is trusted: a line is
// data of an unknown sender until a person has read it.
#pragma once

#include "database/contribution_line.h"

#include <QString>
#include <vector>

namespace tool {

enum class Verdict {
    Good,
    Suspicious, // well-formed, but hardly the name of a product: for a person to look at
    Malformed,  // the program never writes such a line
};

struct JudgedLine {
    int Number = 0; // in its file, from 1
    QString Text;
    database::Contribution Device;
    Verdict Judgement = Verdict::Good;
    QString Reason; // of a line that is not good
};

// The lines of a file in Windows-1252, empty ones left out. `error` is the line to print where it cannot be read or is
// no such file; it is empty otherwise.
std::vector<JudgedLine> ReadContributions(const QString& path, QString& error);

// Judges one line without its line end.
JudgedLine Judge(const QString& text);

// The device as a line in the form in which an addition stores it.
QString StoredLine(const database::Contribution& device);

// Lines that mean the same device have the same key.
QString DeviceKey(const database::Contribution& device);

} // namespace tool
