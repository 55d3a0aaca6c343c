// An open archive: one database connection with its schema brought up to date.
#include "Archive.h"

#include "ArchiveTypes.h"
#include "ArchiveVolume.h"
#include "Migrations.h"
#include "ServerWatch.h"

#include <QAtomicInt>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDriver>
#include <QSqlError>
#include <QThread>
#include <algorithm>

namespace kalvo::archive {

namespace {

const char kTimestampFormat[] = "yyyy-MM-dd HH:mm:ss";
const char kDateFormat[] = "yyyy-MM-dd";
constexpr int kAttempts = 6;
constexpr int kJournalRetryMs = 50;
constexpr int kConnectWaitSeconds = 10;
// A lock another program holds: it is named after this long, not waited on for minutes.
constexpr int kLockWaitSeconds = 5;
// The server's own statement time-out comes first; our watch cuts only a server that cannot end it.
constexpr auto kWatchMargin = std::chrono::seconds(5);

QString NextConnectionName()
{
    static QAtomicInt counter;
    return QStringLiteral("kalvo-archive-%1").arg(counter.fetchAndAddRelaxed(1));
}

QString Reason(const QSqlError &error)
{
    const QString text = error.text().trimmed();
    return text.isEmpty() ? QStringLiteral("unbekannter Fehler") : text;
}

// A file that does not start like an SQLite database is left alone: opening it would not harm it,
// but the first write would, and it may be something the user still needs.
bool LooksLikeSQLite(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(16);
    return head.isEmpty() || head == QByteArray("SQLite format 3\0", 16);
}

} // namespace

Archive::Archive(const ArchiveTarget &target, ArchiveAccess access)
    : m_target(target), m_access(access), m_connectionName(NextConnectionName())
{
    Connect();
    try {
        // Reading what the schema is takes no lock that another program's writing could hold up.
        m_version = StoredSchemaVersion();
        RefuseNewerSchema(*this, m_version);
        if (m_version < LatestSchemaVersion()) {
            if (m_access == ArchiveAccess::Read)
                throw Failure(QStringLiteral("lesen"),
                              m_version == 0 ? QStringLiteral("es ist leer: noch nichts importiert")
                                             : QStringLiteral("es hat Schema-Version %1 und wird erst beim "
                                                              "nächsten Schreiben auf %2 gebracht")
                                                   .arg(m_version)
                                                   .arg(LatestSchemaVersion()));
            if (!isPostgres())
                SetUpSQLite();
            m_version = ApplyMigrations(*this);
        }
    } catch (...) {
        m_watch.reset();
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_connectionName);
        throw;
    }
}

Archive::~Archive()
{
    m_watch.reset();
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

void Archive::Connect()
{
    const bool postgres = isPostgres();
    const QString driver = postgres ? QStringLiteral("QPSQL") : QStringLiteral("QSQLITE");
    if (!QSqlDatabase::isDriverAvailable(driver))
        throw Failure(QStringLiteral("öffnen"),
                      QStringLiteral("der Qt-Treiber %1 fehlt (Paket %2)")
                          .arg(driver, postgres ? QStringLiteral("libqt6sql6-psql")
                                                : QStringLiteral("libqt6sql6-sqlite")));
    if (!postgres) {
        const QFileInfo info(m_target.path);
        if (!info.exists() && m_access == ArchiveAccess::Read)
            // A mistyped name must not leave an empty archive behind.
            throw Failure(QStringLiteral("öffnen"), QStringLiteral("die Datei gibt es nicht"));
        if (info.exists() && !info.isFile())
            throw Failure(QStringLiteral("öffnen"), QStringLiteral("das ist keine Datei"));
        if (info.exists() && !LooksLikeSQLite(m_target.path))
            throw Failure(QStringLiteral("öffnen"),
                          QStringLiteral("die Datei ist keine SQLite-Datenbank; sie bleibt unverändert"));
        // Reading stays allowed on a share: it changes nothing, and a backup kept there can be checked.
        if (m_access == ArchiveAccess::Write && !m_target.privateCopy)
            RefuseNetworkVolume(m_target, ProbeVolume(m_target.path));
        if (!QDir().mkpath(info.absolutePath()))
            throw Failure(QStringLiteral("anlegen"),
                          QStringLiteral("der Ordner %1 lässt sich nicht anlegen").arg(info.absolutePath()));
    }
    OpenConnection();
    if (postgres) {
        const int wait = m_target.WaitSeconds();
        m_watch = std::make_unique<ServerWatch>(m_db, std::chrono::seconds(wait) + kWatchMargin);
        // The server ends what it can itself: a statement that runs too long, a lock held elsewhere
        // (a few seconds: another program is busy), a transaction left open by a client that hung.
        Exec(QStringLiteral("SET statement_timeout = %1").arg(wait * 1000));
        Exec(QStringLiteral("SET lock_timeout = %1").arg(std::min(wait, kLockWaitSeconds) * 1000));
        Exec(QStringLiteral("SET idle_in_transaction_session_timeout = %1").arg(wait * 1000));
        Exec(QStringLiteral("SET client_min_messages = warning"));
    } else {
        // Reading the schema is the first access to the file: a damaged one fails here, unwritten,
        // and so does a database of another program.
        QSqlQuery tables = Exec(QStringLiteral(
            "SELECT count(*), sum(name = 'schema_version') FROM sqlite_master WHERE type = 'table'"));
        if (Next(tables) && tables.value(0).toInt() > 0 && tables.value(1).toInt() == 0)
            throw Failure(QStringLiteral("öffnen"),
                          QStringLiteral("die Datei gehört einem anderen Programm "
                                         "(keine Tabelle schema_version); sie bleibt "
                                         "unverändert"));
        tables.finish();
        Exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
        // 32 MB of page cache: the indexes of a large archive stay in memory during an import (the
        // default 2 MB makes an import of a million records a third slower).
        Exec(QStringLiteral("PRAGMA cache_size = -32768"));
    }
}

void Archive::OpenConnection()
{
    const bool postgres = isPostgres();
    m_db = QSqlDatabase::addDatabase(postgres ? QStringLiteral("QPSQL") : QStringLiteral("QSQLITE"),
                                     m_connectionName);
    if (!m_db.isValid()) {
        // The plugin is there but would not load: its client library is missing (Windows without
        // libpq.dll); Qt's own "Driver not loaded" says nothing of that.
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_connectionName);
        throw Failure(QStringLiteral("öffnen"),
                      postgres ? QStringLiteral("PostgreSQL-Treiber nicht verfügbar: libpq fehlt")
                               : QStringLiteral("SQLite-Treiber nicht verfügbar"));
    }
    const int wait = m_target.WaitSeconds();
    if (postgres) {
        m_db.setHostName(m_target.host);
        if (m_target.port >= 0)
            m_db.setPort(m_target.port);
        m_db.setDatabaseName(m_target.database);
        m_db.setUserName(m_target.user);
        m_db.setPassword(m_target.password);
        // A server that cannot be reached, or whose machine or network went away: the keep-alives
        // notice a silent peer, the user time-out data that is never acknowledged.
        m_db.setConnectOptions(QStringLiteral("connect_timeout=%1;keepalives=1;keepalives_idle=%2;"
                                              "keepalives_interval=%3;keepalives_count=3;tcp_user_timeout=%4")
                                   .arg(std::min(wait, kConnectWaitSeconds))
                                   .arg(std::max(1, wait / 4))
                                   .arg(std::max(1, wait / 8))
                                   .arg(wait * 1000));
    } else {
        m_db.setDatabaseName(m_target.path);
        // Another program writing holds the lock for a moment; one that holds it longer is named.
        m_db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(wait * 1000));
    }
    if (!m_db.open()) {
        const QString reason = Reason(m_db.lastError());
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_connectionName);
        throw Failure(QStringLiteral("öffnen"), reason);
    }
}

void Archive::SetUpSQLite()
{
    // The write-ahead journal lets readers go on while another program writes. Changing to it needs
    // the file to itself: a second program creating the archive at the same moment makes it busy,
    // and SQLite does not wait for that by itself.
    const int waitMs = m_target.WaitSeconds() * 1000;
    for (int attempt = 1;; ++attempt) {
        try {
            Exec(QStringLiteral("PRAGMA journal_mode = WAL"));
            return;
        } catch (const ArchiveError &e) {
            if (attempt * kJournalRetryMs >= waitMs || e.nativeCode() != QLatin1String("5"))
                throw;
            QThread::msleep(kJournalRetryMs);
        }
    }
}

bool Archive::HasTable(const QString &name)
{
    QSqlQuery query =
        isPostgres()
            ? Exec(QStringLiteral("SELECT count(*) FROM information_schema.tables "
                                  "WHERE table_schema = current_schema() AND table_name = ?"),
                   {name})
            : Exec(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = ?"),
                   {name});
    return Next(query) && query.value(0).toInt() > 0;
}

int Archive::StoredSchemaVersion()
{
    if (!HasTable(QStringLiteral("schema_version")))
        return 0;
    QSqlQuery query = Exec(QStringLiteral("SELECT max(version) FROM schema_version"));
    return Next(query) ? query.value(0).toInt() : 0;
}

QSqlQuery Archive::Prepare(const QString &sql)
{
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    const ServerWatch::Wait wait(m_watch.get());
    if (!query.prepare(sql))
        throw Failure(QStringLiteral("vorbereiten von \"%1\"").arg(sql.simplified().left(80)),
                      Reason(query.lastError()));
    return query;
}

void Archive::Run(QSqlQuery &query, std::initializer_list<QVariant> values)
{
    int i = 0;
    for (const QVariant &value : values)
        query.bindValue(i++, value);
    const ServerWatch::Wait wait(m_watch.get());
    if (!query.exec())
        throw StatementFailure(query.lastQuery(), query.lastError());
}

QSqlQuery Archive::Exec(const QString &sql, std::initializer_list<QVariant> values)
{
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    if (values.size() == 0) {
        const ServerWatch::Wait wait(m_watch.get());
        if (!query.exec(sql))
            throw StatementFailure(sql, query.lastError());
        return query;
    }
    query = Prepare(sql);
    Run(query, values);
    return query;
}

bool Archive::Next(QSqlQuery &query)
{
    const ServerWatch::Wait wait(m_watch.get());
    if (query.next())
        return true;
    if (query.lastError().isValid())
        throw StatementFailure(query.lastQuery(), query.lastError());
    return false;
}

void Archive::Begin()
{
    // SQLite: take the write lock now, so that two importers queue instead of both reading and
    // then failing to upgrade their locks.
    Exec(isPostgres() ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE"));
}

void Archive::Rollback()
{
    const ServerWatch::Wait wait(m_watch.get());
    QSqlQuery(m_db).exec(QStringLiteral("ROLLBACK"));
}

bool Archive::IsRetryable(const QString &nativeCode) const
{
    // A lost race ends at once and is worth another try. SQLite's "busy" is not: it comes after the
    // whole wait for the other program, and trying again would only multiply that wait.
    if (isPostgres())
        return nativeCode == QLatin1String("40P01") || nativeCode == QLatin1String("40001");
    return nativeCode == QLatin1String("6");
}

QString Archive::WaitReason(const QString &nativeCode) const
{
    if (m_watch && m_watch->cut())
        return QStringLiteral("der Server hat %1 s lang nicht geantwortet; die Verbindung ist getrennt")
            .arg(std::chrono::duration_cast<std::chrono::seconds>(m_watch->limit()).count());
    const bool busy = isPostgres() ? nativeCode == QLatin1String("55P03") : nativeCode == QLatin1String("5");
    if (busy)
        return QStringLiteral("das Archiv wird von einem anderen Programm benutzt (%1 s gewartet)")
            .arg(isPostgres() ? std::min(m_target.WaitSeconds(), kLockWaitSeconds) : m_target.WaitSeconds());
    if (isPostgres() && nativeCode == QLatin1String("57014"))
        return QStringLiteral("der Server hat nicht in %1 s geantwortet").arg(m_target.WaitSeconds());
    return QString();
}

void Archive::InTransaction(const std::function<void()> &work)
{
    for (int attempt = 1;; ++attempt) {
        try {
            Begin();
            work();
            Exec(QStringLiteral("COMMIT"));
            return;
        } catch (const ArchiveError &e) {
            Rollback();
            if (attempt >= kAttempts || !IsRetryable(e.nativeCode()))
                throw;
            QThread::msleep(20 * attempt);
        } catch (...) {
            Rollback();
            throw;
        }
    }
}

void Archive::InBulkTransaction(const std::function<void()> &work)
{
    if (isPostgres()) {
        InTransaction(work);
        return;
    }
    // Set outside the transaction: SQLite decides where the undo copies go when it begins. Only
    // speed depends on it, so a connection that cannot change it now writes them to a file.
    QSqlQuery(m_db).exec(QStringLiteral("PRAGMA temp_store = MEMORY"));
    const auto restore =
        qScopeGuard([this] { QSqlQuery(m_db).exec(QStringLiteral("PRAGMA temp_store = DEFAULT")); });
    InTransaction(work);
}

ArchiveError Archive::StatementFailure(const QString &sql, const QSqlError &error) const
{
    // A wait that ran out is told in the user's words; the statement would only puzzle.
    const QString waited = WaitReason(error.nativeErrorCode());
    const ArchiveError failure =
        waited.isEmpty() ? Failure(QStringLiteral("ausführen von \"%1\"").arg(sql.simplified().left(80)),
                                   Reason(error) + QStringLiteral(" [%1]").arg(error.nativeErrorCode()))
                         : Failure(QStringLiteral("zugreifen"), waited);
    return ArchiveError(failure.text(), error.nativeErrorCode());
}

ArchiveError Archive::Failure(const QString &what, const QString &reason) const
{
    return ArchiveError(
        QStringLiteral("Archiv %1: %2 fehlgeschlagen: %3").arg(m_target.Describe(), what, reason));
}

QString ArchiveSql(const Archive &archive, QString sql)
{
    const bool pg = archive.isPostgres();
    sql.replace(QLatin1String("{ID}"), pg ? QLatin1String("BIGSERIAL PRIMARY KEY")
                                          : QLatin1String("INTEGER PRIMARY KEY AUTOINCREMENT"));
    sql.replace(QLatin1String("{BYTES}"), pg ? QLatin1String("BYTEA") : QLatin1String("BLOB"));
    sql.replace(QLatin1String("{TIMESTAMP}"), pg ? QLatin1String("TIMESTAMP") : QLatin1String("TEXT"));
    sql.replace(QLatin1String("{DATE}"), pg ? QLatin1String("DATE") : QLatin1String("TEXT"));
    return sql;
}

namespace {

// "yyyy-MM-dd" or "yyyy-MM-dd HH:mm:ss", written directly: an import stores two of them a record,
// and QDateTime::toString goes through the calendar and locale for each.
QString IsoText(const QDate &date, const QTime &time, bool withTime)
{
    int year = 0, month = 0, day = 0;
    date.getDate(&year, &month, &day);
    if (year < 0 || year > 9999) // QDate's range is wider than four digits
        return withTime ? QDateTime(date, time, Qt::UTC).toString(QLatin1String(kTimestampFormat))
                        : date.toString(QLatin1String(kDateFormat));
    QString text(withTime ? 19 : 10, Qt::Uninitialized);
    QChar *out = text.data();
    const auto put = [&out](int value, int digits, char16_t after) {
        for (int i = digits - 1; i >= 0; --i, value /= 10)
            out[i] = QChar(u'0' + value % 10);
        out += digits;
        if (after)
            *out++ = QChar(after);
    };
    put(year, 4, u'-');
    put(month, 2, u'-');
    put(day, 2, withTime ? u' ' : 0);
    if (withTime) {
        put(time.hour(), 2, u':');
        put(time.minute(), 2, u':');
        put(time.second(), 2, 0);
    }
    return text;
}

} // namespace

QVariant TimestampValue(const QDateTime &time)
{
    return time.isValid() ? QVariant(IsoText(time.date(), time.time(), true))
                          : QVariant(QMetaType::fromType<QString>());
}

QVariant DateValue(const QDate &date)
{
    return date.isValid() ? QVariant(IsoText(date, {}, false)) : QVariant(QMetaType::fromType<QString>());
}

QString TextValue(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

QDateTime TimestampFrom(const QVariant &value)
{
    if (value.isNull())
        return {};
    if (value.metaType() == QMetaType::fromType<QDateTime>()) {
        const QDateTime time = value.toDateTime();
        return QDateTime(time.date(), time.time(), Qt::UTC);
    }
    QDateTime time = QDateTime::fromString(value.toString().left(19), QLatin1String(kTimestampFormat));
    time.setTimeSpec(Qt::UTC);
    return time;
}

QDate DateFrom(const QVariant &value)
{
    if (value.isNull())
        return {};
    if (value.metaType() == QMetaType::fromType<QDate>())
        return value.toDate();
    if (value.metaType() == QMetaType::fromType<QDateTime>())
        return value.toDateTime().date();
    return QDate::fromString(value.toString().left(10), QLatin1String(kDateFormat));
}

} // namespace kalvo::archive
