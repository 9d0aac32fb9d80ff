#include "data/recordset.h"

#include "data/error.h"
#include "data/session.h"

#include <limits>

namespace data {

namespace {

constexpr int pageRows = 256;
constexpr qint64 beforeFirst = std::numeric_limits<qint64>::min(); // of the rows' numbers

QByteArray Quoted(const QString& name) { return '[' + name.toUtf8() + ']'; }

} // namespace

void FieldList::Append(const QString& name, int type, qsizetype size) {
    if (fixed_) {
        throw Error(ErrorObjectOpen);
    }
    if (name.isEmpty() || Find(name) >= 0 || (type != adVarChar && type != adLongVarChar && type != adInteger)) {
        throw Error(ErrorInvalidArgument);
    }
    fields_.push_back({name, type, type == adInteger ? -1 : size});
}

int FieldList::Find(const QString& name) const {
    for (size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].Name.compare(name, Qt::CaseInsensitive) == 0) {
            return int(i);
        }
    }
    return -1;
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;

void Recordset::Open(const QString& source, const ConnectionPtr& connection, int /*cursorType*/, int /*lockType*/,
                     int /*options*/) {
    if (kind_ != Kind::Closed) {
        throw Error(ErrorObjectOpen);
    }
    if (!connection) {
        throw Error(ErrorInvalidConnection);
    }
    const std::shared_ptr<Session>& session = connection->RequireSession();
    const StatementText statement = TranslateStatement(source);
    if (statement.Kind == StatementKind::Change) {
        session->Change(statement.Sql, statement.Values);
        return;
    }
    OpenStatement(statement, session);
}

void Recordset::OpenStatement(const StatementText& statement, const std::shared_ptr<Session>& session) {
    session_ = session;
    table_ = statement.Table;
    if (statement.Kind == StatementKind::Identity) {
        fields_.fields_ = {{QStringLiteral("Expr1000"), adInteger, -1}};
        rows_ = {{session->LastIdentity()}};
        rowIds_.clear();
        kind_ = Kind::Fetched;
    } else if (statement.WholeTable) {
        FetchPage(beforeFirst);
        kind_ = Kind::Paged;
    } else {
        Table table = session->Query(statement.Sql, statement.Values, !table_.isEmpty());
        SetColumns(table.Columns);
        rows_ = std::move(table.Rows);
        rowIds_ = std::move(table.RowIds);
        kind_ = Kind::Fetched;
    }
    generation_ = session->Generation();
    fields_.fixed_ = true;
    at_ = 0;
    count_ = -1;
}

void Recordset::SetColumns(const QStringList& names) {
    fields_.fields_.clear();
    fields_.fields_.reserve(size_t(names.size()));
    for (const QString& name : names) {
        fields_.fields_.push_back({name, adLongVarChar, -1});
    }
}

void Recordset::FetchPage(qint64 behind) {
    const std::shared_ptr<Session> session = RequireSession();
    const bool first = behind == beforeFirst;
    const QByteArray select = "SELECT rowid, * FROM " + Quoted(table_);
    const QByteArray order = " ORDER BY rowid LIMIT " + QByteArray::number(pageRows);
    Table page = first ? session->Query(select + order, {}, true, true)
                       : session->Query(select + " WHERE rowid > ?" + order, {qlonglong(behind)}, true, true);
    if (first) {
        SetColumns(page.Columns);
    } else if (session->Generation() != generation_) {
        // The rest of another file's table: not these rows.
        page = Table();
    }
    rows_ = std::move(page.Rows);
    rowIds_ = std::move(page.RowIds);
    at_ = 0;
    pagePassed_ = !first;
    pagesFollow_ = page.More || rows_.size() == pageRows;
}

void Recordset::Open() {
    if (kind_ != Kind::Closed) {
        throw Error(ErrorObjectOpen);
    }
    if (fields_.Count() == 0) {
        throw Error(ErrorInvalidArgument);
    }
    fields_.fixed_ = true;
    kind_ = Kind::Memory;
    at_ = 0;
}

void Recordset::Close() {
    RequireOpen();
    kind_ = Kind::Closed;
    rows_.clear();
    rowIds_.clear();
    changes_.clear();
    newRow_ = false;
    fields_.fixed_ = false;
}

int Recordset::State() const {
    const bool open = kind_ == Kind::Memory || (kind_ != Kind::Closed && !session_.expired());
    return open ? adStateOpen : adStateClosed;
}

void Recordset::RequireOpen() const {
    if (State() == adStateClosed) {
        throw Error(ErrorObjectClosed);
    }
}

std::shared_ptr<Session> Recordset::RequireSession() const {
    std::shared_ptr<Session> session = session_.lock();
    if (!session) {
        throw Error(ErrorObjectClosed);
    }
    return session;
}

bool Recordset::Eof() const {
    RequireOpen();
    return !newRow_ && at_ >= rows_.size();
}

qint64 Recordset::RecordCount() const {
    RequireOpen();
    if (kind_ != Kind::Paged) {
        return qint64(rows_.size());
    }
    if (count_ < 0) {
        const Table counted = RequireSession()->Query("SELECT count(*) FROM " + Quoted(table_), {}, false);
        count_ = counted.Rows.at(0).at(0).toLongLong();
    }
    return count_;
}

void Recordset::MoveFirst() {
    RequireOpen();
    FinishPending();
    if (kind_ == Kind::Paged && pagePassed_) {
        FetchPage(beforeFirst);
    }
    at_ = 0;
    if (rows_.empty()) {
        throw Error(ErrorNoCurrentRecord);
    }
}

void Recordset::MoveNext() {
    RequireOpen();
    FinishPending();
    if (at_ >= rows_.size()) {
        throw Error(ErrorNoCurrentRecord);
    }
    if (kind_ == Kind::Paged && at_ + 1 == rows_.size() && pagesFollow_) {
        FetchPage(rowIds_.back());
        return;
    }
    ++at_;
}

const Recordset::Row& Recordset::CurrentRow() const {
    RequireOpen();
    if (newRow_) {
        return added_;
    }
    if (at_ >= rows_.size()) {
        throw Error(ErrorNoCurrentRecord);
    }
    return rows_[at_];
}

QVariant Recordset::Value(int column) const {
    const Row& row = CurrentRow();
    if (column < 0 || column >= int(row.size())) {
        throw Error(ErrorItemNotFound);
    }
    const auto changed = changes_.constFind(column);
    return changed != changes_.constEnd() ? *changed : row[size_t(column)];
}

QVariant Recordset::Value(const QString& column) const {
    RequireOpen();
    const int index = fields_.Find(column);
    if (index < 0) {
        throw Error(ErrorItemNotFound);
    }
    return Value(index);
}

void Recordset::SetValue(const QString& column, const QVariant& value) {
    CurrentRow();
    const int index = fields_.Find(column);
    if (index < 0) {
        throw Error(ErrorItemNotFound);
    }
    const Field& field = fields_.Item(index);
    if (field.Size >= 0 && value.toString().size() > field.Size) {
        throw Error(ErrorNotUpdatable);
    }
    if (kind_ == Kind::Memory && field.Type == adInteger && !value.canConvert<int>()) {
        throw Error(ErrorDataConversion);
    }
    changes_.insert(index, value);
}

void Recordset::AddNew() {
    RequireOpen();
    if (kind_ != Kind::Memory) {
        throw Error(ErrorFeatureNotAvailable);
    }
    FinishPending();
    added_.assign(size_t(fields_.Count()), QVariant());
    newRow_ = true;
}

void Recordset::Update() {
    CurrentRow();
    if (kind_ != Kind::Memory) {
        UpdateStore();
    }
    Row& row = newRow_ ? added_ : rows_[at_];
    for (auto change = changes_.cbegin(); change != changes_.cend(); ++change) {
        row[size_t(change.key())] = change.value();
    }
    changes_.clear();
    if (newRow_) {
        rows_.push_back(std::move(added_));
        added_ = Row();
        newRow_ = false;
        at_ = rows_.size() - 1;
    }
}

void Recordset::UpdateStore() {
    if (changes_.isEmpty()) {
        return;
    }
    if (table_.isEmpty()) {
        throw Error(ErrorFeatureNotAvailable);
    }
    const std::shared_ptr<Session> session = RequireSession();
    QByteArray assignments;
    QByteArray conditions = " WHERE rowid = ?";
    std::vector<QVariant> values;
    std::vector<QVariant> expected{qlonglong(rowIds_.at(at_))};
    for (auto change = changes_.cbegin(); change != changes_.cend(); ++change) {
        const QByteArray column = Quoted(fields_.Item(change.key()).Name);
        assignments += (assignments.isEmpty() ? " SET " : ", ") + column + " = ?";
        // BINARY: the column compares without case, and a change of case is a change.
        conditions += " AND " + column + " COLLATE BINARY IS ?";
        values.push_back(change.value());
        expected.push_back(rows_[at_][size_t(change.key())]);
    }
    values.insert(values.end(), expected.begin(), expected.end());
    session->FollowFile();
    const bool sameFile = session->Generation() == generation_;
    if (!sameFile || session->Change("UPDATE " + Quoted(table_) + assignments + conditions, values) != 1) {
        throw Error(ErrorRowNotLocated);
    }
}

void Recordset::FinishPending() {
    if (newRow_ || !changes_.isEmpty()) {
        Update();
    }
}

} // namespace data
