// The values that the whole program shares, one instance each. The main window sets them; everything else reads them.
#pragma once

#include <QString>

namespace values {

struct ProgramValues {
    bool ProgramClosing = false; // once true, every long routine stops at its next test; never reset while running
    QString SystemFolder;        // the platform's system directory, with a trailing backslash
    float DpiScale = 1.0F;
    bool ShadowDisabled = false;
    bool ShadowEnabled = true; // always the negation of ShadowDisabled
    bool CheckForUpdatesAtStart = false;
    QString ProgramVersion; // major.minor.revision
    bool ProgramIsCurrent = true;
    bool DatabaseIsCurrent = true;
    QString DatabaseVersion;        // as last read from the database
    qint32 DatabaseDeviceCount = 0; // rows of the ID table, as last read
};

ProgramValues& Program();

// Shorthands for the two that nearly every routine asks.
bool ProgramClosing();
// The program's folder without a trailing backslash; files of the program are found by appending "\name".
QString ProgramFolder();

// Version of the program as built: major.minor.revision.
QString BuiltVersion();

} // namespace values
