// The archive's schema, built and upgraded by numbered steps recorded in schema_version.
#include "Migrations.h"

#include "Archive.h"
#include "ArchiveTypes.h"
#include "RetestIntervals.h"

#include <QSqlQuery>
#include <QStringList>

namespace kalvo::archive {

namespace {

// Step 1: records, devices with their next test, and the re-test intervals. A new step is appended,
// never changed: archives out there went through the old ones.
const QStringList kStep1 = {
    QStringLiteral("CREATE TABLE records ("
                   " id {ID},"
                   " sha256 TEXT NOT NULL UNIQUE,"
                   " raw {BYTES} NOT NULL,"
                   " tester_name TEXT NOT NULL,"
                   " device_id TEXT NOT NULL,"
                   " device_type TEXT NOT NULL,"
                   " tested_at {TIMESTAMP},"
                   " regulation TEXT NOT NULL,"
                   " failed INTEGER NOT NULL,"
                   " protection_class TEXT NOT NULL,"
                   " applied_part TEXT NOT NULL,"
                   " accessory_kind TEXT NOT NULL,"
                   " accessory_type TEXT NOT NULL,"
                   " maker TEXT NOT NULL,"
                   " accessory_device_id TEXT NOT NULL,"
                   " customer TEXT NOT NULL,"
                   " street TEXT NOT NULL,"
                   " post_code TEXT NOT NULL,"
                   " town TEXT NOT NULL,"
                   " source_tester TEXT NOT NULL,"
                   " source_serial TEXT NOT NULL,"
                   " source_accessory TEXT NOT NULL,"
                   " source_file TEXT NOT NULL,"
                   " imported_at {TIMESTAMP} NOT NULL,"
                   " type_key TEXT NOT NULL,"
                   " customer_key TEXT NOT NULL,"
                   " search_key TEXT NOT NULL)"),
    QStringLiteral("CREATE INDEX records_device ON records (device_id, tested_at)"),
    QStringLiteral("CREATE INDEX records_tested ON records (tested_at)"),
    QStringLiteral("CREATE TABLE devices ("
                   " device_id TEXT PRIMARY KEY,"
                   " device_type TEXT NOT NULL,"
                   " regulation TEXT NOT NULL,"
                   " last_tested_at {TIMESTAMP} NOT NULL,"
                   " last_record_id BIGINT NOT NULL,"
                   " next_test {DATE} NOT NULL)"),
    QStringLiteral("CREATE INDEX devices_next_test ON devices (next_test)"),
    QStringLiteral(
        "CREATE TABLE regulation_intervals (regulation TEXT PRIMARY KEY, months INTEGER NOT NULL)"),
    QStringLiteral("CREATE TABLE device_intervals (device_id TEXT PRIMARY KEY, months INTEGER NOT NULL)"),
};

const QList<QStringList> kSteps = {kStep1};

int CurrentVersion(Archive &archive)
{
    QSqlQuery query = archive.Exec(QStringLiteral("SELECT max(version) FROM schema_version"));
    return archive.Next(query) ? query.value(0).toInt() : 0;
}

void SeedIntervals(Archive &archive)
{
    QSqlQuery insert = archive.Prepare(
        QStringLiteral("INSERT INTO regulation_intervals (regulation, months) VALUES (?, ?)"));
    for (const auto &[regulation, months] : DefaultRegulationIntervals())
        archive.Run(insert, {regulation, months});
}

} // namespace

int LatestSchemaVersion()
{
    return static_cast<int>(kSteps.size());
}

void RefuseNewerSchema(const Archive &archive, int version)
{
    if (version > LatestSchemaVersion())
        throw archive.Failure(QStringLiteral("öffnen"),
                              QStringLiteral("es hat Schema-Version %1, dieses Programm kennt nur bis %2; "
                                             "bitte kalvo aktualisieren")
                                  .arg(version)
                                  .arg(LatestSchemaVersion()));
}

int ApplyMigrations(Archive &archive)
{
    int version = 0;
    archive.InTransaction([&] {
        if (archive.isPostgres())
            // Two programs meeting a new database: the second waits here and then finds it done.
            archive.Exec(QStringLiteral("SELECT pg_advisory_xact_lock(7405726)"));
        archive.Exec(ArchiveSql(archive, QStringLiteral("CREATE TABLE IF NOT EXISTS schema_version ("
                                                        " version INTEGER PRIMARY KEY,"
                                                        " applied_at {TIMESTAMP} NOT NULL)")));
        version = CurrentVersion(archive);
        RefuseNewerSchema(archive, version);
        for (; version < LatestSchemaVersion(); ++version) {
            for (const QString &statement : kSteps[version])
                archive.Exec(ArchiveSql(archive, statement));
            if (version == 0)
                SeedIntervals(archive);
            archive.Exec(QStringLiteral("INSERT INTO schema_version (version, applied_at) VALUES (?, ?)"),
                         {version + 1, TimestampValue(QDateTime::currentDateTimeUtc())});
        }
    });
    return version;
}

} // namespace kalvo::archive
