// Customers in the archive: one ID-Nr at two customers is two devices, device data and moves leave
// change rows and no record's bytes changed, every import is a row, and an archive of schema 1
// comes through its migration whole.
#include "ArchiveSamples.h"

#include "platform/Users.h"

#include "archive/ArchiveQueries.h"
#include "archive/Customers.h"
#include "archive/DeviceData.h"
#include "archive/RecordImport.h"
#include "archive/RetestIntervals.h"

#include <QFile>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSysInfo>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

// A record the accessory gave its customer fields (61..64).
QByteArray CustomerRecord(const QByteArray &device, const QByteArray &date, const QByteArray &customer)
{
    return MakeRecord({.device = device, .date = date, .more = {{61, customer}, {62, "Weg 1"}, {64, "Ort"}}});
}

// id -> raw bytes of every record, read past the archive's own code.
QMap<qint64, QByteArray> RawRecords(Archive &archive)
{
    QMap<qint64, QByteArray> raw;
    QSqlQuery query = archive.Exec(QStringLiteral("SELECT id, raw FROM records"));
    while (archive.Next(query))
        raw.insert(query.value(0).toLongLong(), query.value(1).toByteArray());
    return raw;
}

class ArchiveCustomersTest : public OnBothBackendsOpen {
protected:
    DeviceKey Key(const char *device, const QString &customer)
    {
        return {FindCustomer(archive(), customer).value().id, QString::fromLatin1(device)};
    }
    QStringList Due(const QString &customer = {})
    {
        QStringList due;
        for (const DueDevice &d : DueDevices(archive(), QDate(2030, 1, 1), 0, customer))
            due << d.customerName + QLatin1Char(' ') + d.deviceId + QLatin1Char(' ') +
                       d.nextTest.toString(Qt::ISODate);
        return due;
    }
};

TEST_P(ArchiveCustomersTest, OneIdNrAtTwoCustomersIsTwoDevicesWithTheirOwnNextTests)
{
    const ImportResult first = ImportRecords(
        archive(),
        {CustomerRecord("E-0815", "12.01.24", "Mueller GmbH"),
         CustomerRecord("E-0815", "03.06.24", " Schmidt KG "),
         MakeRecord({.device = "E-0815", .date = "01.02.24"})},
        {QStringLiteral("KALVO-1"), QStringLiteral("4711"), {}, {}, QStringLiteral("Werkstatt")});
    EXPECT_EQ(first.added, 3);
    // Without a customer chosen, records that name none go to "ohne Kunde".
    ImportRecords(archive(), {MakeRecord({.device = "E-0815", .date = "01.03.24"})}, {});

    EXPECT_EQ(Due(), (QStringList{"Mueller GmbH E-0815 2025-01-12", "Werkstatt E-0815 2025-02-01",
                                  "ohne Kunde E-0815 2025-03-01", "Schmidt KG E-0815 2025-06-03"}));
    EXPECT_EQ(Due(QStringLiteral("Schmidt KG")), QStringList{"Schmidt KG E-0815 2025-06-03"});
    EXPECT_TRUE(Due(QStringLiteral("schmidt kg")).isEmpty()); // names match exactly
    // A device's own interval is its own: the other customers' devices keep theirs.
    SetDeviceInterval(archive(), Key("E-0815", QStringLiteral("Mueller GmbH")), 3);
    EXPECT_EQ(Due(QStringLiteral("Mueller GmbH")), QStringList{"Mueller GmbH E-0815 2024-04-12"});
    EXPECT_EQ(Due(QStringLiteral("Schmidt KG")), QStringList{"Schmidt KG E-0815 2025-06-03"});

    ArchiveFilter filter;
    filter.customerName = QStringLiteral("Werkstatt");
    const QList<ArchivedRecord> werkstatt = ListRecords(archive(), filter);
    ASSERT_EQ(werkstatt.size(), 1);
    EXPECT_EQ(werkstatt[0].nextTest, QDate(2025, 2, 1));
    EXPECT_EQ(werkstatt[0].customerName, QStringLiteral("Werkstatt"));
    filter.dueBefore = QDate(2030, 1, 1);
    EXPECT_EQ(CountRecords(archive(), filter), 1);

    // Every import is a row: when, from which tester, by whom, on which PC, with what counts.
    QSqlQuery imports = archive().Exec(QStringLiteral(
        "SELECT i.source_tester, i.source_serial, i.system_user, i.host, c.name, i.added, i.known"
        " FROM imports i JOIN customers c ON c.id = i.customer_id ORDER BY i.id"));
    ASSERT_TRUE(archive().Next(imports));
    EXPECT_EQ(imports.value(0).toString(), QStringLiteral("KALVO-1"));
    EXPECT_EQ(imports.value(1).toString(), QStringLiteral("4711"));
    // The account itself: a service or a container may leave $USER unset.
    EXPECT_FALSE(imports.value(2).toString().isEmpty());
    EXPECT_EQ(imports.value(2).toString(), platform::CurrentUserName());
    EXPECT_EQ(imports.value(3).toString(), QSysInfo::machineHostName());
    EXPECT_EQ(imports.value(4).toString(), QStringLiteral("Werkstatt"));
    EXPECT_EQ(imports.value(5).toInt(), 3);
    ASSERT_TRUE(archive().Next(imports));
    EXPECT_EQ(imports.value(4).toString(), kNoCustomer);
    EXPECT_EQ(DeviceImports(archive(), Key("E-0815", QStringLiteral("Schmidt KG"))).size(), 1);
}

TEST_P(ArchiveCustomersTest, DeviceDataAndMovesLeaveChangeRowsAndEveryRecordAsItWas)
{
    ImportRecords(archive(),
                  {CustomerRecord("D-1", "10.01.24", "Alt"), CustomerRecord("D-1", "10.01.23", "Alt"),
                   CustomerRecord("D-1", "10.05.24", "Neu"), CustomerRecord("D-2", "10.02.24", "Alt")},
                  {});
    const QMap<qint64, QByteArray> before = RawRecords(archive());

    const DeviceKey d2 = Key("D-2", QStringLiteral("Alt"));
    ChangeDeviceData(archive(), d2,
                     {.location = QStringLiteral("Halle 2"), .remarks = QStringLiteral("Kabel neu")});
    ChangeDeviceData(archive(), d2, {.location = QStringLiteral("Halle 2")}); // no change, no row
    EXPECT_EQ(LoadDeviceData(archive(), d2).location, QStringLiteral("Halle 2"));
    // A device moves with its records; one whose ID-Nr the other customer has already stays.
    EXPECT_THROW(MoveDevice(archive(), Key("D-1", QStringLiteral("Alt")), QStringLiteral("Neu")),
                 ArchiveError);
    const DeviceKey moved = MoveDevice(archive(), d2, QStringLiteral("Neu"));
    ArchiveFilter filter;
    filter.customerName = QStringLiteral("Neu");
    filter.deviceId = QStringLiteral("D-2");
    EXPECT_EQ(CountRecords(archive(), filter), 1);
    EXPECT_EQ(LoadDeviceData(archive(), moved).location, QStringLiteral("Halle 2"));
    // A retired device is not due, and its records stay.
    ChangeDeviceData(archive(), Key("D-1", QStringLiteral("Alt")), {.retired = true});
    EXPECT_EQ(Due(QStringLiteral("Alt")), QStringList{});
    EXPECT_EQ(Due(QStringLiteral("Neu")), (QStringList{"Neu D-2 2025-02-10", "Neu D-1 2025-05-10"}));

    QStringList rows;
    for (const DeviceChange &c : DeviceChanges(archive(), moved))
        rows << c.field + QLatin1Char(':') + c.oldValue + QStringLiteral("->") + c.newValue;
    EXPECT_EQ(rows, (QStringList{"location:->Halle 2", "remarks:->Kabel neu", "customer:Alt->Neu"}));
    ASSERT_EQ(DeviceChanges(archive(), Key("D-1", QStringLiteral("Alt"))).size(), 1);
    EXPECT_EQ(DeviceChanges(archive(), Key("D-1", QStringLiteral("Alt")))[0].newValue, QStringLiteral("ja"));

    EXPECT_EQ(RawRecords(archive()), before);
    EXPECT_TRUE(VerifyArchive(archive()).changed.isEmpty());
}

// The archive of schema 1 that kalvo of that schema wrote (data/), on the test's backend: the file
// itself, or on PostgreSQL its tables as the file defines them, with the column types schema 1 gives
// them there, and every row.
void PutSchema1Archive(Backend backend, const QString &url)
{
    const QString fixture = QStringLiteral(KALVO_ARCHIVE_DATA "/archive-schema1.sqlite");
    if (backend == Backend::SQLite) {
        ASSERT_TRUE(QFile::copy(fixture, url));
        QFile::setPermissions(url, QFile::ReadOwner | QFile::WriteOwner);
        return;
    }
    // Read from a copy: SQLite leaves its shared-memory file beside a database it opens.
    QTemporaryDir copy;
    const QString copied = copy.filePath(QStringLiteral("schema1.sqlite"));
    ASSERT_TRUE(QFile::copy(fixture, copied));
    QFile::setPermissions(copied, QFile::ReadOwner | QFile::WriteOwner);
    {
        QSqlDatabase file = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("fixture"));
        file.setDatabaseName(copied);
        const ArchiveTarget target = ParseArchiveUrl(url);
        QSqlDatabase server = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("schema1"));
        server.setHostName(target.host);
        server.setPort(target.port);
        server.setDatabaseName(target.database);
        server.setUserName(target.user);
        server.setPassword(target.password);
        ASSERT_TRUE(file.open() && server.open()) << server.lastError().text().toStdString();
        {
            QSqlQuery schema(
                QStringLiteral("SELECT type, name, sql FROM sqlite_master WHERE sql IS NOT NULL AND"
                               " name <> 'sqlite_sequence' ORDER BY type DESC"),
                file);
            QSqlQuery run(server);
            QStringList tables;
            while (schema.next()) {
                QString sql = schema.value(2).toString();
                sql.replace(QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT"),
                            QStringLiteral("BIGSERIAL PRIMARY KEY"));
                sql.replace(QStringLiteral(" BLOB"), QStringLiteral(" BYTEA"));
                sql.replace(QRegularExpression(QStringLiteral("(tested_at|imported_at|applied_at) TEXT")),
                            QStringLiteral("\\1 TIMESTAMP"));
                sql.replace(QStringLiteral("next_test TEXT"), QStringLiteral("next_test DATE"));
                ASSERT_TRUE(run.exec(sql)) << sql.toStdString() << run.lastError().text().toStdString();
                if (schema.value(0).toString() == QLatin1String("table"))
                    tables << schema.value(1).toString();
            }
            for (const QString &table : tables) {
                QSqlQuery rows(QStringLiteral("SELECT * FROM ") + table, file);
                while (rows.next()) {
                    const QSqlRecord row = rows.record();
                    QStringList marks;
                    for (int i = 0; i < row.count(); ++i)
                        marks << QStringLiteral("?");
                    run.prepare(QStringLiteral("INSERT INTO %1 VALUES (%2)")
                                    .arg(table, marks.join(QLatin1Char(','))));
                    for (int i = 0; i < row.count(); ++i)
                        run.addBindValue(row.value(i));
                    ASSERT_TRUE(run.exec()) << table.toStdString() << run.lastError().text().toStdString();
                }
            }
            ASSERT_TRUE(run.exec(QStringLiteral(
                "SELECT setval(pg_get_serial_sequence('records', 'id'), (SELECT max(id) FROM records))")));
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("fixture"));
    QSqlDatabase::removeDatabase(QStringLiteral("schema1"));
}

// Opened by today's kalvo, it keeps every record with its bytes and hash, every next test and
// interval.
TEST_P(ArchiveCustomersTest, AnArchiveOfSchema1KeepsEveryRecordAndNextTest)
{
    m_archive.reset();
    ArchivePlace place(GetParam()); // a fresh one: the fixture's SetUp created the archive
    ASSERT_TRUE(place.error().isEmpty());
    ASSERT_NO_FATAL_FAILURE(PutSchema1Archive(GetParam(), place.url()));
    std::unique_ptr<Archive> opened = place.Open();
    Archive &archive = *opened;
    EXPECT_EQ(archive.schemaVersion(), 2);
    const QMap<qint64, QByteArray> raw = RawRecords(archive);
    ASSERT_EQ(raw.size(), 8);
    QSqlQuery hashes = archive.Exec(QStringLiteral("SELECT id, sha256 FROM records"));
    while (archive.Next(hashes))
        EXPECT_EQ(hashes.value(1).toString().toLatin1(), Sha256Hex(raw.value(hashes.value(0).toLongLong())));
    EXPECT_TRUE(VerifyArchive(archive).changed.isEmpty());

    // E-0815 was one device of two customers; now each has its own, the newer test's next test kept.
    EXPECT_EQ(ListCustomers(archive).size(), 3);
    QStringList due;
    for (const DueDevice &d : DueDevices(archive, QDate(2030, 1, 1)))
        due << QStringLiteral("%1 %2 %3 %4 %5")
                   .arg(d.customerName, d.deviceId, d.nextTest.toString(Qt::ISODate))
                   .arg(d.intervalMonths)
                   .arg(d.lastRecordId);
    EXPECT_EQ(due, (QStringList{"Mueller GmbH E-0815 2024-07-12 6 2", "ohne Kunde D-7 2024-09-01 6 6",
                                "Schmidt KG E-0815 2024-12-03 6 3", "Schmidt KG S-5 2024-12-04 6 4",
                                "ohne Kunde M-1 2026-02-15 24 5", "ohne Kunde D-9 2027-04-20 36 7"}));
    // Records keep their customer fields and go to their customer; the undated one is kept.
    ArchiveFilter filter;
    filter.customerName = QStringLiteral("Schmidt KG");
    EXPECT_EQ(CountRecords(archive, filter), 2);
    filter.customerName = kNoCustomer;
    EXPECT_EQ(CountRecords(archive, filter), 4);
    // The interval of DIN VDE 0702 stays as it was set, and moves the devices that follow it.
    SetRegulationInterval(archive, QStringLiteral("DIN VDE 0702"), 12);
    EXPECT_EQ(LoadDeviceData(archive, {FindCustomer(archive, QStringLiteral("Mueller GmbH"))->id,
                                       QStringLiteral("E-0815")})
                  .nextTest,
              QDate(2025, 1, 12));
    EXPECT_EQ(
        LoadDeviceData(archive, {FindCustomer(archive, kNoCustomer)->id, QStringLiteral("D-9")}).nextTest,
        QDate(2027, 4, 20));
}

INSTANTIATE_TEST_SUITE_P(Both, ArchiveCustomersTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         BackendName);

} // namespace
