#include "appearance_fixture.h"

#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/modules.h"
#include "controls/titel_bar.h"
#include "forms/form.h"
#include "suite/shadow_manager.h"

using namespace appearance;

namespace {

class WindowEffects : public AppearanceTest {
  protected:
    void SetUp() override {
        AppearanceTest::SetUp();
        suite::SharedShadowManager().SetCompositingSource([] { return true; });
    }
    void TearDown() override {
        suite::SharedShadowManager().SetCompositingSource({});
        AppearanceTest::TearDown();
    }
};

TEST_F(WindowEffects, ShadowSizesFollowTheDisplayScaleHalfToEven) {
    values::Program().DpiScale = 1.5F;
    InitShadow();
    EXPECT_EQ(suite::SharedShadowManager().Size(), 15);
    EXPECT_EQ(suite::SharedShadowManager().SecondSize(), 22);
    EXPECT_EQ(suite::SharedShadowManager().StyleFlags(), 24);
    EXPECT_FLOAT_EQ(suite::SharedShadowManager().Curve().Positions[1], 0.02F);

    // Unavailable, the manager is left as it is.
    suite::SharedShadowManager().SetCompositingSource([] { return false; });
    values::Program().DpiScale = 1.0F;
    InitShadow();
    EXPECT_EQ(suite::SharedShadowManager().Size(), 15);
}

TEST_F(WindowEffects, TheSwitchAndTheBorderColourReachEveryShadow) {
    forms::Form form(QStringLiteral("FrmTest"), 3000, 3000);
    suite::ShadowManager& manager = suite::SharedShadowManager();
    SetColor(TitleBottomBack, Rgb(0x203040));
    RunRoutine(&form, Routine::Border, false);
    EXPECT_TRUE(manager.Knows(&form));
    EXPECT_EQ(manager.Colour(), Rgb(0x203040));

    values::Program().ShadowEnabled = false;
    UpdateShadow(&form);
    EXPECT_FALSE(manager.Knows(&form));
    SetColor(TitleBottomBack, Rgb(0x010203));
    RunRoutine(&form, Routine::Border, false);
    EXPECT_FALSE(manager.Knows(&form));
    EXPECT_EQ(manager.Colour(), Rgb(0x203040));
}

TEST_F(WindowEffects, WithoutACompositorThereIsNoShadow) {
    suite::SharedShadowManager().SetCompositingSource([] { return false; });
    forms::Form form(QStringLiteral("FrmTest"), 3000, 3000);
    UpdateShadow(&form);
    EXPECT_FALSE(suite::SharedShadowManager().Knows(&form));
}

TEST_F(WindowEffects, FoldersAndFunctionsAreFoundByName) {
    EXPECT_EQ(GetSpecialFolder(37), QStringLiteral("C:\\Windows\\System32"));
    EXPECT_EQ(GetSpecialFolder(4711), QString());
    EXPECT_EQ(GetSpecialFolder(40), QDir::homePath());
    EXPECT_TRUE(ApiExists(QStringLiteral("SHGetFolderPathW"), QStringLiteral("shell32")));
    EXPECT_TRUE(ApiExists(QStringLiteral("SHGetFolderPathW"), QStringLiteral("SHFolder.dll")));
    EXPECT_FALSE(ApiExists(QStringLiteral("shgetfolderpathw"), QStringLiteral("shell32")));
    EXPECT_FALSE(ApiExists(QStringLiteral("SHGetFolderPathW"), QStringLiteral("nothing32")));
    // A library that was loaded for the question is not kept.
    EXPECT_EQ(base::GetModuleHandleA(QStringLiteral("shfolder")), 0);
}

} // namespace
