#include "data/statement_text.h"

#include "data/error.h"

#include <algorithm>
#include <array>
#include <optional>

namespace data {

namespace {

enum class TokenKind { Word, Bracketed, Text, Number, Parameter, Symbol };

struct Token {
    TokenKind Kind = TokenKind::Symbol;
    QStringView Spelling; // as it is emitted; for literals unused
    QVariant Value;       // of Text and Number

    bool IsWord(QLatin1String word) const {
        return Kind == TokenKind::Word && Spelling.size() == word.size() &&
               Spelling.compare(word, Qt::CaseInsensitive) == 0;
    }
    bool IsSymbol(char16_t symbol) const { return Kind == TokenKind::Symbol && Spelling.front() == symbol; }
    bool IsName() const { return Kind == TokenKind::Word || Kind == TokenKind::Bracketed; }
    bool IsLiteral() const { return Kind == TokenKind::Text || Kind == TokenKind::Number; }
};

using Tokens = std::vector<Token>;

[[noreturn]] void FailInText(const QString& what) {
    throw Error(ErrorInCommand, QStringLiteral("Syntax error in query: %1.").arg(what));
}

bool IsLetter(QChar character) {
    const ushort code = character.unicode();
    return (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z') || code == '_' || code == '@';
}

bool IsDigit(QChar character) { return character.unicode() >= '0' && character.unicode() <= '9'; }

class Tokeniser {
  public:
    explicit Tokeniser(const QString& text) : text_(text) {}

    Tokens Run() {
        Tokens tokens;
        tokens.reserve(16);
        for (SkipBlanks(); at_ < text_.size(); SkipBlanks()) {
            tokens.push_back(Next());
        }
        return tokens;
    }

  private:
    void SkipBlanks() {
        while (at_ < text_.size() && (text_[at_] == u' ' || (text_[at_] >= u'\t' && text_[at_] <= u'\r'))) {
            ++at_;
        }
    }

    Token Next() {
        const QChar first = text_[at_];
        if (first == u'\'' || first == u'"') {
            return {TokenKind::Text, {}, Quoted(first)};
        }
        if (first == u'[') {
            return Bracketed();
        }
        if (IsDigit(first)) {
            return Number();
        }
        if (IsLetter(first)) {
            const qsizetype start = at_;
            while (at_ < text_.size() && (IsLetter(text_[at_]) || IsDigit(text_[at_]))) {
                ++at_;
            }
            return {TokenKind::Word, Piece(start), QVariant()};
        }
        if (first == u'?') {
            ++at_;
            return {TokenKind::Parameter, {}, QVariant()};
        }
        if (!QStringView(u"*,().=<>+-/&;").contains(first)) {
            FailInText(QStringLiteral("unexpected character"));
        }
        ++at_;
        return {TokenKind::Symbol, Piece(at_ - 1), QVariant()};
    }

    // From `start` to where the tokeniser stands.
    QStringView Piece(qsizetype start) const { return QStringView(text_).mid(start, at_ - start); }

    // A quote inside is doubled.
    QString Quoted(QChar quote) {
        QString value;
        for (++at_;;) {
            const qsizetype end = text_.indexOf(quote, at_);
            if (end < 0) {
                FailInText(QStringLiteral("a quote is not closed"));
            }
            value += QStringView(text_).mid(at_, end - at_);
            at_ = end + 1;
            if (at_ >= text_.size() || text_[at_] != quote) {
                return value;
            }
            value += quote;
            ++at_;
        }
    }

    Token Bracketed() {
        const qsizetype end = text_.indexOf(u']', at_);
        if (end < 0) {
            FailInText(QStringLiteral("a bracket is not closed"));
        }
        const QStringView name = QStringView(text_).mid(at_ + 1, end - at_ - 1);
        for (const QChar character : name) {
            if (!IsLetter(character) && !IsDigit(character) && character != u' ') {
                FailInText(QStringLiteral("a name in brackets"));
            }
        }
        at_ = end + 1;
        return {TokenKind::Bracketed, name, QVariant()};
    }

    Token Number() {
        const qsizetype start = at_;
        while (at_ < text_.size() && (IsDigit(text_[at_]) || text_[at_] == u'.')) {
            ++at_;
        }
        if (at_ < text_.size() && IsLetter(text_[at_])) {
            FailInText(QStringLiteral("a number runs into a word"));
        }
        const QStringView digits = Piece(start);
        bool whole = false;
        const qlonglong value = digits.toLongLong(&whole);
        return {TokenKind::Number, QString(), whole ? QVariant(value) : QVariant(digits.toString().toDouble())};
    }

    const QString& text_;
    qsizetype at_ = 0;
};

// How many tokens from `at` on spell a column, "name" or "table.name"; 0 where there is none.
size_t ColumnTokens(const Tokens& tokens, size_t at) {
    if (at >= tokens.size() || !tokens[at].IsName()) {
        return 0;
    }
    const bool qualified = at + 2 < tokens.size() && tokens[at + 1].IsSymbol(u'.') && tokens[at + 2].IsName();
    return qualified ? 3 : 1;
}

bool SameSpelling(const Tokens& tokens, size_t left, size_t right, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (tokens[left + i].Spelling.compare(tokens[right + i].Spelling, Qt::CaseInsensitive) != 0) {
            return false;
        }
    }
    return true;
}

// Where everything from `start` on is "column = literal OR column = literal ...", at least two of them and all of one
// column: the literals. Otherwise nothing.
std::vector<QVariant> OrChain(const Tokens& tokens, size_t start) {
    const size_t column = ColumnTokens(tokens, start);
    const size_t term = column + 3; // with the OR behind it
    const size_t length = tokens.size() - start + 1;
    std::vector<QVariant> values;
    if (column == 0 || length < 2 * term || length % term != 0) {
        return {};
    }
    for (size_t at = start; at < tokens.size(); at += term) {
        const size_t literal = at + column + 1;
        const bool fits = ColumnTokens(tokens, at) == column && SameSpelling(tokens, start, at, column) &&
                          tokens[literal - 1].IsSymbol(u'=') && tokens[literal].IsLiteral() &&
                          (literal + 1 == tokens.size() || tokens[literal + 1].IsWord(QLatin1String("OR")));
        if (!fits) {
            return {};
        }
        values.push_back(tokens[literal].Value);
    }
    return values;
}

// A blank, then the spelling between the two signs. Names and signs are ASCII, as the tokeniser lets through nothing
// else.
void AppendSpelling(QStringView spelling, QByteArrayView before, QByteArrayView behind, QByteArray& sql) {
    const qsizetype start = sql.size();
    sql.resize(start + before.size() + spelling.size() + behind.size());
    char* to = std::copy(before.begin(), before.end(), sql.data() + start);
    to =
        std::transform(spelling.begin(), spelling.end(), to, [](QChar character) { return char(character.unicode()); });
    std::copy(behind.begin(), behind.end(), to);
}

void Emit(const Token& token, StatementText& statement) {
    switch (token.Kind) {
    case TokenKind::Text:
    case TokenKind::Number:
        statement.Sql += " ?";
        statement.Values.push_back(token.Value);
        break;
    case TokenKind::Parameter:
        statement.Sql += " ?";
        statement.Values.emplace_back();
        ++statement.ParameterCount;
        break;
    case TokenKind::Bracketed:
        AppendSpelling(token.Spelling, " [", "]", statement.Sql);
        break;
    case TokenKind::Word:
    case TokenKind::Symbol:
        AppendSpelling(token.Spelling, " ", "", statement.Sql);
        break;
    }
}

void EmitIn(const Tokens& tokens, size_t column, const std::vector<QVariant>& values, StatementText& statement) {
    for (size_t at = column; at < column + ColumnTokens(tokens, column); ++at) {
        Emit(tokens[at], statement);
    }
    statement.Sql += " IN (?";
    for (size_t i = 1; i < values.size(); ++i) {
        statement.Sql += ",?";
    }
    statement.Sql += ')';
    statement.Values.insert(statement.Values.end(), values.begin(), values.end());
}

// Everything from `start` on, with the condition's OR chain gathered.
void EmitRest(const Tokens& tokens, size_t start, StatementText& statement) {
    for (size_t at = start; at < tokens.size(); ++at) {
        Emit(tokens[at], statement);
        if (!tokens[at].IsWord(QLatin1String("WHERE"))) {
            continue;
        }
        const std::vector<QVariant> values = OrChain(tokens, at + 1);
        if (!values.empty()) {
            EmitIn(tokens, at + 1, values, statement);
            return;
        }
    }
}

bool IsSelectAllFromOneTable(const Tokens& tokens) {
    return tokens.size() >= 4 && tokens[1].IsSymbol(u'*') && tokens[2].IsWord(QLatin1String("FROM")) &&
           tokens[3].IsName() &&
           (tokens.size() == 4 || tokens[4].IsWord(QLatin1String("WHERE")) || tokens[4].IsWord(QLatin1String("ORDER")));
}

StatementText TranslateSelect(const Tokens& tokens) {
    StatementText statement;
    statement.Sql.reserve(128);
    if (tokens.size() == 2 && tokens[1].IsWord(QLatin1String("@@IDENTITY"))) {
        statement.Kind = StatementKind::Identity;
        return statement;
    }
    if (!IsSelectAllFromOneTable(tokens)) {
        EmitRest(tokens, 0, statement);
        return statement;
    }
    statement.Table = tokens[3].Spelling.toString();
    statement.WholeTable = tokens.size() == 4;
    AppendSpelling(tokens[3].Spelling, "SELECT rowid, * FROM [", "]", statement.Sql);
    EmitRest(tokens, 4, statement);
    return statement;
}

void RefuseSecondStatement(Tokens& tokens) {
    while (!tokens.empty() && tokens.back().IsSymbol(u';')) {
        tokens.pop_back();
    }
    for (const Token& token : tokens) {
        if (token.IsSymbol(u';')) {
            throw Error(ErrorInCommand, QStringLiteral("Characters found after end of SQL statement."));
        }
    }
}

StatementText Translated(const QString& text) {
    Tokens tokens = Tokeniser(text).Run();
    RefuseSecondStatement(tokens);
    if (tokens.empty()) {
        throw Error(ErrorNoCommand);
    }
    if (tokens[0].IsWord(QLatin1String("SELECT"))) {
        return TranslateSelect(tokens);
    }
    constexpr std::array changes{"INSERT", "UPDATE", "DELETE"};
    for (const char* verb : changes) {
        if (tokens[0].IsWord(QLatin1String(verb))) {
            StatementText statement;
            statement.Kind = StatementKind::Change;
            EmitRest(tokens, 0, statement);
            return statement;
        }
    }
    throw Error(ErrorInCommand, QStringLiteral("Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or "
                                               "'UPDATE'."));
}

// Where the number begins that ends the text, behind a blank; nothing if none does.
std::optional<qsizetype> LastNumber(const QString& text) {
    constexpr qsizetype mostDigits = 18; // more may be no whole number
    qsizetype at = text.size();
    while (at > 0 && IsDigit(text[at - 1])) {
        --at;
    }
    const qsizetype digits = text.size() - at;
    return digits > 0 && digits <= mostDigits && at > 0 && text[at - 1] == u' ' ? std::optional(at) : std::nullopt;
}

// What has been made of the words before such a number, the last few of them. A search asks for dozens of rows by their
// numbers, in texts that are the same but for these.
class LastTranslations {
  public:
    const StatementText* Find(QStringView words) const {
        const auto known =
            std::find_if(known_.begin(), known_.end(), [words](const Known& one) { return one.Words == words; });
        return known == known_.end() ? nullptr : &known->Statement;
    }
    void Keep(QStringView words, const StatementText& statement) {
        known_[next_] = {words.toString(), statement};
        next_ = (next_ + 1) % known_.size();
    }

  private:
    struct Known {
        QString Words;
        StatementText Statement;
    };
    std::array<Known, 4> known_;
    size_t next_ = 0;
};

} // namespace

StatementText TranslateStatement(const QString& text) {
    static LastTranslations last;
    const std::optional<qsizetype> number = LastNumber(text);
    if (!number) {
        return Translated(text);
    }
    const QStringView words = QStringView(text).first(*number);
    if (const StatementText* known = last.Find(words)) {
        StatementText statement = *known;
        statement.Values.back() = QVariant(QStringView(text).mid(*number).toLongLong());
        return statement;
    }
    StatementText statement = Translated(text);
    last.Keep(words, statement);
    return statement;
}

} // namespace data
