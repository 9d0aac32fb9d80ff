// The program's only upload: one file as an HTTP POST of multipart/form-data. It blocks its caller and dispatches
// nothing meanwhile; there is no retry and no report but the result.
#pragma once

#include <QString>

namespace contribution {

// True if the request went out and a status line came back, whatever it says. False where the file cannot be read or is
// no plain file (no request is made then), where the address is unusable, or where nothing answered.
bool UploadFile(const QString& url, const QString& filePath);

} // namespace contribution
