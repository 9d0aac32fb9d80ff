// Removal of a file of the program.
#pragma once

#include <QString>

namespace values {

// Deletes the file and yields. A failure is ignored.
void DeleteFileNow(const QString& path);

} // namespace values
