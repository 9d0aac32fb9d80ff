#include "inventory/class_icons.h"

#include "base/text.h"
#include "base/yield.h"
#include "suite/icon_store.h"
#include "values/program_values.h"

#include <cstdlib>

namespace inventory {

namespace {

constexpr int NormalState = 0;

void ExtractIcon(qint32 iconKey, const QString& iconFile, qint32 iconIndex) {
    suite::IconHandle large;
    suite::IconHandle small;
    quint32 count = suite::ExtractIconExA(iconFile, iconIndex, &large, &small, 1);
    base::Yield();
    if (count == 0)
        suite::ExtractIconExA(values::Program().SystemFolder + QStringLiteral("setupapi.dll"), iconIndex, &large,
                              &small, 1);
    suite::SharedIconStore().AddIcon(small, iconKey, NormalState);
    if (!large.IsNull())
        suite::DestroyIcon(large);
    if (!small.IsNull())
        suite::DestroyIcon(small);
}

} // namespace

void AddClassIcon(qint32& iconKey, const QString& iconFile, qint32& iconIndex) {
    if (base::LowerCase(base::Right(iconFile, 3)) != QStringLiteral("dll")) {
        ExtractIcon(iconKey, iconFile, iconIndex);
        return;
    }
    const suite::ModuleHandle module = suite::LoadLibraryA(iconFile);
    suite::SharedIconStore().LoadIcon(module, std::abs(iconIndex), iconKey, NormalState);
    suite::FreeLibrary(module);
}

} // namespace inventory
