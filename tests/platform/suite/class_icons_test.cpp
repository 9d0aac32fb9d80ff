// The class table names icons by module and id, and the icon modules hold them: the two must agree.
#include "pnp/class_table.h"
#include "suite/icon_modules.h"

#include <gtest/gtest.h>
#include <map>

namespace {

TEST(ClassIcons, EveryClassHasItsOwnGlyphInItsModule) {
    std::map<suite::Glyph, int> uses;
    for (const pnp::SetupClass& entry : pnp::SetupClasses()) {
        const QString module = QStringLiteral("C:\\Windows\\System32\\") + QString::fromUtf16(entry.iconModule);
        suite::IconHandle icon;
        EXPECT_EQ(suite::ExtractIconExA(module, -entry.iconResource, nullptr, &icon, 1), 1U)
            << QString::fromUtf16(entry.name).toStdString();
        ++uses[suite::GlyphOf(icon)];
    }
    // Storage controllers and card readers come in two classes each; nothing else looks like another.
    for (const auto& [glyph, count] : uses)
        EXPECT_LE(count, glyph == suite::Glyph::StorageController || glyph == suite::Glyph::MemoryCard ? 2 : 1)
            << int(glyph);
}

} // namespace
