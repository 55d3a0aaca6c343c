// A backup of a running archive into a portable SQLite file, and the way back into an empty archive.
#include "ArchiveBackup.h"

#include "Archive.h"
#include "ArchiveQueries.h"
#include "BackupReminder.h"
#include "Migrations.h"
#include "TableCopy.h"

#include <QAtomicInt>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QThread>

namespace kalvo::archive {

namespace {

const QStringList kSideFiles = {QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral("-journal")};

ArchiveError BackupFailure(const QString &file, const QString &reason)
{
    return ArchiveError(QStringLiteral("Sicherung %1: %2").arg(QDir::toNativeSeparators(file), reason));
}

int Percent(qint64 done, qint64 total)
{
    return total > 0 ? static_cast<int>(done * 100 / total) : 100;
}

ArchiveTarget FileTarget(const QString &path)
{
    ArchiveTarget target;
    target.path = path;
    target.privateCopy = true;
    return target;
}

void RemoveWithSideFiles(const QString &path)
{
    QFile::remove(path);
    for (const QString &suffix : kSideFiles)
        QFile::remove(path + suffix);
}

// From a PostgreSQL server: an empty archive made by the migrations, filled from one snapshot of
// the server (a read-only transaction that sees the data as they were at its start).
void CopyFromServer(Archive &archive, Archive &copy, const BackupProgress &progress)
{
    archive.Exec(QStringLiteral("BEGIN TRANSACTION ISOLATION LEVEL REPEATABLE READ, READ ONLY"));
    auto rollback =
        qScopeGuard([&archive] { QSqlQuery(archive.database()).exec(QStringLiteral("ROLLBACK")); });
    copy.InBulkTransaction([&] {
        CopyTables(archive, copy, [&progress](qint64 done, qint64 total) {
            if (progress)
                progress(Percent(done, total) * 95 / 100);
        });
    });
    rollback.dismiss();
    archive.Exec(QStringLiteral("COMMIT"));
}

// The version of the archive in `file`, read without changing it; 0 when it cannot be read (the
// archive's own opening then says why).
int StoredVersion(const QString &file)
{
    static QAtomicInt counter;
    const QString name = QStringLiteral("kalvo-backup-%1").arg(counter.fetchAndAddRelaxed(1));
    int version = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (db.open()) {
            QSqlQuery query(db);
            if (query.exec(QStringLiteral("SELECT max(version) FROM schema_version")) && query.next())
                version = query.value(0).toInt();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return version;
}

// The backup opened to be read; one of an older schema is copied to `work` and brought up to date
// there, since the file itself is never changed.
std::unique_ptr<Archive> OpenBackup(const QString &file, const QTemporaryDir &work)
{
    const QFileInfo info(file);
    if (!info.isFile())
        throw BackupFailure(file, QStringLiteral("die Datei gibt es nicht"));
    const int version = StoredVersion(file);
    if (version > 0 && version < LatestSchemaVersion()) {
        const QString copy = work.filePath(QStringLiteral("backup.sqlite"));
        if (!work.isValid() || !QFile::copy(file, copy))
            throw BackupFailure(file, QStringLiteral("keine Arbeitskopie möglich, um das ältere Schema zu "
                                                     "aktualisieren"));
        QFile(copy).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        return std::make_unique<Archive>(FileTarget(copy), ArchiveAccess::Write);
    }
    ArchiveTarget target = FileTarget(file);
    return std::make_unique<Archive>(target, ArchiveAccess::Read);
}

const QString kNothingRestored = QStringLiteral("; nichts wiederhergestellt");

// What the database said of a file it could not read, as the reason a backup is refused.
ArchiveError Unreadable(const QString &file, const ArchiveError &e)
{
    if (e.text().startsWith(QLatin1String("Sicherung ")))
        return e;
    return BackupFailure(file, QStringLiteral("die Datei ist beschädigt oder keine Sicherung: %1%2")
                                   .arg(e.text(), kNothingRestored));
}

// A backup is taken only when every page can be read and every record still has its bytes.
std::unique_ptr<Archive> OpenSoundBackup(const QString &file, const QTemporaryDir &work)
{
    std::unique_ptr<Archive> backup;
    VerifyResult verified;
    try {
        backup = OpenBackup(file, work);
        QSqlQuery check = backup->Exec(QStringLiteral("PRAGMA quick_check"));
        QStringList problems;
        while (backup->Next(check))
            if (check.value(0).toString() != QLatin1String("ok"))
                problems << check.value(0).toString();
        if (!problems.isEmpty())
            throw BackupFailure(file,
                                QStringLiteral("die Datei ist beschädigt (%1)%2")
                                    .arg(problems.mid(0, 3).join(QLatin1String("; ")), kNothingRestored));
        verified = VerifyArchive(*backup);
    } catch (const ArchiveError &e) {
        throw Unreadable(file, e);
    }
    if (!verified.changed.isEmpty())
        throw BackupFailure(file, QStringLiteral("%1 Protokolle passen nicht mehr zu ihrer Prüfsumme (zuerst "
                                                 "Nr %2)%3")
                                      .arg(verified.changed.size())
                                      .arg(verified.changed.first().id)
                                      .arg(kNothingRestored));
    return backup;
}

} // namespace

BackupResult BackupArchive(Archive &archive, const QString &file, const BackupProgress &progress,
                           bool replace)
{
    const QFileInfo info(QFileInfo(file).absoluteFilePath());
    if (!archive.isPostgres() &&
        info.canonicalFilePath() == QFileInfo(archive.target().path).canonicalFilePath())
        throw BackupFailure(file, QStringLiteral("das ist das Archiv selbst"));
    if (info.exists() && (!replace || !info.isFile()))
        throw BackupFailure(file, QStringLiteral("die Datei gibt es schon; sie bleibt unverändert"));
    if (!info.dir().exists())
        throw BackupFailure(
            file,
            QStringLiteral("den Ordner %1 gibt es nicht").arg(QDir::toNativeSeparators(info.absolutePath())));

    // A name of its own beside the file, so that the last step is a rename on the same volume.
    // The reserving object is gone before SQLite writes the file: Windows renames no file that
    // something still holds.
    const QString part = [&] {
        QTemporaryFile reserved(info.dir().filePath(QStringLiteral(".%1-XXXXXX.part").arg(info.fileName())));
        if (!reserved.open())
            throw BackupFailure(
                file,
                QStringLiteral("im Ordner lässt sich keine Datei anlegen: %1").arg(reserved.errorString()));
        reserved.setAutoRemove(false); // removed below with the files SQLite puts beside it
        return reserved.fileName();
    }();
    auto cleanUp = qScopeGuard([&part] { RemoveWithSideFiles(part); });

    if (progress)
        progress(0);
    BackupResult result;
    try {
        std::unique_ptr<Archive> copy;
        if (archive.isPostgres()) {
            copy = std::make_unique<Archive>(FileTarget(part), ArchiveAccess::Write);
            CopyFromServer(archive, *copy, progress);
        } else {
            // One statement, one snapshot: other programs go on writing meanwhile.
            archive.Exec(QStringLiteral("VACUUM INTO ?"), {QDir::toNativeSeparators(part)});
            copy = std::make_unique<Archive>(FileTarget(part), ArchiveAccess::Write);
        }
        // One file to carry away: no write-ahead log beside it.
        copy->Exec(QStringLiteral("PRAGMA journal_mode = DELETE"));
        result.records = CountRows(*copy, QStringLiteral("records"));
    } catch (const ArchiveError &e) {
        throw BackupFailure(file, QStringLiteral("nicht geschrieben: %1").arg(e.text()));
    }
    // Readable like any file the user makes; the temporary name was the owner's alone.
    QFile::setPermissions(part, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                                    QFileDevice::ReadOther);
    if (replace && info.exists() && !QFile::remove(info.absoluteFilePath()))
        throw BackupFailure(file, QStringLiteral("die alte Datei lässt sich nicht ersetzen"));
    // A virus scanner or an indexer may hold a new file on Windows for a moment: a few tries.
    QFile renamed(part);
    for (int tries = 1; !renamed.rename(info.absoluteFilePath()); ++tries) {
        if (tries == 20 || !QFile::exists(part) || QFile::exists(info.absoluteFilePath()))
            throw BackupFailure(file, QStringLiteral("nicht geschrieben: %1").arg(renamed.errorString()));
        QThread::msleep(100);
    }
    cleanUp.dismiss();
    result.bytes = QFileInfo(info.absoluteFilePath()).size();
    RememberBackup(archive.target(), QDateTime::currentDateTimeUtc());
    if (progress)
        progress(100);
    return result;
}

RestoreResult RestoreArchive(Archive &target, const QString &file, const BackupProgress &progress)
{
    const auto refuseUnlessEmpty = [&target] {
        const qint64 records = CountRows(target, QStringLiteral("records"));
        if (records > 0 || CountRows(target, QStringLiteral("devices")) > 0)
            throw target.Failure(
                QStringLiteral("wiederherstellen"),
                QStringLiteral("es enthält schon %1 Protokolle; wiederhergestellt wird nur in "
                               "ein leeres Archiv")
                    .arg(records));
    };
    refuseUnlessEmpty();
    const QTemporaryDir work;
    const std::unique_ptr<Archive> backup = OpenSoundBackup(file, work);
    RestoreResult result;
    target.InBulkTransaction([&] {
        refuseUnlessEmpty(); // another program may have imported since
        result.rows = CopyTables(*backup, target, [&progress](qint64 done, qint64 total) {
            if (progress)
                progress(Percent(done, total));
        });
        result.records = CountRows(target, QStringLiteral("records"));
    });
    return result;
}

} // namespace kalvo::archive
