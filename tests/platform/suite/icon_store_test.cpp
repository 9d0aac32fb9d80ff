#include "suite/icon_modules.h"
#include "suite/icon_store.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace suite;

const QString setupApi = QStringLiteral("C:\\Windows\\System32\\setupapi.dll");

TEST(IconModules, AnswerUnderTheSystemFolderWithoutRegardToCase) {
    const ModuleHandle module = LoadLibraryA(setupApi);
    ASSERT_NE(module, 0U);
    EXPECT_EQ(LoadLibraryA(QStringLiteral("c:\\WINDOWS\\system32\\SetupAPI.DLL")), module);
    EXPECT_EQ(LoadLibraryA(QStringLiteral("setupapi.dll")), module);
    // A full path joined to the system folder is no module, nor is one that lies elsewhere.
    EXPECT_EQ(LoadLibraryA(QStringLiteral("C:\\Windows\\System32\\") + setupApi), 0U);
    EXPECT_EQ(LoadLibraryA(QStringLiteral("D:\\setupapi.dll")), 0U);
    EXPECT_EQ(LoadLibraryA(QString()), 0U);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(FreeLibrary(0));
    EXPECT_FALSE(FreeLibrary(999));
}

TEST(IconModules, EveryResourceHasAGlyphAndStandsOnce) {
    for (ModuleHandle module = 1; FreeLibrary(module); ++module) {
        const auto ids = IconsOfModule(module);
        EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end())) << module;
        EXPECT_EQ(std::set<qint32>(ids.begin(), ids.end()).size(), ids.size()) << module;
        for (const qint32 id : ids)
            EXPECT_NE(GlyphOf(IconOfModule(module, id)), Glyph::None) << module << " " << id;
    }
    EXPECT_EQ(GlyphOf(IconHandle()), Glyph::None);
}

TEST(IconModules, ExtractTakesResourceIdsAndPlaces) {
    const auto ids = IconsOfModule(LoadLibraryA(setupApi));
    ASSERT_GT(ids.size(), 2U);
    IconHandle large, small;
    EXPECT_EQ(ExtractIconExA(setupApi, -ids[1], &large, &small, 1), 1U);
    EXPECT_EQ(small, IconOfModule(1, ids[1]));
    EXPECT_EQ(large, small);
    EXPECT_EQ(ExtractIconExA(setupApi, 0, nullptr, &small, 1), 1U);
    EXPECT_EQ(small, IconOfModule(1, ids[0]));
    EXPECT_EQ(ExtractIconExA(setupApi, -1, nullptr, nullptr, 0), ids.size());
    EXPECT_EQ(ExtractIconExA(setupApi, -60000, &large, &small, 1), 0U);
    EXPECT_EQ(ExtractIconExA(setupApi, std::numeric_limits<qint32>::min(), &large, &small, 1), 0U);
    EXPECT_EQ(ExtractIconExA(setupApi, 60000, &large, &small, 1), 0U);
    EXPECT_EQ(ExtractIconExA(QStringLiteral("C:\\missing.exe"), 0, &large, &small, 1), 0U);
    EXPECT_FALSE(DestroyIcon(IconHandle()));
    EXPECT_TRUE(DestroyIcon(small));
}

TEST(IconStore, KeepsTheLaterIconOfAnId) {
    IconStore store;
    const ModuleHandle module = LoadLibraryA(setupApi);
    const auto ids = IconsOfModule(module);
    EXPECT_TRUE(store.LoadIcon(module, ids[0], 4995));
    const quint64 before = store.Revision();
    EXPECT_TRUE(store.LoadIcon(module, ids[0], 4995));
    EXPECT_EQ(store.Revision(), before) << "the same icon again is no change";
    EXPECT_TRUE(store.AddIcon(IconOfModule(module, ids[1]), 4995, 0));
    EXPECT_EQ(store.Icon(4995), IconOfModule(module, ids[1]));
    EXPECT_GT(store.Revision(), before);
    EXPECT_FALSE(store.AddIcon(IconHandle(), 4995));
    EXPECT_FALSE(store.LoadIcon(module, 0, 5000));
    EXPECT_FALSE(store.LoadIcon(0, ids[0], 5000));
    EXPECT_FALSE(store.Icon(5000).has_value());
    EXPECT_EQ(store.Count(), 1);
    store.RemoveAll();
    EXPECT_FALSE(store.Icon(4995).has_value());
}

} // namespace
