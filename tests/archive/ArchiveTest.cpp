// The archive on SQLite and on PostgreSQL: one suite, run against both.
#include "ArchiveSamples.h"

#include "archive/ArchiveQueries.h"
#include "archive/BulkStatements.h"
#include "archive/Customers.h"
#include "archive/RecordImport.h"
#include "archive/RetestIntervals.h"

#include <QSqlQuery>
#include <thread>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

class ArchiveTest : public OnBothBackendsOpen {
protected:
    // A device of records that name no customer.
    DeviceKey Key(const QString &device)
    {
        const std::optional<Customer> none = FindCustomer(archive(), kNoCustomer);
        return {none ? none->id : 0, device};
    }
    QStringList Devices(const ArchiveFilter &filter)
    {
        QStringList devices;
        for (const ArchivedRecord &r : ListRecords(archive(), filter))
            devices << r.deviceId;
        return devices;
    }
};

TEST_P(ArchiveTest, KeepsTheBytesAsReadWithTheFieldsPeopleSearchBy)
{
    const QByteArray raw = MakeRecord(
        {.device = "E-0815",
         .type = "Wasserkocher K\x81"
                 "che",
         .date = "13.01.09",
         .time = "8:05:09",
         .result = '9',
         .regulation = '6',
         .more = {
             {55, "13.01.09"}, {57, "Kocher"}, {59, "Hersteller AG"}, {61, "M\x81ller GmbH"}, {64, "Ulm"}}});
    const ImportResult result = ImportRecords(archive(), {raw}, {"COM 1", "123456", "", "alle.txt"});
    EXPECT_EQ(result.added, 1);
    ASSERT_TRUE(result.refused.isEmpty());

    const QList<ArchivedRecord> all = ListRecords(archive(), {});
    ASSERT_EQ(all.size(), 1);
    const std::optional<StoredRecord> stored = FetchRecord(archive(), all[0].id);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->raw, raw);
    EXPECT_EQ(stored->record.sha256, Sha256Hex(raw));
    EXPECT_EQ(stored->record.sha256.size(), 64);
    const ArchivedRecord &r = stored->record;
    EXPECT_EQ(r.testerName, QStringLiteral("KALVO-1"));
    EXPECT_EQ(r.deviceId, QStringLiteral("E-0815"));
    EXPECT_EQ(r.deviceType, QStringLiteral("Wasserkocher Küche"));
    EXPECT_EQ(r.testedAt, QDateTime(QDate(2009, 1, 13), QTime(8, 5, 9), Qt::UTC));
    EXPECT_EQ(r.regulation, QStringLiteral("DIN VDE 0751"));
    EXPECT_TRUE(r.failed);
    EXPECT_EQ(r.verdict, QStringLiteral("nicht bestanden"));
    EXPECT_EQ(r.protectionClass, QStringLiteral("1"));
    EXPECT_EQ(r.appliedPart, QStringLiteral("B"));
    EXPECT_EQ(r.accessoryKind, QStringLiteral("Kocher"));
    EXPECT_EQ(r.maker, QStringLiteral("Hersteller AG"));
    EXPECT_EQ(r.customer, QStringLiteral("Müller GmbH"));
    EXPECT_EQ(r.town, QStringLiteral("Ulm"));
    EXPECT_EQ(r.source.tester, QStringLiteral("COM 1"));
    EXPECT_EQ(r.source.testerSerial, QStringLiteral("123456"));
    EXPECT_EQ(r.source.file, QStringLiteral("alle.txt"));
    EXPECT_LE(qAbs(r.importedAt.secsTo(QDateTime::currentDateTimeUtc())), 60);
    EXPECT_EQ(r.nextTest, QDate(2011, 1, 13)); // medical: 24 months
}

TEST_P(ArchiveTest, ARecordReadAgainIsKeptOnceAndRefusedOnesAreNamed)
{
    const QByteArray a = MakeRecord({.device = "A"});
    const QByteArray b = MakeRecord({.device = "B"});
    const QByteArray c = MakeRecord({.device = "C"});
    QMap<int, QByteArray> tooOld{{2, "0000000"}, {3, "OLD"}};
    EXPECT_EQ(ImportRecords(archive(), {a, b}, {}).added, 2);

    // A line cut before its end mark, and a piece of some other file that the decoder would take
    // fields from (a code string of 25 characters in field 2 and all).
    const QByteArray cut = MakeRecord({.device = "E"}).chopped(6) + "\r\n";
    const QByteArray junk = "\x8f;" + CodeString('1', '5') + ";\x01\x00\xff;$FF\r\n";
    const ImportResult again = ImportRecords(archive(), {b, RecordText(tooOld), a, c, c, cut, junk}, {});
    EXPECT_EQ(again.added, 1);
    EXPECT_EQ(again.known, 3);
    ASSERT_EQ(again.refused.size(), 3);
    EXPECT_TRUE(again.refused[0].startsWith(QStringLiteral("Protokoll 2: 31996")))
        << again.refused[0].toStdString();
    for (int i : {1, 2})
        EXPECT_TRUE(again.refused[i].contains(QStringLiteral("ein ganzes Protokoll")))
            << again.refused[i].toStdString();
    EXPECT_EQ(CountRecords(archive(), {}), 3);
    // One byte more is another record: the archive keeps bytes, not what they mean.
    EXPECT_EQ(ImportRecords(archive(), {QByteArray(a).replace("Bohrmaschine", "Bohrmaschine ")}, {}).added,
              1);
}

TEST_P(ArchiveTest, AnImportThatFailsHalfWayKeepsNothingOfItselfAndAllBefore)
{
    ASSERT_EQ(ImportRecords(archive(), {MakeRecord({.device = "KEEP"})}, {}).added, 1);
    // The database refuses the second record of the next import after the first was written. (An
    // import into SQLite passes over conflicts with any unique index; a trigger makes it fail there.)
    const bool postgres = archive().isPostgres();
    archive().Exec(
        postgres ? QStringLiteral("CREATE UNIQUE INDEX one_per_type ON records (device_type)")
                 : QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON records"
                                  " WHEN NEW.device_id = 'NEW-2' BEGIN SELECT RAISE(ABORT, 'nein'); END"));
    const QList<QByteArray> batch = {MakeRecord({.device = "NEW-1", .type = "Lampe"}),
                                     MakeRecord({.device = "NEW-2", .type = "Lampe"})};
    EXPECT_THROW(ImportRecords(archive(), batch, {}), ArchiveError);

    EXPECT_EQ(Devices({}), QStringList{QStringLiteral("KEEP")});
    EXPECT_FALSE(DeviceStatus(archive(), Key(QStringLiteral("NEW-1"))));
    // The archive stays usable.
    archive().Exec(postgres ? QStringLiteral("DROP INDEX one_per_type")
                            : QStringLiteral("DROP TRIGGER refuse"));
    EXPECT_EQ(ImportRecords(archive(), batch, {}).added, 2);
}

TEST_P(ArchiveTest, ADeviceHistoryIsNewestFirstAndItsNextTestFollowsTheNewestTest)
{
    ImportRecords(archive(),
                  {MakeRecord({.device = "H", .date = "05.03.21", .time = "10:00"}),
                   MakeRecord({.device = "H", .date = "05.03.22", .time = "09:00", .result = '8'}),
                   MakeRecord({.device = "OTHER", .date = "01.01.23"}),
                   MakeRecord({.device = "H", .date = "05.03.21", .time = "11:00"})},
                  {});
    // An older record read later does not move the next test back.
    ImportRecords(archive(), {MakeRecord({.device = "H", .date = "01.01.20"})}, {});

    ArchiveFilter filter;
    filter.deviceId = QStringLiteral("H");
    QList<QDate> days;
    QList<QTime> times;
    for (const ArchivedRecord &r : ListRecords(archive(), filter)) {
        days << r.testedAt.date();
        times << r.testedAt.time();
    }
    EXPECT_EQ(days, (QList<QDate>{{2022, 3, 5}, {2021, 3, 5}, {2021, 3, 5}, {2020, 1, 1}}));
    EXPECT_EQ(times[1], QTime(11, 0));
    const std::optional<DueDevice> status = DeviceStatus(archive(), Key(QStringLiteral("H")));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->lastTest.date(), QDate(2022, 3, 5));
    EXPECT_EQ(status->nextTest, QDate(2023, 3, 5));
    EXPECT_EQ(status->intervalMonths, 12);
    // The page the window shows: the second and third.
    EXPECT_EQ(ListRecords(archive(), filter, 2, 1).size(), 2);
    EXPECT_EQ(ListRecords(archive(), filter, 2, 1)[0].testedAt.date(), QDate(2021, 3, 5));

    // One import of several statements: a device added by the first follows the newest test
    // wherever it stands, and an older test in a later statement leaves it alone.
    QList<QByteArray> spread;
    const QDate start(2015, 1, 1);
    for (int i = 0; i < 3 * kRowsPerStatement + 7; ++i) {
        const QDate day = i == 0 ? QDate(2024, 1, 1) : start.addDays(i);
        spread << MakeRecord({.device = i % 2 ? "LAST" : "FIRST",
                              .date = day.toString(QStringLiteral("dd.MM.yy")).toLatin1()});
    }
    ImportRecords(archive(), spread, {});
    EXPECT_EQ(DeviceStatus(archive(), Key(QStringLiteral("FIRST")))->lastTest.date(), QDate(2024, 1, 1));
    EXPECT_EQ(DeviceStatus(archive(), Key(QStringLiteral("LAST")))->lastTest.date(),
              start.addDays(3 * kRowsPerStatement + 5));
    EXPECT_EQ(DeviceStatus(archive(), Key(QStringLiteral("LAST")))->nextTest,
              start.addDays(3 * kRowsPerStatement + 5).addMonths(12));
}

TEST_P(ArchiveTest, IntervalsPerRegulationAndPerDeviceMoveTheNextTest)
{
    ImportRecords(archive(),
                  {MakeRecord({.device = "P1", .date = "10.02.24", .regulation = '5'}),
                   MakeRecord({.device = "P2", .date = "10.02.24", .regulation = '5'}),
                   MakeRecord({.device = "M1", .date = "10.02.24", .regulation = '6'})},
                  {});
    const auto next = [&](const char *device) {
        return DeviceStatus(archive(), Key(QString::fromLatin1(device)))->nextTest;
    };
    EXPECT_EQ(next("P1"), QDate(2025, 2, 10));
    EXPECT_EQ(next("M1"), QDate(2026, 2, 10));

    SetDeviceInterval(archive(), Key(QStringLiteral("P2")), 3);
    SetRegulationInterval(archive(), QStringLiteral("DIN VDE 0702"), 6);
    EXPECT_EQ(next("P1"), QDate(2024, 8, 10));
    EXPECT_EQ(next("P2"), QDate(2024, 5, 10)); // its own interval wins
    EXPECT_EQ(next("M1"), QDate(2026, 2, 10));
    // Records imported later use the intervals in force.
    ImportRecords(archive(), {MakeRecord({.device = "P3", .date = "31.08.24"})}, {});
    EXPECT_EQ(next("P3"), QDate(2025, 2, 28));

    SetDeviceInterval(archive(), Key(QStringLiteral("P2")), std::nullopt);
    EXPECT_EQ(next("P2"), QDate(2024, 8, 10));
    EXPECT_THROW(SetRegulationInterval(archive(), QStringLiteral("DIN VDE 0702"), 0), ArchiveError);
    EXPECT_EQ(next("P1"), QDate(2024, 8, 10));
}

TEST_P(ArchiveTest, FiltersNarrowTheSearch)
{
    ImportRecords(
        archive(),
        {MakeRecord(
             {.device = "F1", .type = "Bohrmaschine 100%", .date = "01.02.22", .more = {{61, "M\x81ller"}}}),
         MakeRecord({.device = "F2",
                     .type = "Toaster",
                     .date = "15.06.22",
                     .result = 'B',
                     .more = {{61, "Schmidt"}}}),
         MakeRecord({.device = "F3", .type = "Bohrhammer", .date = "31.12.22", .regulation = '6'}),
         MakeRecord({.device = "F4", .type = "Lampe", .date = "kaputt"})},
        {});
    const auto filter = [](auto set) {
        ArchiveFilter f;
        set(f);
        return f;
    };
    const struct {
        const char *name;
        ArchiveFilter filter;
        QStringList devices;
    } cases[] = {
        {"everything, undated last", {}, {"F3", "F2", "F1", "F4"}},
        {"device", filter([](ArchiveFilter &f) { f.deviceId = "F2"; }), {"F2"}},
        {"type in any case", filter([](ArchiveFilter &f) { f.type = "BOHR"; }), {"F3", "F1"}},
        {"a % in the search is a %", filter([](ArchiveFilter &f) { f.type = "0%"; }), {"F1"}},
        {"an _ in the search is an _", filter([](ArchiveFilter &f) { f.type = "_"; }), {}},
        {"customer", filter([](ArchiveFilter &f) { f.customer = "mül"; }), {"F1"}},
        {"text anywhere", filter([](ArchiveFilter &f) { f.text = "schmidt"; }), {"F2"}},
        {"failed", filter([](ArchiveFilter &f) { f.failed = true; }), {"F2"}},
        {"passed", filter([](ArchiveFilter &f) { f.failed = false; }), {"F3", "F1", "F4"}},
        {"regulation", filter([](ArchiveFilter &f) { f.regulation = "DIN VDE 0751"; }), {"F3"}},
        {"from, inclusive", filter([](ArchiveFilter &f) { f.from = QDate(2022, 6, 15); }), {"F3", "F2"}},
        {"to, the whole day", filter([](ArchiveFilter &f) { f.to = QDate(2022, 6, 15); }), {"F2", "F1"}},
        {"due before, exclusive", filter([](ArchiveFilter &f) { f.dueBefore = QDate(2023, 6, 15); }), {"F1"}},
        {"due before", filter([](ArchiveFilter &f) { f.dueBefore = QDate(2023, 6, 16); }), {"F1", "F2"}},
        {"combined",
         filter([](ArchiveFilter &f) {
             f.type = "bohr";
             f.failed = false;
             f.to = QDate(2022, 3, 1);
         }),
         {"F1"}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(Devices(c.filter), c.devices) << c.name;
        EXPECT_EQ(CountRecords(archive(), c.filter), c.devices.size()) << c.name;
    }
}

TEST_P(ArchiveTest, DueDevicesComeSoonestFirst)
{
    ImportRecords(archive(),
                  {MakeRecord({.device = "LATE", .date = "01.03.23"}),
                   MakeRecord({.device = "SOON", .date = "01.01.23"}),
                   MakeRecord({.device = "MED", .date = "01.02.22", .regulation = '6'}),
                   MakeRecord({.device = "SOON", .date = "01.01.22"})},
                  {});
    QStringList due;
    for (const DueDevice &d : DueDevices(archive(), QDate(2024, 3, 1)))
        due << d.deviceId + QLatin1Char(' ') + d.nextTest.toString(Qt::ISODate);
    EXPECT_EQ(due, (QStringList{"SOON 2024-01-01", "MED 2024-02-01"}));
    EXPECT_EQ(DueDevices(archive(), QDate(2030, 1, 1), 1).size(), 1);
}

TEST_P(ArchiveTest, VerifyFindsARecordChangedBehindItsBack)
{
    ImportRecords(archive(), ManyRecords(1200, 7), {});
    VerifyResult clean = VerifyArchive(archive());
    EXPECT_EQ(clean.checked, 1200);
    EXPECT_TRUE(clean.changed.isEmpty());

    const QList<ArchivedRecord> victims = ListRecords(archive(), {}, 2, 600);
    QSqlQuery query = archive().Prepare(QStringLiteral("UPDATE records SET raw = ? WHERE id = ?"));
    archive().Run(query, {QByteArray("PX;tampered;$FF\r\n"), victims[0].id});
    const VerifyResult found = VerifyArchive(archive());
    EXPECT_EQ(found.checked, 1200);
    ASSERT_EQ(found.changed.size(), 1);
    EXPECT_EQ(found.changed[0].id, victims[0].id);
    EXPECT_EQ(found.changed[0].storedSha256, victims[0].sha256);
    EXPECT_EQ(found.changed[0].actualSha256, Sha256Hex("PX;tampered;$FF\r\n"));
}

TEST_P(ArchiveTest, TwoImportersOfTheSameRecordsStoreEachOnceAndBothSucceed)
{
    const QList<QByteArray> records = ManyRecords(1000, 40);
    ImportResult results[2];
    QString errors[2];
    std::thread importers[2];
    for (int i = 0; i < 2; ++i)
        importers[i] = std::thread([&, i] {
            try {
                Archive own(ParseArchiveUrl(m_place->url()));
                results[i] = ImportRecords(own, records, {});
            } catch (const link::KalvoError &e) {
                errors[i] = e.message();
            }
        });
    for (std::thread &t : importers)
        t.join();
    EXPECT_TRUE(errors[0].isEmpty()) << errors[0].toStdString();
    EXPECT_TRUE(errors[1].isEmpty()) << errors[1].toStdString();
    EXPECT_EQ(results[0].added + results[1].added, 1000);
    EXPECT_EQ(results[0].known + results[1].known, 1000);
    EXPECT_EQ(CountRecords(archive(), {}), 1000);
    EXPECT_EQ(DueDevices(archive(), QDate(2100, 1, 1)).size(), 40);
}

TEST_P(ArchiveTest, OpensAgainWithWhatItHoldsButNotWhenANewerProgramWroteIt)
{
    ImportRecords(archive(), {MakeRecord({})}, {});
    const int version = archive().schemaVersion();
    EXPECT_GE(version, 1);
    m_archive.reset();
    m_archive = m_place->Open();
    EXPECT_EQ(archive().schemaVersion(), version);
    EXPECT_EQ(CountRecords(archive(), {}), 1);

    archive().Exec(QStringLiteral(
        "INSERT INTO schema_version (version, applied_at) VALUES (99, '2030-01-01 00:00:00')"));
    m_archive.reset();
    try {
        m_place->Open();
        ADD_FAILURE() << "opened an archive of schema version 99";
    } catch (const ArchiveError &e) {
        EXPECT_TRUE(e.text().contains(QStringLiteral("Schema-Version 99"))) << e.text().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Both, ArchiveTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         BackendName);

} // namespace
