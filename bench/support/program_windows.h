// The whole program inside a benchmark: its windows registered as its own start does it.
#pragma once

#include <QApplication>

namespace shell {
class FrmMain;
}

namespace bench {

// What the program sets up between making the application and its first window. Without it nothing looks as it does
// in the program, and costs other times. Message boxes and the browser are recorded away.
void PrepareProgram(const QApplication& application);

// The main window, loaded and shown.
shell::FrmMain* ShowMainWindow();

// Runs events until the first scan has ended; false if that takes longer than ten seconds.
bool WaitForFirstScan(const shell::FrmMain& window);

// The status label says that nothing is under way.
bool IsDone(const shell::FrmMain& window);

} // namespace bench
