#include "appearance_fixture.h"

#include "draw/system_colours.h"
#include "suite/color_picker.h"
#include "suite/combo_box.h"

#include <QDir>
#include <set>
#include <sys/stat.h>

using namespace appearance;

namespace {

using ColourTable = AppearanceTest;

QStringList Items(const suite::ComboBox& combo) {
    QStringList items;
    for (int i = 0; i < combo.ListCount(); ++i)
        items.append(combo.List(i));
    return items;
}

TEST_F(ColourTable, HoldsEachElementOnceAndNoneAtTheGaps) {
    std::set<int> indices;
    std::set<std::string> keys;
    for (const ColourRow& row : colourRows) {
        indices.insert(row.Index);
        keys.insert(row.Key);
        ASSERT_NE(ColorPicker(row.Index), nullptr) << row.Key;
        EXPECT_EQ(ColorPicker(row.Index)->Caption(), QLatin1StringView(row.Label));
    }
    EXPECT_EQ(indices.size(), 28U);
    EXPECT_EQ(keys.size(), 28U);
    for (const int gap : {-1, 11, 15, 30})
        EXPECT_EQ(ColorPicker(gap), nullptr) << gap;
    // Loading and saving reach all rows.
    std::set<int> reached(windowColours.begin(), windowColours.end());
    reached.insert(barColours.begin(), barColours.end());
    reached.insert(importantButtonColours.begin(), importantButtonColours.end());
    EXPECT_EQ(reached, indices);
}

TEST_F(ColourTable, StartsWithTheDefaultSchemeAndReadingCreatesNothing) {
    EXPECT_EQ(ColorOf(ProgramBack), Rgb(0x404040));
    EXPECT_EQ(ColorOf(TitleTopBack), Rgb(0x3399FF));
    EXPECT_EQ(ColorOf(ImportantButtonTopBack), Rgb(0x3399FF));
    EXPECT_EQ(ColorOf(ImportantButtonText), Rgb(0xFFFFFF));
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("settings.ini"))));
}

TEST_F(ColourTable, SavesDecimalTextInTheToldOrderAndReadsItBack) {
    for (const ColourRow& row : colourRows)
        SetColor(row.Index, base::Colour(quint32(row.Index) * 0x010203U + 7));
    SetColor(TitleTopBack, Rgb(0x3399FF));
    SaveColors();
    EXPECT_EQ(Stored(QStringLiteral("titletopback")), QStringLiteral("16750899"));

    QFile file(Path(QStringLiteral("settings.ini")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    ASSERT_TRUE(bytes.startsWith("\xFF\xFE"));
    const QString text =
        QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()) + 1, bytes.size() / 2 - 1);
    QStringList keys;
    for (const QString& line : text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts))
        keys.append(line.section(u'=', 0, 0));
    EXPECT_EQ(
        keys.join(u' '),
        QStringLiteral(
            "[colors] programback programtext importanttext infotext logoback buttontopback buttontext textback texttext "
            "titletopback titlebottomback titletopback2 titlebottomback2 titletext importantbuttontopback "
            "importantbuttontext pbback pbtext pbbar pbfilltext mbback mbtext mbbar mbfilltext titlebuttonback "
            "titlebuttonfore titlebuttonxback titlebuttonxfore"));

    forms::Forms::Instance().Find(QStringLiteral("FrmColors"))->Unload(true);
    for (const ColourRow& row : colourRows)
        EXPECT_EQ(ColorOf(row.Index),
                  row.Index == TitleTopBack ? Rgb(0x3399FF) : base::Colour(quint32(row.Index) * 0x010203U + 7));
}

TEST_F(ColourTable, ImportantButtonsFollowTheTitleBarUntilTheyHaveKeys) {
    Write(QStringLiteral("settings.ini"), "[colors]\r\ntitletopback=1234\r\ntitletext=77\r\n");
    EXPECT_EQ(ColorOf(ImportantButtonTopBack), base::Colour(1234));
    EXPECT_EQ(ColorOf(ImportantButtonText), base::Colour(77));

    // A preset of old times leaves them alone, though it changes the title bar.
    QDir(folder_.path()).mkdir(QStringLiteral("color_presets"));
    Write(QStringLiteral("color_presets/old.ini"), "[colors]\r\ntitletopback=99\r\n");
    LoadColorPreset(QStringLiteral("old"));
    EXPECT_EQ(ColorOf(TitleTopBack), base::Colour(99));
    EXPECT_EQ(ColorOf(ImportantButtonTopBack), base::Colour(1234));

    forms::Forms::Instance().Find(QStringLiteral("FrmColors"))->Unload(true);
    Write(QStringLiteral("settings.ini"), "[colors]\r\nimportantbuttontext=5\r\ntitletext=77\r\n");
    EXPECT_EQ(ColorOf(ImportantButtonText), base::Colour(5));
}

TEST_F(ColourTable, WhatIsNoColourLeavesTheColour) {
    Write(QStringLiteral("settings.ini"), "[colors]\r\nprogramback=blue\r\nprogramtext=\r\nbuttontext=4294967296\r\n"
                                          "textback=99999999999999999999999\r\ntexttext=-2147483633\r\ninfotext=-1\r\n"
                                          "logoback=12x\r\nimportanttext=  255  \r\n");
    EXPECT_EQ(ColorOf(ProgramBack), Rgb(0x404040));
    EXPECT_EQ(ColorOf(ProgramText), Rgb(0xFFFFFF));
    EXPECT_EQ(ColorOf(ButtonText), Rgb(0xFFFFFF));
    EXPECT_EQ(ColorOf(TextBack), Rgb(0xC0C0C0));
    EXPECT_EQ(ColorOf(TextText), base::Colour(0x8000000FU));
    EXPECT_EQ(ColorOf(InfoText), base::Colour(0xFFFFFFFFU));
    EXPECT_EQ(ColorOf(LogoBack), Rgb(0x808080));
    EXPECT_EQ(ColorOf(ImportantText), base::Colour(255));

    // A system colour is held as it is and written as what it looks like now.
    draw::SetSysColor(draw::COLOR_BTNFACE, Rgb(0x102030));
    SaveColors();
    draw::ResetSysColors();
    EXPECT_EQ(Stored(QStringLiteral("texttext")), QString::number(0x302010));
}

TEST_F(ColourTable, NoiseInSettingsAndPresetsChangesNothing) {
    QByteArray noise(10 * 1024 * 1024, '\0');
    quint32 state = 1;
    for (char& byte : noise)
        byte = char((state = state * 1664525U + 1013904223U) >> 24);
    QDir(folder_.path()).mkdir(QStringLiteral("color_presets"));
    Write(QStringLiteral("settings.ini"), noise);
    Write(QStringLiteral("color_presets/noise.ini"), "\xFF\xFE" + noise.first(100001));
    LoadColorPreset(QStringLiteral("noise"));
    for (const ColourRow& row : colourRows)
        EXPECT_EQ(ColorOf(row.Index), row.Default) << row.Key;
}

TEST_F(ColourTable, PresetNamesNeverLeaveTheFolder) {
    const QStringList bad = {QStringLiteral("../evil"), QStringLiteral("..\\evil"), QStringLiteral("a/b"),
                             QStringLiteral("a\\b"),    QStringLiteral(".."),       QStringLiteral("/etc/x"),
                             QString(300, u'x'),        QString(130, QChar(0x416)), QStringLiteral("a\nb"),
                             QString(1, QChar(0)),      QString(1, QChar(0xD800)),  QString()};
    for (const QString& name : bad)
        SaveColorPreset(name);
    EXPECT_TRUE(QDir(folder_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());

    const QStringList good = {QStringLiteral("My scheme"), QStringLiteral("Схема"),      QStringLiteral("配色"),
                              QStringLiteral("a.b"),       QStringLiteral("Night.. v2"), QStringLiteral("..dim"),
                              QString(240, u'y')};
    for (const QString& name : good)
        SaveColorPreset(name);
    const QDir presets(Path(QStringLiteral("color_presets")));
    EXPECT_EQ(presets.entryList(QDir::Files | QDir::Hidden).size(), good.size());
    EXPECT_EQ(Stored(QStringLiteral("programback"), QStringLiteral("color_presets/Схема.ini")),
              QStringLiteral("4210752"));
    EXPECT_EQ(Stored(QStringLiteral("MBarSegments"), QStringLiteral("color_presets/Схема.ini")), QString());

    suite::ComboBox combo(nullptr, QStringLiteral("Combo"));
    ListColorPresets(&combo);
    for (const QString& name : good)
        EXPECT_TRUE(Items(combo).contains(name)) << name.toStdString();
}

TEST_F(ColourTable, ThePresetListStartsWithTwoItemsAndHoldsFilesAlone) {
    suite::ComboBox combo(nullptr, QStringLiteral("Combo"));
    ListColorPresets(&combo);
    EXPECT_EQ(Items(combo), (QStringList{QString(), QStringLiteral("Current Windows Default")}));
    ASSERT_TRUE(QDir(Path(QStringLiteral("color_presets"))).exists());

    Write(QStringLiteral("color_presets/One.INI"), {});
    Write(QStringLiteral("color_presets/.hidden.ini"), {});
    Write(QStringLiteral("color_presets/readme.txt"), {});
    QDir(folder_.path()).mkdir(QStringLiteral("color_presets/folder.ini"));
    ASSERT_EQ(mkfifo(QFile::encodeName(Path(QStringLiteral("color_presets/pipe.ini"))).constData(), 0600), 0);
    combo.SetListIndex(1);
    ListColorPresets(&combo);
    EXPECT_EQ(Items(combo), (QStringList{QString(), QStringLiteral("Current Windows Default"),
                                         QStringLiteral(".hidden"), QStringLiteral("One")}));
    EXPECT_EQ(combo.Text(), QString());
}

TEST_F(ColourTable, WindowsDefaultTakesPlainPresentValues) {
    draw::SetSysColor(draw::COLOR_BTNFACE, Rgb(0x112233));
    TakeWindowsDefaultColors();
    draw::ResetSysColors();
    EXPECT_EQ(ColorOf(ProgramBack), Rgb(0x112233));
    EXPECT_EQ(ColorOf(ImportantText), Rgb(0x0085C3));
    for (const ColourRow& row : colourRows)
        EXPECT_FALSE(ColorOf(row.Index).IsSystemColour()) << row.Key;
}

TEST_F(ColourTable, WithoutItsWindowTheTableSavesNothing) {
    values::Program().ProgramClosing = true;
    EXPECT_EQ(ColorPicker(ProgramBack), nullptr);
    EXPECT_EQ(ColorOf(ProgramBack), Rgb(0x404040));
    SaveColors();
    EXPECT_FALSE(QFile::exists(Path(QStringLiteral("settings.ini"))));
}

} // namespace
