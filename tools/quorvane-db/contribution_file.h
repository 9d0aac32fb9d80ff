// Files of contributed devices as users send them, and a judgement of each line. Nothing in them is trusted: a line is
// data of an unknown sender until a person has read it.
#pragma once

#include "database/contribution_line.h"

#include <QString>
#include <functional>

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

// Calls `use` with each line of a file in Windows-1252, empty ones left out. Empty, or the line to print where it
// cannot be read or is no such file; then there was no call.
QString ReadContributions(const QString& path, const std::function<void(const JudgedLine& line)>& use);

// Judges one line without its line end.
JudgedLine Judge(const QString& text);

// The device in the form in which an addition stores it.
database::Contribution Stored(const database::Contribution& device);

// Devices that are the same have the same key.
QString DeviceKey(const database::Contribution& stored);

} // namespace tool
