#include "data/error.h"
#include "data/statement_text.h"

#include <gmock/gmock.h>

using data::StatementKind;
using data::TranslateStatement;
using testing::ElementsAre;

namespace {

qint32 Refusal(const QString& text) {
    data::Error error;
    return data::Ran([&] { TranslateStatement(text); }, &error) ? 0 : error.Number();
}

} // namespace

TEST(StatementText, LiftsEveryLiteral) {
    const auto statement =
        TranslateStatement("SELECT * FROM devicenames Where [devicenames].[devicename] = 'Bob''s \"50%\" ; -- DROP ?'");
    EXPECT_EQ(statement.Sql, "SELECT rowid, * FROM [devicenames] Where [devicenames] . [devicename] = ?");
    EXPECT_THAT(statement.Values, ElementsAre(QVariant("Bob's \"50%\" ; -- DROP ?")));
    EXPECT_EQ(statement.Table, "devicenames");
    EXPECT_FALSE(statement.WholeTable);

    const auto byNumber = TranslateStatement("SELECT * FROM mfgs Where [mfgs].[ID] = 812");
    EXPECT_THAT(byNumber.Values, ElementsAre(QVariant(812LL)));
}

// What was made of the words before the last number is used again, with the new number alone.
TEST(StatementText, TakesTheNumberOfEachTextThatEndsInOne) {
    for (const qint64 number : {1LL, 2LL, 123456789012345678LL}) {
        const auto byNumber =
            TranslateStatement(QStringLiteral("SELECT * FROM hwids Where info = 'a 7' AND ID = %1").arg(number));
        EXPECT_EQ(byNumber.Sql, "SELECT rowid, * FROM [hwids] Where info = ? AND ID = ?");
        EXPECT_THAT(byNumber.Values, ElementsAre(QVariant("a 7"), QVariant(number)));
        const auto either =
            TranslateStatement(QStringLiteral("SELECT * FROM hwids Where ID = 5 OR ID = %1").arg(number));
        EXPECT_TRUE(either.Sql.endsWith("ID IN (?,?)")) << either.Sql.toStdString();
        EXPECT_THAT(either.Values, ElementsAre(QVariant(5LL), QVariant(number)));
        EXPECT_NE(Refusal(QStringLiteral("SELECT * FROM hwids Where info = 'a %1").arg(number)), 0);
    }
    EXPECT_EQ(TranslateStatement("SELECT * FROM hwids Where ID = 12345678901234567890").Values.back(),
              QVariant(12345678901234567890.0));
}

TEST(StatementText, GathersOneColumnsOrChain) {
    const auto statement = TranslateStatement(QStringLiteral(
        "SELECT * FROM hwids Where [hwids].[hwid] = 'a' OR [hwids].[hwid] = 'b' or [HWIDS].[hwid] = ''"));
    EXPECT_TRUE(statement.Sql.endsWith("Where [hwids] . [hwid] IN (?,?,?)")) << statement.Sql.toStdString();
    EXPECT_THAT(statement.Values, ElementsAre(QVariant("a"), QVariant("b"), QVariant("")));

    const auto mixed = TranslateStatement("SELECT * FROM hwids Where hwid = 'a' OR info = 'b'");
    EXPECT_TRUE(mixed.Sql.endsWith("hwid = ? OR info = ?"));
    const auto conjunct = TranslateStatement("SELECT * FROM hwids Where hwid = 'a' OR hwid = 'b' AND info = 'c'");
    EXPECT_FALSE(conjunct.Sql.contains("IN"));
}

TEST(StatementText, KnowsItsKinds) {
    EXPECT_EQ(TranslateStatement("SELECT @@Identity").Kind, StatementKind::Identity);
    EXPECT_TRUE(TranslateStatement("SELECT * FROM hwids;").WholeTable);
    const auto insert = TranslateStatement("INSERT INTO hwids (hwid,info) VALUES(?,'x')");
    EXPECT_EQ(insert.Kind, StatementKind::Change);
    EXPECT_EQ(insert.ParameterCount, 1);
    EXPECT_FALSE(insert.Values[0].isValid());
}

TEST(StatementText, RefusesWhatIsNoSingleStatement) {
    EXPECT_EQ(Refusal(QString()), data::ErrorNoCommand);
    EXPECT_EQ(Refusal(" ; "), data::ErrorNoCommand);
    for (const char* text : {"SELECT * FROM hwids Where hwid = 'open", " OR [hwids].[hwid] = 'a'",
                             "SELECT * FROM hwids; DELETE FROM hwids", "PRAGMA writable_schema = 1", "ATTACH 'x' AS y",
                             "SELECT * FROM [hwids", "SELECT * FROM [a\"]", "SELECT 12ab", "SELECT `x`",
                             "SELECT * FROM hwids Where hwid = \\ "}) {
        EXPECT_EQ(Refusal(QLatin1String(text)), data::ErrorInCommand) << text;
    }
}
