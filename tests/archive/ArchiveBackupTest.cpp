// Backups of a running archive, restoring them into an empty one, and archives on network shares.
#include "ArchiveSamples.h"

#include "archive/ArchiveBackup.h"
#include "archive/ArchiveQueries.h"
#include "archive/ArchiveVolume.h"
#include "archive/BackupReminder.h"
#include "archive/RecordImport.h"
#include "archive/RetestIntervals.h"
#include "archive/TableCopy.h"
#include "platform/Volumes.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QSqlQuery>
#include <atomic>
#include <thread>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

constexpr int kBatch = 100;

QByteArray Bytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList Entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// What an archive holds that a backup must keep: every record's hash and where it came from, each
// device's newest record and next test, the intervals.
QStringList Content(Archive &archive)
{
    QStringList rows;
    QSqlQuery records = archive.Exec(QStringLiteral(
        "SELECT id, sha256, device_id, tested_at, source_file, imported_at FROM records ORDER BY id"));
    while (archive.Next(records))
        rows << QStringLiteral("record %1 %2 %3 %4 %5 %6")
                    .arg(records.value(0).toString(), records.value(1).toString(),
                         records.value(2).toString(),
                         TimestampValue(TimestampFrom(records.value(3))).toString(),
                         records.value(4).toString(),
                         TimestampValue(TimestampFrom(records.value(5))).toString());
    for (const DueDevice &d : DueDevices(archive, QDate(2200, 1, 1)))
        rows << QStringLiteral("device %1 %2 %3 %4")
                    .arg(d.deviceId, d.nextTest.toString(Qt::ISODate))
                    .arg(d.lastRecordId)
                    .arg(d.intervalMonths);
    QSqlQuery intervals = archive.Exec(
        QStringLiteral("SELECT regulation, months FROM regulation_intervals ORDER BY regulation"));
    while (archive.Next(intervals))
        rows << QStringLiteral("interval %1 %2")
                    .arg(intervals.value(0).toString(), intervals.value(1).toString());
    return rows;
}

// A device's newest record in the devices table is the newest record of the device in records.
void ExpectDevicesMatchTheirRecords(Archive &archive)
{
    QSqlQuery query =
        archive.Exec(QStringLiteral("SELECT d.device_id, d.last_record_id, d.last_tested_at, r.id, "
                                    "(SELECT max(tested_at) FROM records n WHERE n.device_id = d.device_id) "
                                    "FROM devices d LEFT JOIN records r ON r.id = d.last_record_id"));
    int devices = 0;
    while (archive.Next(query)) {
        ++devices;
        SCOPED_TRACE(query.value(0).toString().toStdString());
        EXPECT_FALSE(query.value(3).isNull()) << "its newest record is not in the copy";
        EXPECT_EQ(TimestampFrom(query.value(2)), TimestampFrom(query.value(4)));
    }
    EXPECT_GT(devices, 0);
}

class ArchiveBackupTest : public OnBothBackendsOpen {
protected:
    QString BackupPath() const { return m_dir.filePath(QStringLiteral("sicherung.sqlite")); }

    QTemporaryDir m_dir;
};

TEST_P(ArchiveBackupTest, ABackupTakenDuringAnImportIsConsistentAndRestoresOnEitherDatabase)
{
    const QList<QByteArray> records = ManyRecords(60 * kBatch, 300);
    ImportRecords(archive(), records.mid(0, 10 * kBatch),
                  {QStringLiteral("COM 1"), QStringLiteral("4711"), {}, {}});
    SetRegulationInterval(archive(), QStringLiteral("DIN VDE 0702"), 6);

    // Another program imports a batch a transaction while the backup is taken.
    std::atomic<int> batches{0};
    QString importError;
    std::thread importer([&] {
        try {
            Archive own(ParseArchiveUrl(m_place->url()));
            for (int start = 10 * kBatch; start < records.size(); start += kBatch) {
                ImportRecords(own, records.mid(start, kBatch), {});
                ++batches;
            }
        } catch (const link::KalvoError &e) {
            importError = e.message();
        }
    });
    while (batches < 3)
        std::this_thread::yield();
    BackupResult backup;
    QString backupError;
    int lastPercent = -1;
    try {
        backup = BackupArchive(archive(), BackupPath(), [&](int percent) {
            EXPECT_GE(percent, lastPercent);
            lastPercent = percent;
        });
    } catch (const ArchiveError &e) {
        backupError = e.text();
    }
    const int batchesDuringBackup = batches;
    importer.join();
    ASSERT_TRUE(importError.isEmpty()) << importError.toStdString();
    ASSERT_TRUE(backupError.isEmpty()) << backupError.toStdString();
    EXPECT_EQ(lastPercent, 100);
    EXPECT_EQ(Entries(m_dir.path()), QStringList{QStringLiteral("sicherung.sqlite")});

    // The copy is the archive at one moment: whole imports only, every record as it was stored.
    Archive copy(ParseArchiveUrl(BackupPath()), ArchiveAccess::Read);
    EXPECT_EQ(copy.schemaVersion(), archive().schemaVersion());
    const qint64 copied = CountRecords(copy, {});
    EXPECT_EQ(backup.records, copied);
    EXPECT_EQ(backup.bytes, QFileInfo(BackupPath()).size());
    EXPECT_EQ(copied % kBatch, 0) << copied;
    EXPECT_GE(copied, 13 * kBatch);
    EXPECT_LE(copied, (10 + batchesDuringBackup + 1) * kBatch);
    const VerifyResult verified = VerifyArchive(copy);
    EXPECT_EQ(verified.checked, copied);
    EXPECT_TRUE(verified.changed.isEmpty());
    ExpectDevicesMatchTheirRecords(copy);
    const QStringList content = Content(copy);

    // Into an empty archive on each database; it then takes the next records where the copy ended.
    for (const Backend backend : {Backend::SQLite, Backend::PostgreSQL}) {
        SCOPED_TRACE(BackendName(::testing::TestParamInfo<Backend>(backend, 0)));
        if (backend == Backend::PostgreSQL && !PostgresCluster::Available())
            continue;
        ArchivePlace place(backend);
        ASSERT_TRUE(place.error().isEmpty()) << place.error().toStdString();
        const std::unique_ptr<Archive> target = place.Open();
        const RestoreResult restored = RestoreArchive(*target, BackupPath());
        EXPECT_EQ(restored.records, copied);
        EXPECT_TRUE(VerifyArchive(*target).changed.isEmpty());
        EXPECT_EQ(Content(*target), content);
        const ImportResult more = ImportRecords(*target, records.mid(copied, kBatch), {});
        EXPECT_EQ(more.added, kBatch);
        EXPECT_EQ(CountRecords(*target, {}), copied + kBatch);
    }
    EXPECT_EQ(Content(copy), content); // the backup itself is only read
}

// A backup that kalvo of the first schema made (data/) restores into today's archive: brought up to
// date in a copy, its records keep their bytes, and the two customers' E-0815 stay two devices.
TEST_P(ArchiveBackupTest, ABackupOfTheFirstSchemaRestoresIntoTodaysArchive)
{
    const QString fixture = QStringLiteral(KALVO_ARCHIVE_DATA "/archive-schema1.sqlite");
    ASSERT_TRUE(QFile::copy(fixture, BackupPath()));
    QFile::setPermissions(BackupPath(), QFile::ReadOwner);
    const QByteArray before = [&] {
        QFile file(BackupPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    EXPECT_EQ(RestoreArchive(archive(), BackupPath()).records, 8);
    EXPECT_TRUE(VerifyArchive(archive()).changed.isEmpty());
    QStringList e0815;
    for (const DueDevice &d : DueDevices(archive(), QDate(2030, 1, 1)))
        if (d.deviceId == QLatin1String("E-0815"))
            e0815 << d.customerName + QLatin1Char(' ') + d.nextTest.toString(Qt::ISODate);
    EXPECT_EQ(e0815, (QStringList{"Mueller GmbH 2024-07-12", "Schmidt KG 2024-12-03"}));
    QFile after(BackupPath());
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll(), before); // the backup itself is only read
}

TEST_P(ArchiveBackupTest, RestoreIntoAnArchiveThatHoldsRecordsIsRefusedAndChangesNothing)
{
    ImportRecords(archive(), ManyRecords(30, 5), {});
    BackupArchive(archive(), BackupPath());
    const QStringList before = Content(archive());
    try {
        RestoreArchive(archive(), BackupPath());
        ADD_FAILURE() << "restored into an archive that holds records";
    } catch (const ArchiveError &e) {
        EXPECT_TRUE(e.text().contains(QStringLiteral("nur in ein leeres Archiv"))) << e.text().toStdString();
    }
    EXPECT_EQ(Content(archive()), before);

    // An existing file is not overwritten unless asked to be.
    EXPECT_THROW(BackupArchive(archive(), BackupPath()), ArchiveError);
    ImportRecords(archive(), {MakeRecord({.device = "NEU"})}, {});
    EXPECT_EQ(BackupArchive(archive(), BackupPath(), {}, true).records, 31);
}

TEST_P(ArchiveBackupTest, ADamagedBackupIsRefusedWithItsNameAndNothingIsRestored)
{
    ImportRecords(archive(), ManyRecords(2000, 20), {});
    BackupArchive(archive(), BackupPath());
    const QByteArray good = Bytes(BackupPath());
    const QString changedRecord = m_dir.filePath(QStringLiteral("verändert.sqlite"));
    QFile::copy(BackupPath(), changedRecord);
    {
        Archive edit(ParseArchiveUrl(changedRecord));
        edit.Exec(QStringLiteral("UPDATE records SET raw = ? WHERE id = 77"),
                  {QByteArray("PX;falsch;$FF\r\n")});
        edit.Exec(QStringLiteral("PRAGMA journal_mode = DELETE"));
    }
    const auto writeFile = [this](const QString &name, const QByteArray &bytes) {
        QFile file(m_dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    };
    const struct {
        const char *name;
        QString file;
        const char *says;
    } cases[] = {
        {"pages overwritten",
         writeFile(QStringLiteral("kaputt.sqlite"),
                   QByteArray(good).replace(good.size() / 2, 20000, QByteArray(20000, '\x5a'))),
         "beschädigt"},
        {"cut short", writeFile(QStringLiteral("halb.sqlite"), good.left(good.size() / 2)), "beschädigt"},
        {"no database", writeFile(QStringLiteral("text.sqlite"), "kein Archiv\n"), "keine SQLite-Datenbank"},
        {"a record changed", changedRecord,
         "1 Protokolle passen nicht mehr zu ihrer Prüfsumme (zuerst Nr 77)"},
        {"missing", m_dir.filePath(QStringLiteral("fehlt.sqlite")), "gibt es nicht"},
    };
    ArchivePlace place(GetParam());
    const std::unique_ptr<Archive> target = place.Open();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray bytes = Bytes(c.file);
        try {
            RestoreArchive(*target, c.file);
            ADD_FAILURE() << "restored a damaged backup";
        } catch (const ArchiveError &e) {
            EXPECT_TRUE(e.text().contains(QFileInfo(c.file).fileName())) << e.text().toStdString();
            EXPECT_TRUE(e.text().contains(QString::fromUtf8(c.says))) << e.text().toStdString();
        }
        EXPECT_EQ(Bytes(c.file), bytes);
        EXPECT_EQ(CountRecords(*target, {}), 0);
    }
    EXPECT_EQ(RestoreArchive(*target, BackupPath()).records, 2000);
}

INSTANTIATE_TEST_SUITE_P(Both, ArchiveBackupTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         BackendName);

TEST(ArchiveBackupFile, ABackupThatFailsLeavesNoFileBehind)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("archive.sqlite"));
    {
        Archive writer(ParseArchiveUrl(path));
        ImportRecords(writer, ManyRecords(50), {});
        // Without the write-ahead log, so that a program holding the file keeps readers out as well.
        writer.Exec(QStringLiteral("PRAGMA journal_mode = DELETE"));
    }
    Archive archive(ParseArchiveUrl(QStringLiteral("sqlite://") + path + QStringLiteral("?wait=1")),
                    ArchiveAccess::Read);
    QTemporaryDir out;
    const QString backup = out.filePath(QStringLiteral("sicherung.sqlite"));
    {
        // Another program keeps the file to itself: the snapshot cannot be read.
        const OtherProgram other(path, true);
        EXPECT_THROW(BackupArchive(archive, backup), ArchiveError);
    }
    EXPECT_TRUE(Entries(out.path()).isEmpty()) << Entries(out.path()).join(QLatin1Char(' ')).toStdString();
    // Into a folder that is not there, or over the archive itself.
    EXPECT_THROW(BackupArchive(archive, out.filePath(QStringLiteral("fehlt/sicherung.sqlite"))),
                 ArchiveError);
    const QByteArray before = Bytes(path);
    EXPECT_THROW(BackupArchive(archive, path, {}, true), ArchiveError);
    EXPECT_EQ(Bytes(path), before);
    EXPECT_TRUE(Entries(out.path()).isEmpty());

    // A folder the user may not write to (where the system keeps them from it: not for root).
    QFile::setPermissions(out.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    if (QFile probe(out.filePath(QStringLiteral("probe"))); !probe.open(QIODevice::WriteOnly)) {
        try {
            BackupArchive(archive, backup);
            ADD_FAILURE() << "wrote into a folder without the right to";
        } catch (const ArchiveError &e) {
            EXPECT_TRUE(e.text().contains(QStringLiteral("lässt sich keine Datei anlegen")))
                << e.text().toStdString();
        }
        EXPECT_TRUE(Entries(out.path()).isEmpty());
    } else {
        probe.remove();
    }
    QFile::setPermissions(out.path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    EXPECT_EQ(BackupArchive(archive, backup).records, 50);
}

TEST(ArchiveBackupFile, TheLastBackupIsRememberedPerArchiveAndARemindedAfterThirtyDays)
{
    QTemporaryDir dir;
    const ArchiveTarget target = ParseArchiveUrl(dir.filePath(QStringLiteral("archive.sqlite")));
    const ArchiveTarget other = ParseArchiveUrl(dir.filePath(QStringLiteral("anderes.sqlite")));
    Archive archive(target);
    EXPECT_FALSE(LastBackup(target).isValid());
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    BackupArchive(archive, dir.filePath(QStringLiteral("sicherung.sqlite")));
    EXPECT_GE(LastBackup(target), before);
    EXPECT_FALSE(LastBackup(other).isValid());

    const QDateTime now(QDate(2026, 3, 31), QTime(12, 0), Qt::UTC);
    const struct {
        QDateTime last;
        bool records;
        bool due;
    } cases[] = {
        {{}, true, true},
        {{}, false, false},
        {now.addDays(-30), true, false},
        {now.addDays(-31), true, true},
        {now.addDays(-31), false, false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(BackupIsDue(c.last, now, c.records), c.due) << c.last.toString(Qt::ISODate).toStdString();
}

// Volume types: Linux's statfs numbers of the shares, and local ones.
TEST(ArchiveVolume, NetworkFileSystemsAreKnownByTheirType)
{
    const struct {
        quint64 type;
        bool network;
    } cases[] = {{0x6969, true},      {0x517B, true},      {0xFF534D42, true},
                 {0xFE534D42, true},  {0x01021997, true},  {0xEF53, false},
                 {0x01021994, false}, {0x65735546, false}, {0x9123683E, false}};
    for (const auto &c : cases)
        EXPECT_EQ(platform::VolumeOfLinuxType(c.type).network, c.network) << std::hex << c.type;
    EXPECT_FALSE(platform::VolumeOf(QDir::tempPath()).network);
}

platform::Volume OnCifs(const QString &)
{
    return platform::VolumeOfLinuxType(0xFF534D42);
}

TEST(ArchiveVolume, AnArchiveOnAShareIsRefusedForWritingAndLeftUntouchedButCanBeRead)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("archive.sqlite"));
    ImportRecords(*std::make_unique<Archive>(ParseArchiveUrl(path)), ManyRecords(20), {});
    const QByteArray before = Bytes(path);
    const VolumeProbe previous = SetVolumeProbe(&OnCifs);
    const auto restore = qScopeGuard([previous] { SetVolumeProbe(previous); });
    for (const QString &file : {path, dir.filePath(QStringLiteral("neu/archive.sqlite"))}) {
        try {
            Archive archive(ParseArchiveUrl(file));
            ADD_FAILURE() << "opened an archive on a share to write";
        } catch (const ArchiveError &e) {
            EXPECT_TRUE(e.text().contains(QStringLiteral("Netzlaufwerk (cifs)"))) << e.text().toStdString();
            EXPECT_TRUE(e.text().contains(QStringLiteral("PostgreSQL"))) << e.text().toStdString();
        }
    }
    EXPECT_EQ(Bytes(path), before);
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("neu"))));
    Archive reader(ParseArchiveUrl(path), ArchiveAccess::Read);
    EXPECT_EQ(CountRecords(reader, {}), 20);
    // A backup is a file of its own: it may be put on a share.
    EXPECT_EQ(BackupArchive(reader, dir.filePath(QStringLiteral("sicherung.sqlite"))).records, 20);
}

} // namespace
