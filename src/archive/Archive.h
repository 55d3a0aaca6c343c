// An open archive: one database connection with its schema brought up to date.
#pragma once

#include "ArchiveLocation.h"
#include "ArchiveTypes.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <functional>
#include <initializer_list>
#include <memory>

namespace kalvo::archive {

class ServerWatch;

// Owns one connection of its own (a unique Qt connection name), so that several archives, and
// several threads each with its own, can be open at once. Not shared between threads.
class Archive {
public:
    // Opens the database and applies the migrations it lacks. To write, an SQLite file is created
    // with its folder on first use; to read, it must be there. Only a migration takes the write lock
    // on opening. Throws ArchiveError: the server cannot be reached or does not answer, the file is
    // missing (to read), no SQLite database or another program's, it is busy longer than the wait
    // of the target, or it was written by a newer kalvo. A file that cannot be read is never replaced.
    explicit Archive(const ArchiveTarget &target, ArchiveAccess access = ArchiveAccess::Write);
    ~Archive();
    Archive(const Archive &) = delete;
    Archive &operator=(const Archive &) = delete;

    const ArchiveTarget &target() const { return m_target; }
    bool isPostgres() const { return m_target.kind == ArchiveTarget::Kind::PostgreSQL; }
    QSqlDatabase &database() { return m_db; }
    int schemaVersion() const { return m_version; }

    // A query prepared on this connection; throws ArchiveError naming `sql` when it does not parse.
    QSqlQuery Prepare(const QString &sql);
    // Executes a prepared query with `values` bound in order; throws ArchiveError when it fails.
    void Run(QSqlQuery &query, std::initializer_list<QVariant> values = {});
    // Executes `sql` once; throws ArchiveError when it fails.
    QSqlQuery Exec(const QString &sql, std::initializer_list<QVariant> values = {});
    // The next row of an executed query; false at the end. A row that cannot be fetched (the server
    // went away in the middle of a result) throws ArchiveError rather than ending the rows early.
    bool Next(QSqlQuery &query);

    // Runs `work` in one transaction that takes the write lock at its start. Either all it wrote
    // is committed or nothing is: on an exception the transaction is rolled back and the
    // exception passed on. A transaction that lost a race with another writer (a deadlock, a
    // busy file) is tried again a few times.
    void InTransaction(const std::function<void()> &work);
    // InTransaction for work that writes many rows a statement. SQLite keeps the undo copy a
    // statement makes of the pages it changes in memory for it, not in a temporary file.
    void InBulkTransaction(const std::function<void()> &work);

    // An ArchiveError naming the archive, `what` was being done and the driver's reason.
    ArchiveError Failure(const QString &what, const QString &reason) const;

private:
    // A statement failed: the error names it, the driver's reason and its code.
    ArchiveError StatementFailure(const QString &sql, const QSqlError &error) const;
    void Connect();
    void OpenConnection();
    void SetUpSQLite();
    bool HasTable(const QString &name);
    int StoredSchemaVersion();
    void Begin();
    void Rollback();
    bool IsRetryable(const QString &nativeCode) const;
    // What the database's code says, in the user's words, when it is a wait that ran out.
    QString WaitReason(const QString &nativeCode) const;

    ArchiveTarget m_target;
    ArchiveAccess m_access;
    QString m_connectionName;
    QSqlDatabase m_db;
    std::unique_ptr<ServerWatch> m_watch;
    int m_version = 0;
};

// Column types that differ between the two databases, substituted into migrations and queries.
QString ArchiveSql(const Archive &archive, QString sql);

// Timestamps and dates travel as text in one fixed form that both databases compare correctly.
QVariant TimestampValue(const QDateTime &time);
QVariant DateValue(const QDate &date);
QDateTime TimestampFrom(const QVariant &value);
QDate DateFrom(const QVariant &value);
// Text columns hold "" rather than NULL for what is not known.
QString TextValue(const QString &text);

} // namespace kalvo::archive
