// The presets that the program ships: complete, in the form that it writes itself, and readable; one of them is the
// look that it comes with.
#include "appearance/colour_table.h"
#include "base/profile_file.h"
#include "controls/colour_helpers.h"
#include "draw/contrast.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <map>

using namespace appearance;

namespace {

struct Pair {
    ColourIndex Text;
    ColourIndex Back;
};

// Every text or glyph and each colour that can lie behind it; gradients count with both ends. The important colour also
// marks the best matches in lists.
constexpr Pair pairs[] = {{ProgramText, ProgramBack},
                          {ImportantText, ProgramBack},
                          {InfoText, ProgramBack},
                          {ImportantText, TextBack},
                          {ButtonText, ButtonTopBack},
                          {TextText, TextBack},
                          {TitleText, TitleTopBack},
                          {TitleText, TitleBottomBack},
                          {PbText, PbBack},
                          {ImportantButtonText, ImportantButtonTopBack},
                          {PbFillText, PbBar},
                          {MbText, MbBack},
                          {MbFillText, MbBar},
                          {TitleButtonFore, TitleButtonBack},
                          {TitleButtonFore, TitleTopBack2},
                          {TitleButtonFore, TitleBottomBack2},
                          {TitleButtonXFore, TitleButtonXBack},
                          {TitleButtonXFore, TitleTopBack2},
                          {TitleButtonXFore, TitleBottomBack2}};

TEST(Presets, AreCompleteAndReadable) {
    const QDir folder(QStringLiteral(PRESET_FOLDER));
    const QStringList names = folder.entryList({QStringLiteral("*.ini")}, QDir::Files);
    ASSERT_GE(names.size(), 5);
    ASSERT_TRUE(names.contains(QStringLiteral("High Contrast.ini")));
    ASSERT_TRUE(names.contains(QStringLiteral("Default.ini")));
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.read(2) == "\xFF\xFE");
        std::map<ColourIndex, base::Colour> colours;
        for (const ColourRow& row : colourRows) {
            const auto colour = ColourFromText(base::GetPrivateProfileStringW(
                QStringLiteral("colors"), QLatin1StringView(row.Key), {}, 100, folder.filePath(name)));
            ASSERT_TRUE(colour.has_value()) << row.Key;
            ASSERT_LT(colour->Value(), 0x1000000U) << row.Key;
            colours[row.Index] = *colour;
        }
        if (name == QStringLiteral("Default.ini")) {
            for (const ColourRow& row : colourRows)
                EXPECT_EQ(colours[row.Index], row.Default) << row.Key;
            continue;
        }
        const double wanted = name == QStringLiteral("High Contrast.ini") ? 7.0 : 4.5;
        for (const Pair& pair : pairs)
            EXPECT_GE(draw::Contrast(colours[pair.Text], colours[pair.Back]), wanted)
                << RowOf(pair.Text)->Key << " on " << RowOf(pair.Back)->Key;
        // Under the pointer a button brightens from top to bottom; its caption stands in the middle.
        for (const Pair& pair : {Pair{ButtonText, ButtonTopBack}, Pair{ImportantButtonText, ImportantButtonTopBack}})
            EXPECT_GE(draw::Contrast(colours[pair.Text], controls::ShiftColour(colours[pair.Back], 0.1)), 4.5)
                << RowOf(pair.Text)->Key << " under the pointer";
    }
}

} // namespace
