// Statements of the database: any text is translated or refused, and a text out of the input stays a value.
#include "data/statement_text.h"
#include "data/error.h"
#include "fuzz_support.h"

#include <algorithm>

namespace {

data::StatementText Translated(const QString& text, bool& ran) {
    data::StatementText statement;
    ran = data::Ran([&] { statement = data::TranslateStatement(text); });
    return statement;
}

void CheckAny(const QString& text) {
    bool ran = false;
    const data::StatementText statement = Translated(text, ran);
    if (!ran)
        return;
    fuzz::Require(!statement.Sql.contains('\'') && !statement.Sql.contains('"') && !statement.Sql.contains(';'),
                  "no literal and no second statement is left");
    fuzz::Require(std::all_of(statement.Sql.begin(), statement.Sql.end(), [](char c) { return c >= ' ' && c <= '~'; }),
                  "what runs is plain ASCII");
    fuzz::Require(statement.Kind == data::StatementKind::Identity ||
                      statement.Sql.count('?') == qsizetype(statement.Values.size()),
                  "a value for each place");
}

void CheckLiterals(fuzz::Reader reader) {
    QString query = QStringLiteral("SELECT * FROM hwids Where ");
    std::vector<QVariant> values;
    do {
        const QString value = reader.Text();
        QString doubled = value;
        query += (values.empty() ? QStringLiteral("") : QStringLiteral(" OR ")) + QStringLiteral("[hwids].[hwid] = '") +
                 doubled.replace(u'\'', QStringLiteral("''")) + u'\'';
        values.emplace_back(value);
    } while (!reader.AtEnd() && values.size() < 50);
    bool ran = false;
    const data::StatementText statement = Translated(query, ran);
    fuzz::Require(ran && statement.Values == values, "quoted texts come out as values, as they went in");
    fuzz::Require(statement.Table == QStringLiteral("hwids") && !statement.WholeTable, "a query keeps its table");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CheckAny(QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size)));
    CheckLiterals(fuzz::Reader(data, size));
    return 0;
}
