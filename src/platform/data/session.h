// One open database file: what connection, command and recordset share. Owns the store's handle and the prepared
// statements. No statement stays half-read behind any call, so another process is never locked out between two calls; a
// file that was replaced since it was opened is noticed at the next call and opened in the old one's place.
#pragma once

#include "data/guarded_handle.h"
#include "data/processor_limit.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <list>
#include <vector>

struct sqlite3_stmt;

namespace data {

// Rows as fetched: the columns' names, each row's values, and its own number where the statement gives one.
struct Table {
    QStringList Columns;
    std::vector<std::vector<QVariant>> Rows;
    std::vector<qint64> RowIds;
    bool More = false; // there are further rows than a page takes
};

class Session {
  public:
    // Opens an existing file as OpenGuarded does, and every file that comes in its place by the same rules.
    Session(const QString& nativePath, const DatabaseRules* rules);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // All rows; Error where they are more or longer than a query may bring, or take too long to find. `withRowId`: the
    // statement's first column
    // is the row's own number. `inPages`: so many of the rows as may come, at least one.
    Table Query(const QByteArray& sql, const std::vector<QVariant>& values, bool withRowId, bool inPages = false);
    // Runs a statement that gives no rows; how many rows it changed. Durable on return, unless inside a transaction.
    int Change(const QByteArray& sql, const std::vector<QVariant>& values);

    // Write transactions, not nested. Begin waits for other writers like any other call.
    void Begin();
    void Commit();
    void Rollback();

    // Keeps the file as it is for reading, between calls, until LetGo: the calls between them read one state of one
    // file and are spared its locking. Writers wait meanwhile, so it is never kept while events are dispatched. A write
    // transaction ends it.
    void Hold();
    void LetGo();

    // The number that the last successful insert gave its row; kept when an insert fails or is taken back and when the
    // file is replaced.
    qint64 LastIdentity() const;

    // Another number for every opening of a file in this process: rows and numbers read under one generation mean
    // nothing under another.
    quint64 Generation() const { return generation_; }

    // What the store said when it first failed for the disk's sake (full, or an error of the device) rather than for
    // the statement's; empty where it never did.
    const QString& StorageFault() const { return storageFault_; }

    // Looks whether the file was replaced, and opens the new one; done by every call outside a transaction.
    void FollowFile();

    // As it was opened.
    const QString& Path() const { return path_; }
    const DatabaseRules* Rules() const { return rules_; }

  private:
    struct Prepared {
        QByteArray Sql;
        sqlite3_stmt* Statement = nullptr;
        QStringList Columns;      // read at its first row
        int ColumnsPrepared = -1; // how often the store had prepared it anew then: its columns may have changed since
    };
    struct FileIdentity {
        quint64 Device = 0;
        quint64 Inode = 0;
        bool Exists = false;
        friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    };
    class Run;

    static FileIdentity IdentityOf(const QString& path);
    void Open();
    void Close();
    Prepared& Prepare(const QByteArray& sql);
    static void ReadColumns(Prepared& prepared, int first);
    void RunPlain(const char* sql);
    void RequireWritableFile();
    [[noreturn]] void Fail(int code);

    QString path_;
    const DatabaseRules* rules_;
    ProcessorLimit limit_;
    Handle handle_;
    std::list<Prepared> statements_; // most recently used first
    FileIdentity file_;
    quint64 generation_ = 0;
    qint64 identityBefore_ = 0; // of the present transaction
    QString storageFault_;
    bool inTransaction_ = false;
    bool held_ = false;
};

} // namespace data
