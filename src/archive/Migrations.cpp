// The archive's schema, built and upgraded by numbered steps recorded in schema_version.
#include "Migrations.h"

#include "Archive.h"
#include "ArchiveTypes.h"
#include "RetestIntervals.h"

#include <QHash>
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

// Step 2: customers. A device is one ID-Nr at one customer, with data of its own kept apart from
// the records; every import and every change of a device is a row. The statements before the
// fill add the tables and sort the records to their customers; the fill rebuilds the devices; the
// statements after it drop what the new devices replace.
const QStringList kStep2 = {
    QStringLiteral("CREATE TABLE customers ("
                   " id {ID},"
                   " name TEXT NOT NULL UNIQUE,"
                   " street TEXT NOT NULL,"
                   " post_code TEXT NOT NULL,"
                   " town TEXT NOT NULL,"
                   " created_at {TIMESTAMP} NOT NULL)"),
    QStringLiteral("CREATE TABLE imports ("
                   " id {ID},"
                   " imported_at {TIMESTAMP} NOT NULL,"
                   " source_tester TEXT NOT NULL,"
                   " source_serial TEXT NOT NULL,"
                   " source_file TEXT NOT NULL,"
                   " system_user TEXT NOT NULL,"
                   " host TEXT NOT NULL,"
                   " kalvo_version TEXT NOT NULL,"
                   " customer_id BIGINT NOT NULL,"
                   " added INTEGER NOT NULL,"
                   " known INTEGER NOT NULL,"
                   " refused INTEGER NOT NULL)"),
    QStringLiteral("CREATE TABLE device_changes ("
                   " id {ID},"
                   " changed_at {TIMESTAMP} NOT NULL,"
                   " system_user TEXT NOT NULL,"
                   " host TEXT NOT NULL,"
                   " customer_id BIGINT NOT NULL,"
                   " device_id TEXT NOT NULL,"
                   " field TEXT NOT NULL,"
                   " old_value TEXT NOT NULL,"
                   " new_value TEXT NOT NULL)"),
    QStringLiteral(
        "CREATE INDEX device_changes_device ON device_changes (customer_id, device_id, changed_at)"),
    QStringLiteral("ALTER TABLE records ADD COLUMN customer_id BIGINT NOT NULL DEFAULT 0"),
    QStringLiteral("ALTER TABLE records ADD COLUMN import_id BIGINT"),
    // A customer named by records gets the address of its newest one, and counts from its first.
    QStringLiteral("INSERT INTO customers (name, street, post_code, town, created_at)"
                   " SELECT r.customer, r.street, r.post_code, r.town, f.first FROM records r"
                   " JOIN (SELECT customer, max(id) AS newest, min(imported_at) AS first FROM records"
                   " WHERE customer <> '' GROUP BY customer) f ON r.id = f.newest"),
    QStringLiteral("UPDATE records SET customer_id = (SELECT c.id FROM customers c WHERE c.name ="
                   " records.customer) WHERE customer <> ''"),
    QStringLiteral("ALTER TABLE devices RENAME TO devices_v1"),
    QStringLiteral("DROP INDEX devices_next_test"),
    QStringLiteral("CREATE TABLE devices ("
                   " customer_id BIGINT NOT NULL,"
                   " device_id TEXT NOT NULL,"
                   " device_type TEXT NOT NULL,"
                   " regulation TEXT NOT NULL,"
                   " last_tested_at {TIMESTAMP} NOT NULL,"
                   " last_record_id BIGINT NOT NULL,"
                   " next_test {DATE} NOT NULL,"
                   " interval_months INTEGER,"
                   " given_type TEXT NOT NULL DEFAULT '',"
                   " manufacturer TEXT NOT NULL DEFAULT '',"
                   " location TEXT NOT NULL DEFAULT '',"
                   " remarks TEXT NOT NULL DEFAULT '',"
                   " out_of_service INTEGER NOT NULL DEFAULT 0,"
                   " retired INTEGER NOT NULL DEFAULT 0,"
                   " PRIMARY KEY (customer_id, device_id))"),
};
const QStringList kStep2After = {
    QStringLiteral("DROP TABLE devices_v1"),
    QStringLiteral("DROP TABLE device_intervals"),
    // Due lists and their counts: only devices in use are due, and the index holds only those.
    QStringLiteral(
        "CREATE INDEX devices_next_test ON devices (next_test) WHERE retired = 0 AND out_of_service = 0"),
    QStringLiteral("CREATE INDEX devices_customer_next ON devices (customer_id, next_test)"
                   " WHERE retired = 0 AND out_of_service = 0"),
    // The few devices with an interval of their own, read at every import.
    QStringLiteral(
        "CREATE INDEX devices_own_interval ON devices (interval_months) WHERE interval_months IS NOT NULL"),
    QStringLiteral("CREATE INDEX records_customer_device ON records (customer_id, device_id, tested_at)"),
};

void SeedIntervals(Archive &archive);
void SortRecordsToCustomers(Archive &archive);

struct Step {
    QStringList statements;
    void (*fill)(Archive &);
    QStringList after;
};

const QList<Step> kSteps = {{kStep1, SeedIntervals, {}}, {kStep2, SortRecordsToCustomers, kStep2After}};

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

// The records without a customer of their own go to kNoCustomer; then every device that had a dated
// test becomes one device a customer, each counting its next test from its own newest test. An
// interval a device had carries over to every device of its ID-Nr; where the old row's newest test
// is the new device's, its next test is taken as it was.
void SortRecordsToCustomers(Archive &archive)
{
    const QVariant now = TimestampValue(QDateTime::currentDateTimeUtc());
    archive.Exec(QStringLiteral("INSERT INTO customers (name, street, post_code, town, created_at)"
                                " SELECT ?, '', '', '', ? WHERE NOT EXISTS"
                                " (SELECT 1 FROM customers WHERE name = ?)"),
                 {kNoCustomer, now, kNoCustomer});
    archive.Exec(QStringLiteral("UPDATE records SET customer_id = (SELECT id FROM customers WHERE name = ?)"
                                " WHERE customer = ''"),
                 {kNoCustomer});
    QHash<QString, int> ownMonths;
    QSqlQuery own = archive.Exec(QStringLiteral("SELECT device_id, months FROM device_intervals"));
    while (archive.Next(own))
        ownMonths.insert(own.value(0).toString(), own.value(1).toInt());
    QHash<qint64, QDate> keptNextTests; // by the old rows' newest record
    QSqlQuery old = archive.Exec(QStringLiteral("SELECT last_record_id, next_test FROM devices_v1"));
    while (archive.Next(old))
        keptNextTests.insert(old.value(0).toLongLong(), DateFrom(old.value(1)));
    const RetestIntervals intervals = LoadIntervals(archive);

    // The newest dated record of each (customer, device): the last of its key in this order. The
    // rows are collected first (one a device): a server's answer cannot be read past another
    // statement.
    QSqlQuery select = archive.Exec(QStringLiteral(
        "SELECT customer_id, device_id, device_type, regulation, tested_at, id FROM records"
        " WHERE device_id <> '' AND tested_at IS NOT NULL ORDER BY customer_id, device_id, tested_at, id"));
    QList<QVariantList> devices;
    while (archive.Next(select)) {
        const qint64 customer = select.value(0).toLongLong();
        const QString device = select.value(1).toString();
        const QString regulation = select.value(3).toString();
        const QDateTime tested = TimestampFrom(select.value(4));
        const qint64 id = select.value(5).toLongLong();
        const auto months = ownMonths.constFind(device);
        const QDate next =
            keptNextTests.contains(id)
                ? keptNextTests.value(id)
                : NextTestDate(tested.date(),
                               months != ownMonths.cend() ? *months : intervals.MonthsFor({}, regulation));
        QVariantList row = {customer,
                            device,
                            select.value(2).toString(),
                            regulation,
                            TimestampValue(tested),
                            id,
                            DateValue(next),
                            months != ownMonths.cend() ? QVariant(*months)
                                                       : QVariant(QMetaType(QMetaType::Int))};
        if (!devices.isEmpty() && devices.last()[0].toLongLong() == customer &&
            devices.last()[1].toString() == device)
            devices.last() = std::move(row);
        else
            devices.append(std::move(row));
    }
    select.finish();
    QSqlQuery insert = archive.Prepare(
        QStringLiteral("INSERT INTO devices (customer_id, device_id, device_type, regulation, last_tested_at,"
                       " last_record_id, next_test, interval_months) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const QVariantList &row : std::as_const(devices)) {
        for (qsizetype i = 0; i < row.size(); ++i)
            insert.bindValue(static_cast<int>(i), row[i]);
        archive.Run(insert);
    }
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
            const Step &step = kSteps[version];
            for (const QString &statement : step.statements)
                archive.Exec(ArchiveSql(archive, statement));
            step.fill(archive);
            for (const QString &statement : step.after)
                archive.Exec(ArchiveSql(archive, statement));
            archive.Exec(QStringLiteral("INSERT INTO schema_version (version, applied_at) VALUES (?, ?)"),
                         {version + 1, TimestampValue(QDateTime::currentDateTimeUtc())});
        }
    });
    return version;
}

} // namespace kalvo::archive
