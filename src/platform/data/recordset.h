// Rows with a current one, as ADO's Recordset: the result of a query, or a rowset in memory that belongs to no
// connection (ADOR.Recordset). A filtered query is fetched whole when it is opened; a whole table is walked in pages
// and counted only when asked, so its size costs neither memory nor time at opening. Each call that can fail throws
// Error: run it through Ran.
#pragma once

#include "data/ado.h"
#include "data/connection.h"
#include "data/statement_text.h"

#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>
#include <vector>

namespace data {

class Session;

// One column: its name and, in a rowset in memory, its type and the most characters that it takes.
struct Field {
    QString Name;
    int Type = adVarChar;
    qsizetype Size = -1; // -1: no limit
};

// The columns of a recordset.
class FieldList {
  public:
    // Only before the rowset in memory is opened. Throws Error where the name is taken or the type unknown.
    void Append(const QString& name, int type, qsizetype size = -1);
    int Count() const { return int(fields_.size()); }
    const Field& Item(int index) const { return fields_[size_t(index)]; }

  private:
    friend class Recordset;
    int Find(const QString& name) const;
    std::vector<Field> fields_;
    bool fixed_ = false;
};

class Recordset {
  public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    // Runs a query and stands on its first row. Cursor type, lock type and options are kept to what the store gives
    // whichever are asked for: rows as of the opening, updatable one by one.
    void Open(const QString& source, const ConnectionPtr& connection, int cursorType = adOpenForwardOnly,
              int lockType = adLockOptimistic, int options = adCmdUnspecified);
    // Opens the rowset in memory, empty, with the fields appended before.
    void Open();
    void Close();
    // Closed too once its connection is.
    int State() const;

    FieldList& Fields() { return fields_; }

    bool Eof() const;
    qint64 RecordCount() const;
    // A pending change is written first, as Update does.
    void MoveFirst();
    void MoveNext();

    // The value in the current row; a null variant where the column holds none. Column names match without regard to
    // case.
    QVariant Value(const QString& column) const;
    QVariant Value(int column) const;
    // Changes the current row (or the one that AddNew began) until Update. A text longer than its column takes is
    // refused and the value stays as it was.
    void SetValue(const QString& column, const QVariant& value);

    // Begins a row; of a rowset in memory only. One begun before is kept as by Update.
    void AddNew();
    // Writes what SetValue changed. Of a query's row: durable on return, refused where the row was changed or removed
    // since it was read.
    void Update();

  private:
    friend class Command;
    using Row = std::vector<QVariant>;
    enum class Kind { Closed, Memory, Fetched, Paged };

    void OpenStatement(const StatementText& statement, const std::shared_ptr<Session>& session);
    void SetColumns(const QStringList& names);
    void FetchPage(qint64 behind);
    void UpdateStore();
    void FinishPending();
    void RequireOpen() const;
    const Row& CurrentRow() const;
    std::shared_ptr<Session> RequireSession() const;

    Kind kind_ = Kind::Closed;
    FieldList fields_;
    std::vector<Row> rows_; // all of them; of a paged table the present page
    std::vector<qint64> rowIds_;
    size_t at_ = 0;
    bool newRow_ = false;
    bool pagePassed_ = false;      // a page before the present one has been walked
    bool pagesFollow_ = false;     // there may be one behind it
    Row added_;                    // the row that AddNew began
    QHash<int, QVariant> changes_; // of the current row, by column
    mutable qint64 count_ = -1;    // of a paged table, once asked
    QString table_;
    std::weak_ptr<Session> session_;
    quint64 generation_ = 0;
};

using RecordsetPtr = std::shared_ptr<Recordset>;

} // namespace data
