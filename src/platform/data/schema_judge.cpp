#include "data/schema_judge.h"

#include <algorithm>
#include <array>

namespace data {

namespace {

constexpr std::array<const char*, 7> textTypes = {"text", "varchar", "nvarchar", "char", "clob", "memo", "longtext"};

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool IsNumber(const QByteArray& token) {
    return !token.isEmpty() && std::all_of(token.cbegin(), token.cend(), [](char c) { return c >= '0' && c <= '9'; });
}

// A name that a file gave, as far as it may stand in a message.
QString Legible(const QByteArray& name) {
    const bool plain = std::all_of(name.cbegin(), name.cend(), IsWordCharacter);
    return plain && name.size() <= 64 ? QLatin1Char(' ') + QString::fromLatin1(name) : QString();
}

// Takes the tokens of one definition off one by one.
class Definition {
  public:
    explicit Definition(const QByteArray& text) : tokens_(DefinitionTokens(text)) {}

    bool Take(const char* token) {
        const bool next = at_ < tokens_.size() && tokens_.at(at_) == token;
        at_ += next ? 1 : 0;
        return next;
    }
    bool TakeNumber() {
        const bool next = at_ < tokens_.size() && IsNumber(tokens_.at(at_));
        at_ += next ? 1 : 0;
        return next;
    }
    QByteArray TakeAny() { return at_ < tokens_.size() ? tokens_.at(at_++) : QByteArray(); }
    bool AtEnd() const { return at_ == tokens_.size(); }

  private:
    QList<QByteArray> tokens_;
    qsizetype at_ = 0;
};

// "TEXT", "VARCHAR(125)"; no type at all is a text too.
bool TakeTextType(Definition& definition) {
    const bool typed = std::any_of(textTypes.begin(), textTypes.end(),
                                   [&definition](const char* type) { return definition.Take(type); });
    return !typed || !definition.Take("(") || (definition.TakeNumber() && definition.Take(")"));
}

// What stands behind a column's name. The store gives the numbers of rows only to a column of exactly this type.
bool TakeColumn(Definition& definition, const ColumnRule& column) {
    if (column.IsKey ? !(definition.Take("integer") && definition.Take("primary") && definition.Take("key"))
                     : !TakeTextType(definition)) {
        return false;
    }
    for (;;) {
        if (definition.Take("not")) {
            if (!definition.Take("null")) {
                return false;
            }
        } else if (definition.Take("collate")) {
            if (!definition.Take("nocase") && !definition.Take("binary")) {
                return false;
            }
        } else {
            return true;
        }
    }
}

bool IsTable(const SchemaObject& object, const TableRule& rule) {
    Definition definition(object.Definition);
    if (!definition.Take("create") || !definition.Take("table") || !definition.Take(rule.Name) ||
        !definition.Take("(")) {
        return false;
    }
    std::vector<const ColumnRule*> missing;
    for (const ColumnRule& column : rule.Columns) {
        missing.push_back(&column);
    }
    do {
        const QByteArray name = definition.TakeAny();
        const auto column = std::find_if(missing.begin(), missing.end(), [&name](const ColumnRule* candidate) {
            return QByteArray(candidate->Name).toLower() == name;
        });
        if (column == missing.end() || !TakeColumn(definition, **column)) {
            return false;
        }
        missing.erase(column);
    } while (definition.Take(","));
    return missing.empty() && definition.Take(")") && definition.AtEnd();
}

template <typename Rule> const Rule* FindRule(std::span<const Rule> rules, const QByteArray& name) {
    const auto rule = std::find_if(rules.begin(), rules.end(), [&name](const Rule& candidate) {
        return QByteArray(candidate.Name).toLower() == name.toLower();
    });
    return rule == rules.end() ? nullptr : &*rule;
}

QString JudgeObject(const SchemaObject& object, const DatabaseRules& rules) {
    const TableRule* table = FindRule(rules.Tables, object.Name);
    const IndexRule* index = FindRule(rules.Indexes, object.Name);
    const bool isTable = object.Type == "table" && table != nullptr;
    const bool isIndex = object.Type == "index" && index != nullptr;
    if (!isTable && !isIndex) {
        const bool named = object.Type == "table" || object.Type == "index" || object.Type == "view";
        return QStringLiteral("unknown ") + (named ? QString::fromLatin1(object.Type) : QStringLiteral("object")) +
               Legible(object.Name);
    }
    const bool good = isTable ? IsTable(object, *table)
                              : DefinitionTokens(object.Definition) == DefinitionTokens(QByteArray(index->Definition));
    return good ? QString()
                : QStringLiteral("%1%2 is not as it should be")
                      .arg(QString::fromLatin1(object.Type), Legible(object.Name));
}

} // namespace

QList<QByteArray> DefinitionTokens(const QByteArray& definition) {
    constexpr char ends[][2] = {{'"', '"'}, {'`', '`'}, {'[', ']'}};
    QList<QByteArray> tokens;
    for (qsizetype at = 0; at < definition.size();) {
        const char c = definition.at(at);
        const auto* quote =
            std::find_if(std::begin(ends), std::end(ends), [c](const char* pair) { return pair[0] == c; });
        const qsizetype start = quote == std::end(ends) ? at : at + 1;
        qsizetype end = start;
        while (end < definition.size() && IsWordCharacter(definition.at(end))) {
            ++end;
        }
        if (quote != std::end(ends)) {
            if (end == start || end == definition.size() || definition.at(end) != (*quote)[1]) {
                return {};
            }
            at = end + 1;
        } else if (end > start) {
            at = end;
        } else if (c == '(' || c == ')' || c == ',') {
            end = ++at;
        } else if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
            ++at;
            continue;
        } else {
            return {};
        }
        tokens.append(definition.sliced(start, end - start).toLower());
    }
    return tokens;
}

QString JudgeSchema(const std::vector<SchemaObject>& objects, const DatabaseRules& rules) {
    const auto holds = [&objects](const char* name) {
        return std::any_of(objects.begin(), objects.end(), [name](const SchemaObject& object) {
            return object.Name.toLower() == QByteArray(name).toLower();
        });
    };
    for (const SchemaObject& object : objects) {
        const QString wrong = JudgeObject(object, rules);
        if (!wrong.isEmpty()) {
            return wrong;
        }
    }
    for (const TableRule& table : rules.Tables) {
        if (!holds(table.Name)) {
            return QStringLiteral("no table ") + QLatin1String(table.Name);
        }
    }
    return QString();
}

} // namespace data
