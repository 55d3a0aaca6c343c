// kalvo-cli with the archive, against kalvo-sim over a pseudo-terminal, on SQLite and PostgreSQL.
#include "ArchiveSamples.h"

#include "archive/ArchiveQueries.h"
#include "archive/RecordImport.h"
#include "records/RecordFiles.h"
#include "support/PaperTools.h"
#include "support/SimProcess.h"
#include "support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QProcess>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

class ArchiveCliTest : public OnBothBackends {
protected:
    RunResult Cli(const QStringList &arguments)
    {
        return RunProgram(QStringLiteral("kalvo-cli"),
                          QStringList{QStringLiteral("--archive"), m_place->url()} + arguments);
    }
    QString File(const char *name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_dir;
};

TEST_P(ArchiveCliTest, RecordsReadFromTheTesterFillTheArchiveOnceWithHistoryAndNextTest)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const QStringList archive = {QStringLiteral("--archive"), m_place->url()};
    // Records that name no customer go to the one given.
    RunResult read = RunCli(
        sim, archive + QStringList{"--customer", "Werkstatt", "records", "read-all", File("alle.txt")});
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    const QList<QByteArray> file = records::LoadRecordFile(File("alle.txt"));
    ASSERT_GT(file.size(), 5);
    // Read again, and the current record too: nothing is stored twice.
    read = RunCli(sim, archive + QStringList{"records", "read-all", File("wieder.txt")});
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    const std::unique_ptr<Archive> opened = m_place->Open();
    EXPECT_EQ(CountRecords(*opened, {}), file.size());
    const QList<ArchivedRecord> all = ListRecords(*opened, {});
    for (const ArchivedRecord &r : all)
        EXPECT_TRUE(file.contains(FetchRecord(*opened, r.id)->raw)) << r.id;
    EXPECT_EQ(all.last().source.file, File("alle.txt"));
    // The tester was identified before the read, as the window does on connecting.
    EXPECT_EQ(all.last().source.tester, QStringLiteral("KALVO-01"));
    EXPECT_EQ(all.last().source.testerSerial, QStringLiteral("0471 1203 5567"));

    // An older test of E-0815 from a record file joins its history.
    QByteArray older = file[0];
    older.replace("12.01.09", "11.01.08");
    ASSERT_TRUE(WriteFile(File("alt.txt"), older));
    const RunResult imported = Cli({"archive", "import", "--customer", "Werkstatt", File("alt.txt")});
    EXPECT_EQ(imported.exitCode, 0) << imported.err.toStdString();
    EXPECT_TRUE(imported.out.contains(QStringLiteral(": 1 neu, 0 schon im Archiv, 0 abgelehnt")));

    const RunResult history = Cli({"archive", "list", "--device", "E-0815"});
    ASSERT_EQ(history.exitCode, 0) << history.err.toStdString();
    const QStringList lines = history.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2) << history.out.toStdString();
    EXPECT_TRUE(lines[0].contains(QStringLiteral("2009-01-12 08:14\tE-0815\t"))) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].contains(QStringLiteral("2008-01-11 08:14\tE-0815\t"))) << lines[1].toStdString();
    EXPECT_TRUE(lines[0].endsWith(QStringLiteral("nächste Prüfung 2010-01-12"))) << lines[0].toStdString();

    const RunResult json = Cli({"archive", "list", "--failed", "--json"});
    ASSERT_EQ(json.exitCode, 0) << json.err.toStdString();
    const QJsonArray rows = QJsonDocument::fromJson(json.out.toUtf8()).array();
    ASSERT_FALSE(rows.isEmpty()) << json.out.toStdString();
    for (const QJsonValue &row : rows)
        EXPECT_EQ(row.toObject().value(QStringLiteral("Ergebnis")).toString(),
                  QStringLiteral("nicht bestanden"));

    const RunResult due = Cli({"archive", "due", "--before", "2010-01-13"});
    EXPECT_TRUE(due.out.contains(QStringLiteral("2010-01-12\tWerkstatt\tE-0815\t"))) << due.out.toStdString();
    // The same devices as one JSON document.
    const RunResult dueJson = Cli({"archive", "due", "--before=2010-01-13", "--json"});
    ASSERT_EQ(dueJson.exitCode, 0) << dueJson.err.toStdString();
    QStringList dueLines;
    for (const QJsonValue &value : QJsonDocument::fromJson(dueJson.out.toUtf8()).array()) {
        const QJsonObject d = value.toObject();
        dueLines << QStringLiteral("%1\t%2\t%3\t%4\t%5\tzuletzt %6\t%7 Monate\t Nr %8")
                        .arg(d[QStringLiteral("nextTest")].toString(),
                             d[QStringLiteral("customer")].toString(),
                             d[QStringLiteral("deviceId")].toString(),
                             d[QStringLiteral("deviceType")].toString(),
                             d[QStringLiteral("regulation")].toString(),
                             d[QStringLiteral("lastTest")].toString())
                        .arg(d[QStringLiteral("intervalMonths")].toInt())
                        .arg(d[QStringLiteral("lastRecordId")].toInteger());
    }
    EXPECT_EQ(dueLines, due.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) << dueJson.out.toStdString();
    EXPECT_FALSE(Cli({"archive", "due", "--before", "2010-01-12"}).out.contains(QStringLiteral("E-0815")));

    // Its own interval moves its next test; "default" gives it back to the regulation's.
    EXPECT_EQ(Cli({"archive", "interval", "--device", "E-0815", "6"}).exitCode, 0);
    EXPECT_TRUE(Cli({"archive", "list", "--device", "E-0815"})
                    .out.contains(QStringLiteral("nächste Prüfung 2009-07-12")));
    const RunResult intervals = Cli({"archive", "interval"});
    EXPECT_TRUE(intervals.out.contains(QStringLiteral("6 Monate\tGerät E-0815\tWerkstatt")));
    QStringList intervalLines;
    for (const QJsonValue &value :
         QJsonDocument::fromJson(Cli({"archive", "interval", "--json"}).out.toUtf8()).array()) {
        const QJsonObject i = value.toObject();
        intervalLines << QStringLiteral("%1 Monate\t%2")
                             .arg(i[QStringLiteral("months")].toInt())
                             .arg(i.contains(QStringLiteral("device"))
                                      ? QStringLiteral("Gerät ") + i[QStringLiteral("device")].toString() +
                                            QLatin1Char('\t') + i[QStringLiteral("customer")].toString()
                                      : i[QStringLiteral("regulation")].toString());
    }
    EXPECT_EQ(intervalLines, intervals.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts));
    EXPECT_EQ(Cli({"archive", "interval", "--device", "E-0815", "default"}).exitCode, 0);
    EXPECT_TRUE(Cli({"archive", "due", "--before", "2010-01-13"}).out.contains(QStringLiteral("E-0815")));
    EXPECT_EQ(Cli({"archive", "interval", "--regulation", "DIN VDE 0702", "0"}).exitCode, 1);
    EXPECT_EQ(Cli({"archive", "list", "--since", "gestern"}).exitCode, 2);

    // The same ID-Nr read for another customer is another device with its own next test.
    ASSERT_TRUE(WriteFile(File("kunde.txt"), MakeRecord({.device = "E-0815", .date = "01.06.09"})));
    EXPECT_EQ(Cli({"archive", "import", "--customer", "Schmidt KG", File("kunde.txt")}).exitCode, 0);
    const RunResult both = Cli({"archive", "due", "--before", "2011-01-01"});
    EXPECT_TRUE(both.out.contains(QStringLiteral("2010-01-12\tWerkstatt\tE-0815\t")))
        << both.out.toStdString();
    EXPECT_TRUE(both.out.contains(QStringLiteral("2010-06-01\tSchmidt KG\tE-0815\t")))
        << both.out.toStdString();
    const RunResult schmidt = Cli({"archive", "due", "--before", "2011-01-01", "--customer", "Schmidt KG"});
    EXPECT_EQ(schmidt.out.count(QLatin1Char('\n')), 1) << schmidt.out.toStdString();
    // Device data by the CLI: a name is needed where one ID-Nr is at two customers.
    EXPECT_EQ(Cli({"archive", "device", "set", "E-0815", "--location", "Lager"}).exitCode, 1);
    EXPECT_EQ(Cli({"archive", "device", "set", "E-0815", "--customer", "Schmidt KG", "--location", "Lager"})
                  .exitCode,
              0);
    EXPECT_EQ(Cli({"archive", "device", "retire", "E-0815", "--customer", "Schmidt KG"}).exitCode, 0);
    EXPECT_TRUE(Cli({"archive", "device", "history", "E-0815", "--customer", "Schmidt KG"})
                    .out.contains(QStringLiteral("location\t -> Lager")));
    EXPECT_FALSE(
        Cli({"archive", "due", "--before", "2011-01-01"}).out.contains(QStringLiteral("Schmidt KG")));
}

TEST_P(ArchiveCliTest, NoArchiveLeavesItAlone)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult read =
        RunCli(sim, {"--archive", m_place->url(), "--no-archive", "records", "read-all", File("a.txt")});
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    EXPECT_EQ(CountRecords(*m_place->Open(), {}), 0);
}

TEST_P(ArchiveCliTest, ThePdfCarriesTheHashAndVerifyFindsAChangedRecord)
{
    ASSERT_TRUE(WriteFile(File("r.txt"), MakeRecord({.device = "PDF-7"}) + MakeRecord({.device = "PDF-8"})));
    ASSERT_EQ(Cli({"archive", "import", File("r.txt")}).exitCode, 0);
    const std::unique_ptr<Archive> opened = m_place->Open();
    const ArchivedRecord first = ListRecords(*opened, {}).last();

    const RunResult shown = Cli({"archive", "show", QString::number(first.id), "--pdf", File("r.pdf")});
    ASSERT_EQ(shown.exitCode, 0) << shown.err.toStdString();
    const QString text = PdfText(File("r.pdf")).value_or(QString());
    EXPECT_TRUE(text.contains(QStringLiteral("SHA-256: ") + QString::fromLatin1(first.sha256)))
        << text.toStdString();
    EXPECT_TRUE(text.contains(first.deviceId));

    RunResult verify = Cli({"archive", "verify"});
    EXPECT_EQ(verify.exitCode, 0) << verify.err.toStdString();
    EXPECT_TRUE(verify.out.contains(QStringLiteral("2 geprüft, 0 verändert")));
    opened->Exec(QStringLiteral("UPDATE records SET raw = ? WHERE id = ?"),
                 {QByteArray("P;geändert;$FF\r\n"), first.id});
    verify = Cli({"archive", "verify"});
    EXPECT_EQ(verify.exitCode, 1);
    EXPECT_TRUE(verify.out.contains(QStringLiteral("Nr %1 verändert: gespeichert %2")
                                        .arg(first.id)
                                        .arg(QString::fromLatin1(first.sha256))))
        << verify.out.toStdString();
    EXPECT_TRUE(verify.out.contains(QStringLiteral("2 geprüft, 1 verändert")));

    const RunResult missing = Cli({"archive", "show", "999"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("kein Protokoll Nr. 999"))) << missing.err.toStdString();
}

TEST_P(ArchiveCliTest, ABackupIsVerifiedAsAnArchiveAndRestoredOnlyIntoAnEmptyOne)
{
    ASSERT_TRUE(WriteFile(File("r.txt"), MakeRecord({.device = "B-1"}) + MakeRecord({.device = "B-2"})));
    ASSERT_EQ(Cli({"archive", "import", File("r.txt")}).exitCode, 0);
    const RunResult backup = Cli({"archive", "backup", File("sicherung.sqlite")});
    ASSERT_EQ(backup.exitCode, 0) << backup.err.toStdString();
    EXPECT_TRUE(backup.out.contains(QStringLiteral("sicherung.sqlite geschrieben: 2 Protokolle")))
        << backup.out.toStdString();
    const QByteArray written = ReadFile(File("sicherung.sqlite"));
    const RunResult again = Cli({"archive", "backup", File("sicherung.sqlite")});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(again.err.contains(QStringLiteral("gibt es schon"))) << again.err.toStdString();
    EXPECT_EQ(ReadFile(File("sicherung.sqlite")), written);

    const RunResult verify =
        RunProgram(QStringLiteral("kalvo-cli"), {"--archive", File("sicherung.sqlite"), "archive", "verify"});
    EXPECT_EQ(verify.exitCode, 0) << verify.err.toStdString();
    EXPECT_TRUE(verify.out.contains(QStringLiteral("2 geprüft, 0 verändert"))) << verify.out.toStdString();

    const RunResult refused = Cli({"archive", "restore", File("sicherung.sqlite")});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("es enthält schon 2 Protokolle")))
        << refused.err.toStdString();
    ArchivePlace empty(GetParam());
    const RunResult restored = RunProgram(QStringLiteral("kalvo-cli"), {"--archive", empty.url(), "archive",
                                                                        "restore", File("sicherung.sqlite")});
    EXPECT_EQ(restored.exitCode, 0) << restored.err.toStdString();
    EXPECT_TRUE(restored.out.contains(QStringLiteral("wiederhergestellt: 2 Protokolle")))
        << restored.out.toStdString();
    EXPECT_EQ(CountRecords(*empty.Open(), {}), 2);
    EXPECT_EQ(ReadFile(File("sicherung.sqlite")), written);
}

TEST_P(ArchiveCliTest, TwoProgramsImportingTheSameThousandRecordsStoreEachOnce)
{
    const QList<QByteArray> records = ManyRecords(1000, 60);
    records::WriteRecordFile(File("tausend.txt"), records);
    QProcess programs[2];
    for (QProcess &p : programs)
        p.start(BuiltProgram(QStringLiteral("kalvo-cli")),
                {QStringLiteral("--archive"), m_place->url(), QStringLiteral("archive"),
                 QStringLiteral("import"), File("tausend.txt")});
    int added = 0;
    for (QProcess &p : programs) {
        ASSERT_TRUE(p.waitForFinished(120000));
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
        added += out.section(QStringLiteral(": "), 1).section(QLatin1Char(' '), 0, 0).toInt();
    }
    EXPECT_EQ(added, 1000);
    EXPECT_EQ(CountRecords(*m_place->Open(), {}), 1000);

    const RunResult exported = Cli({"archive", "export", File("alle.csv"), "--device", "DEV-7"});
    ASSERT_EQ(exported.exitCode, 0) << exported.err.toStdString();
    EXPECT_EQ(ReadFile(File("alle.csv")).count("\r\n"), 1 + 1000 / 60 + 1);
}

TEST_P(ArchiveCliTest, ALabelsQrCodeFindsItsDeviceAndTheSignedReportNamesTheInspector)
{
    // The customer has an umlaut and a backslash (code page 437 on the tester: 0x81 is "ü").
    ImportRecords(
        *m_place->Open(),
        {MakeRecord({.device = "E-0815", .date = "12.01.09", .more = {{61, "M\x81ller \\ Partner"}}}),
         MakeRecord(
             {.device = "E-0815", .date = "14.01.10", .result = '7', .more = {{61, "M\x81ller \\ Partner"}}}),
         MakeRecord({.device = "K-12", .date = "03.02.10"})},
        {QStringLiteral("PRUEF-7"), QStringLiteral("123456"), {}, {}});

    const RunResult labels =
        Cli({"archive", "labels", File("etiketten.pdf"), "--device", "E-0815", "--sheet", "roll-62"});
    ASSERT_EQ(labels.exitCode, 0) << labels.err.toStdString();
    EXPECT_TRUE(labels.out.startsWith(QStringLiteral("1 labels -> "))) << labels.out.toStdString();
    for (const QStringList &wrong : {QStringList{"--sheet", "a5"}, QStringList{"--first", "25"}}) {
        const RunResult refused = Cli(QStringList{"archive", "labels", File("falsch.pdf")} + wrong);
        EXPECT_EQ(refused.exitCode, 2) << wrong.join(' ').toStdString();
        EXPECT_FALSE(QFile::exists(File("falsch.pdf")));
    }

    const RunResult signedPdf = Cli(
        {"archive", "signed", File("signiert.pdf"), "--device", "K-12", "--inspector", "Erika Mustermann"});
    ASSERT_EQ(signedPdf.exitCode, 0) << signedPdf.err.toStdString();
    const std::optional<QString> text = PdfText(File("signiert.pdf"));
    if (text) {
        EXPECT_TRUE(text->contains(QStringLiteral("Erika Mustermann"))) << text->toStdString();
        EXPECT_TRUE(text->contains(QStringLiteral("PRUEF-7, Seriennummer 123456"))) << text->toStdString();
    }

    if (!HaveProgram("pdftoppm") || !HaveProgram("zbarimg"))
        GTEST_SKIP() << "no pdftoppm or zbarimg on this system";
    ASSERT_TRUE(RenderPdfPage(File("etiketten.pdf"), 1, 300, File("etikett.png")));
    const QStringList codes = ReadQrCodes(File("etikett.png"));
    ASSERT_EQ(codes.size(), 1) << codes.join('|').toStdString();
    EXPECT_EQ(codes[0], QStringLiteral("KALVO1;Müller \\\\ Partner;E-0815;2011-01-14"));
    const RunResult found = Cli({"archive", "find", codes[0]});
    ASSERT_EQ(found.exitCode, 0) << found.err.toStdString();
    for (const char *line : {"Kunde:           Müller \\ Partner", "ID-Nr:           E-0815",
                             "Ergebnis:        nicht bestanden", "Nächste Prüfung: 14.01.2011"})
        EXPECT_TRUE(found.out.contains(QString::fromUtf8(line))) << found.out.toStdString();
    EXPECT_EQ(found.out.count(QStringLiteral("  Nr ")), 2) << found.out.toStdString(); // its history

    const RunResult unknown = Cli({"archive", "find", "KALVO1;Andere GmbH;E-0815;2011-01-14"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_TRUE(unknown.err.contains(QStringLiteral("kein Gerät \"E-0815\" beim Kunden \"Andere GmbH\"")))
        << unknown.err.toStdString();
    const RunResult junk = Cli({"archive", "find", "https://example.org"});
    EXPECT_EQ(junk.exitCode, 1);
    EXPECT_TRUE(junk.err.contains(QStringLiteral("QR-Text"))) << junk.err.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Both, ArchiveCliTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         BackendName);

TEST(ArchiveCliFile, ABrokenArchiveIsNamedAndKeptAndTheRecordFileIsStillWritten)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("archive.sqlite"));
    const QByteArray junk = QByteArray("SQLite format 3\0", 16) + QByteArray(8192, '\x5A');
    ASSERT_TRUE(WriteFile(path, junk));
    const struct {
        QString url;
        QString named; // what the message names
    } archives[] = {
        {path, QStringLiteral("Archiv ") + path},
        {QStringLiteral("postgresql://kalvo@localhost/archiv?host=") +
             dir.filePath(QStringLiteral("kein-server")),
         QStringLiteral("Archiv postgresql://kalvo@") + dir.filePath(QStringLiteral("kein-server"))},
    };
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    for (const auto &archive : archives) {
        const QString file = dir.filePath(QStringLiteral("a.txt"));
        QFile::remove(file);
        const RunResult read = RunCli(sim, {"--archive", archive.url, "records", "read-all", file});
        EXPECT_EQ(read.exitCode, 1) << archive.url.toStdString();
        EXPECT_TRUE(read.err.contains(archive.named)) << read.err.toStdString();
        EXPECT_GT(records::LoadRecordFile(file).size(), 5);
        const RunResult list =
            RunProgram(QStringLiteral("kalvo-cli"), {"--archive", archive.url, "archive", "list"});
        EXPECT_EQ(list.exitCode, 1);
        EXPECT_TRUE(list.err.contains(archive.named)) << list.err.toStdString();
    }
    EXPECT_EQ(ReadFile(path), junk);
}

TEST(ArchiveCliFile, ABusyArchiveIsNamedAndTheRecordFileIsStillWrittenWhileListsGoOn)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("archive.sqlite"));
    ImportRecords(*std::make_unique<Archive>(ParseArchiveUrl(path)), {MakeRecord({})}, {});
    const QString url = QStringLiteral("sqlite://") + path + QStringLiteral("?wait=1");
    const OtherProgram other(path, false);
    SimProcess sim;
    ASSERT_TRUE(sim.started());

    const QString file = dir.filePath(QStringLiteral("a.txt"));
    const RunResult read = RunCli(sim, {"--archive", url, "records", "read-all", file});
    EXPECT_EQ(read.exitCode, 1);
    EXPECT_TRUE(read.err.contains(QStringLiteral("von einem anderen Programm benutzt")))
        << read.err.toStdString();
    EXPECT_GT(records::LoadRecordFile(file).size(), 5);
    const RunResult list = RunProgram(QStringLiteral("kalvo-cli"), {"--archive", url, "archive", "list"});
    EXPECT_EQ(list.exitCode, 0) << list.err.toStdString();
    EXPECT_TRUE(list.out.contains(QStringLiteral("D-1"))) << list.out.toStdString();
}

// The PostgreSQL driver is there but its client library is not (Windows without libpq.dll): a copy
// of the driver that asks for a library nobody has, found first through QT_PLUGIN_PATH.
TEST(ArchiveCliFile, ADriverWithoutItsClientLibraryIsNamedInsteadOfDriverNotLoaded)
{
    const QString driver =
        QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/sqldrivers/libqsqlpsql.so");
    QByteArray bytes = ReadFile(driver);
    if (!bytes.contains("libpq.so.5"))
        GTEST_SKIP() << "no PostgreSQL driver that loads libpq.so.5 in " << driver.toStdString();
    bytes.replace("libpq.so.5", "libpq.no.5");
    QTemporaryDir plugins;
    ASSERT_TRUE(QDir(plugins.path()).mkdir(QStringLiteral("sqldrivers")));
    ASSERT_TRUE(WriteFile(plugins.filePath(QStringLiteral("sqldrivers/libqsqlpsql.so")), bytes));
    const QByteArray before = qgetenv("QT_PLUGIN_PATH");
    qputenv("QT_PLUGIN_PATH", QFile::encodeName(plugins.path()));
    const RunResult list =
        RunProgram(QStringLiteral("kalvo-cli"),
                   {"--archive", "postgresql://kalvo@127.0.0.1:1/archiv", "archive", "list"});
    qputenv("QT_PLUGIN_PATH", before);
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_TRUE(list.err.contains(QStringLiteral("PostgreSQL-Treiber nicht verfügbar: libpq fehlt")))
        << list.err.toStdString();
}

TEST(ArchiveCliFile, ListsAndChecksOfAMistypedArchiveCreateNothing)
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("archvi/archive.sqlite"));
    for (const QStringList &command :
         {QStringList{"archive", "list"}, QStringList{"archive", "verify"}, QStringList{"archive", "due"}}) {
        const RunResult run =
            RunProgram(QStringLiteral("kalvo-cli"), QStringList{"--archive", missing} + command);
        EXPECT_EQ(run.exitCode, 1) << command.join(' ').toStdString();
        EXPECT_TRUE(run.err.contains(QStringLiteral("gibt es nicht"))) << run.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(missing).absolutePath()));
}

TEST(ArchiveCliFile, ADamagedRecordFileImportsOnlyItsWholeRecords)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("archive.sqlite"));
    // Random bytes (a fixed seed), then a line cut before its end mark, then one whole record.
    QByteArray junk(64 * 1024, Qt::Uninitialized);
    quint32 state = 4711;
    for (char &byte : junk) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    const QByteArray whole = MakeRecord({.device = "HEIL"});
    const QString file = dir.filePath(QStringLiteral("kaputt.txt"));
    ASSERT_TRUE(WriteFile(file, junk + "\r\n" + MakeRecord({.device = "HALB"}).chopped(7) + "\r\n" + whole));
    const int lines = static_cast<int>(records::LoadRecordFile(file).size());

    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"), {"--archive", path, "archive", "import", file});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.contains(QStringLiteral(": 1 neu, 0 schon im Archiv, %1 abgelehnt").arg(lines - 1)))
        << run.out.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("ein ganzes Protokoll"))) << run.err.left(400).toStdString();
    Archive archive(ParseArchiveUrl(path));
    const QList<ArchivedRecord> kept = ListRecords(archive, {});
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(kept[0].deviceId, QStringLiteral("HEIL"));
}

} // namespace
