// A nameless database of one's own, beside which the file of another can be opened: for work on very many rows at once,
// as the tools do it, in the store's own SQL. It lives in the system's temporary files, goes with the object, and keeps
// memory small whatever it holds. Each call that can fail throws Error: run it through Ran.
#pragma once

#include "data/database_rules.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <functional>
#include <list>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace data {

class Workspace {
  public:
    Workspace();
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // Makes the tables of an existing file, which must be what `rules` ask for, reachable as "live.TABLE", in place of
    // those of an earlier one. Each statement waits up to `patience` milliseconds for others that use the file.
    void Attach(const QString& nativePath, const DatabaseRules& rules, int patience);
    // Whether another file stands under the name by now: the one that was attached is nobody's then.
    bool Moved() const;

    // Runs one statement; how many rows it changed. The values stand for its "?" marks.
    int Change(const QByteArray& sql, const std::vector<QVariant>& values = {});

    // Calls `use` with each row as it is read, so a slow one holds up those who want to write to the file.
    using Row = std::vector<QVariant>;
    void Each(const QByteArray& sql, const std::vector<QVariant>& values, const std::function<void(const Row&)>& use);
    // The first value of the first row; invalid where there is none.
    QVariant Value(const QByteArray& sql, const std::vector<QVariant>& values = {});

    // One transaction on everything; it waits its turn. What happened in it is taken back where `work` or the end of
    // the transaction throws.
    void InTransaction(const std::function<void()>& work);

  private:
    struct Prepared {
        QByteArray Sql;
        sqlite3_stmt* Statement = nullptr;
    };
    sqlite3_stmt* Prepare(const QByteArray& sql, const std::vector<QVariant>& values);
    void FinishStatements();
    [[noreturn]] void Fail(int code) const;

    sqlite3* handle_ = nullptr;
    std::list<Prepared> statements_;
    int patience_ = 0; // milliseconds
    bool attached_ = false;
};

} // namespace data
