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
    // Storage controllers, card readers and what floppies need come in two classes each; nothing else looks like
    // another.
    for (const suite::Glyph glyph : {suite::Glyph::StorageController, suite::Glyph::MemoryCard, suite::Glyph::Floppy})
        --uses[glyph];
    for (const auto& [glyph, count] : uses)
        EXPECT_LE(count, 1) << int(glyph);
}

} // namespace
