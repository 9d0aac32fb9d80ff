#include "values/settings.h"

#include "base/numbers.h"
#include "base/paths.h"
#include "base/profile_file.h"
#include "values/program_values.h"

namespace values {

namespace {

constexpr int settingBufferSize = 2048; // characters, the terminator included

void FillDefaultPath(QString& filePath) {
    if (filePath.isEmpty())
        filePath = ProgramFolder() + QStringLiteral("\\settings.ini");
}

} // namespace

QString ReadSetting(const QString& section, const QString& key, QString& filePath) {
    FillDefaultPath(filePath);
    return base::GetPrivateProfileStringW(section, key, QString(), settingBufferSize, filePath);
}

bool WriteSetting(const QString& section, const QString& key, const QString& value, QString& filePath) {
    FillDefaultPath(filePath);
    if (!base::FileExists(filePath))
        base::CreateTextFile(filePath);
    return base::WritePrivateProfileStringW(section, key, value, filePath);
}

QString SettingsPath() { return ProgramFolder() + QStringLiteral("\\Settings.ini"); }

bool ReadFlag(const QString& section, const QString& key) {
    QString path = SettingsPath();
    return base::TextToBool(ReadSetting(section, key, path)).value_or(false);
}

} // namespace values
