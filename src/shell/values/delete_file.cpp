#include "values/delete_file.h"

#include "base/paths.h"
#include "base/yield.h"

namespace values {

void DeleteFileNow(const QString& path) {
    base::DeleteFileW(path);
    base::Yield();
}

} // namespace values
