// A connection to one database file, as ADO's Connection. Held by shared pointers; the recordsets and commands made on
// it lose their use when it is closed. Each call that can fail throws Error: run it through Ran.
#pragma once

#include "data/ado.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace data {

struct DatabaseRules;
class Session;

// The connection string that opens the file at `path`, which may be one of the program's own, with backslashes.
QString ConnectionStringFor(const QString& path);

class Connection {
  public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Without effect: every rowset is served as by a client-side cursor. Refuses what is no location.
    void SetCursorLocation(int location);

    // "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=<path>;"; other keys are passed over.
    void SetConnectionString(const QString& text);

    // What the file must be, judged at each opening; of static life. Null: any tables.
    void SetRules(const DatabaseRules* rules) { rules_ = rules; }

    // Opens the file, which must exist and be a database. User and password are not asked for by the provider.
    void Open(const QString& user = QString(), const QString& password = QString(), int options = adConnectUnspecified);
    void Close();
    int State() const { return session_ ? adStateOpen : adStateClosed; }

    // A write transaction; it waits its turn behind other processes. Never kept open across a yield.
    void BeginTrans();
    void CommitTrans();
    // Without a transaction it does nothing.
    void RollbackTrans();

    // For a file of one's own that nobody misses after a crash: writes no longer wait for the disk, so many are done in
    // little time. Sync the file before it takes the place of another. Holds while it is open.
    void LeaveWritesToSystem();

    // Changes with every opening of a file, also when the file was replaced under an open connection; 0 while closed.
    // Looks at the file first, so two equal answers mean that what was read between them belongs together.
    quint64 Generation() const;

    // How many rows a table holds; nothing where that cannot be told. A large file takes a while to count and a crafted
    // one for ever, so it is done aside: events are dispatched meanwhile, and it ends once `stopped` says so, at the
    // latest after 5 s.
    std::optional<qint64> CountRows(const QString& table, const std::function<bool()>& stopped) const;

    // Why a call could not write, where that lies with the disk: it is full, for instance. Empty where none failed so,
    // also while closed. For callers that pass over single failures and must not take a full disk for one of them.
    QString StorageFault() const;

  private:
    friend class Command;
    friend class ReadHold;
    friend class Recordset;
    // Throws ErrorInvalidConnection while closed.
    const std::shared_ptr<Session>& RequireSession() const;

    QString connectionString_;
    const DatabaseRules* rules_ = nullptr;
    std::shared_ptr<Session> session_;
};

using ConnectionPtr = std::shared_ptr<Connection>;

// Keeps the database as it is for several queries in a row, which then read one state of it and cost less. Writers wait
// meanwhile: let go before events are dispatched.
class ReadHold {
  public:
    ReadHold() = default;
    ~ReadHold() { LetGo(); }
    ReadHold(const ReadHold&) = delete;
    ReadHold& operator=(const ReadHold&) = delete;

    // Null, closed and held already are passed over.
    void Hold(const ConnectionPtr& connection);
    void LetGo();

  private:
    std::shared_ptr<Session> session_;
};

} // namespace data
