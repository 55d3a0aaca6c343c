// Signed reports and test labels: PDFs read back as text, pictures and QR codes, on SQLite and
// PostgreSQL.
#include "ArchiveSamples.h"

#include "archive/ArchiveQueries.h"
#include "archive/LabelCode.h"
#include "archive/LabelDevices.h"
#include "archive/RecordImport.h"
#include "archive/SignedReport.h"
#include "archive/TestLabels.h"
#include "support/PaperTools.h"
#include "support/TestFiles.h"

#include <QImage>
#include <QRegularExpression>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

TEST(LabelCodeTest, AwkwardCustomersAndIdsComeBackFromTheirText)
{
    const QList<LabelCode> codes = {
        {QStringLiteral("Müller; Söhne \\ Töchter"), QStringLiteral("E-0815"), QDate(2027, 3, 1)},
        {QString(), QStringLiteral("A;B\\"), QDate(2026, 12, 31)},
        {QStringLiteral(";;\\\\;"), QStringLiteral("Ω-7 Straße"), QDate()},
        {QStringLiteral("KALVO1;x"), QStringLiteral("1"), QDate(2030, 1, 1)},
    };
    for (const LabelCode &code : codes) {
        const QString text = LabelCodeText(code);
        const LabelCode back = ParseLabelCode(text);
        EXPECT_EQ(back.customer, code.customer) << text.toStdString();
        EXPECT_EQ(back.deviceId, code.deviceId) << text.toStdString();
        EXPECT_EQ(back.nextTest, code.nextTest) << text.toStdString();
    }
    EXPECT_EQ(LabelCodeText(codes[0]),
              QStringLiteral("KALVO1;Müller\\; Söhne \\\\ Töchter;E-0815;2027-03-01"));
}

TEST(LabelCodeTest, TextsThatAreNoLabelsAreRefusedByName)
{
    for (const char *text : {"", "KALVO2;a;b;2027-01-01", "KALVO1;a;b", "KALVO1;a;b;2027-01-01;x",
                             "KALVO1;a;;2027-01-01", "KALVO1;a;b;2027-02-30", "KALVO1;a;b;27-1-1",
                             "KALVO1;a;b;2027-01-01\\", "https://example.org/E-0815"}) {
        try {
            ParseLabelCode(QString::fromUtf8(text));
            ADD_FAILURE() << "taken: " << text;
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("QR-Text"))) << e.message().toStdString();
        }
    }
}

// Whether `page` has a line "NAME: VALUE" (pdftotext keeps the blanks between them only roughly).
bool HasEntry(const QString &page, const QString &name, const QString &value)
{
    return page.contains(QRegularExpression(QRegularExpression::escape(name) + QStringLiteral(":\\s+") +
                                            QRegularExpression::escape(value)));
}

class ArchivePaperTest : public OnBothBackends {
protected:
    void SetUp() override
    {
        OnBothBackends::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        m_archive = m_place->Open();
        // Two devices; E-0815 tested twice, last failed. The customer has an umlaut and a backslash
        // (code page 437 on the tester: 0x81 is "ü").
        const QList<QByteArray> records = {
            MakeRecord({.device = "E-0815",
                        .type = "Bohrmaschine",
                        .date = "12.01.09",
                        .more = {{61, "M\x81ller \\ Partner"}}}),
            MakeRecord({.device = "E-0815",
                        .type = "Bohrmaschine",
                        .date = "14.01.10",
                        .result = '7',
                        .more = {{61, "M\x81ller \\ Partner"}}}),
            MakeRecord({.device = "K-12", .type = "Kaffeemaschine", .date = "03.02.10"}),
        };
        const ImportResult imported =
            ImportRecords(*m_archive, records, {QStringLiteral("PRUEF-7"), QStringLiteral("123456"), {}, {}});
        ASSERT_EQ(imported.added, 3);
        for (const ArchivedRecord &r : ListRecords(*m_archive, {}))
            m_ids.prepend(r.id); // oldest first
    }
    QString File(const char *name) const { return m_dir.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_dir;
    std::unique_ptr<Archive> m_archive;
    QList<qint64> m_ids;
};

TEST_P(ArchivePaperTest, TheSignedReportCarriesHeaderInstrumentInspectorVerdictDatesAndHashAsPdfA)
{
    QImage logo(120, 60, QImage::Format_RGB32);
    logo.fill(Qt::darkBlue);
    ASSERT_TRUE(logo.save(File("logo.png")));
    const ReportSettings settings{QStringLiteral("Elektro Prüfdienst GmbH"),
                                  QStringLiteral("Werkstraße 5\n12345 Neustadt"), File("logo.png"),
                                  QStringLiteral("Erika Mustermann")};
    const QStringList notes = ExportSignedReportPdf(*m_archive, m_ids, settings, File("signiert.pdf"));
    EXPECT_TRUE(notes.isEmpty()) << notes.join(QLatin1Char('\n')).toStdString();

    const std::optional<QString> text = PdfText(File("signiert.pdf"), {QStringLiteral("-layout")});
    if (!text)
        GTEST_SKIP() << "no pdftotext on this system";
    const QStringList pages = text->split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 3) << text->toStdString();
    for (int i = 0; i < 3; ++i) {
        const QString &page = pages[i];
        const ArchivedRecord r = FetchRecord(*m_archive, m_ids[i])->record;
        EXPECT_TRUE(page.contains(QStringLiteral("Elektro Prüfdienst GmbH"))) << page.toStdString();
        EXPECT_TRUE(page.contains(QStringLiteral("12345 Neustadt"))) << page.toStdString();
        EXPECT_TRUE(
            HasEntry(page, QStringLiteral("Prüfgerät"), QStringLiteral("PRUEF-7, Seriennummer 123456")))
            << page.toStdString();
        EXPECT_TRUE(HasEntry(page, QStringLiteral("Prüfer"), QStringLiteral("Erika Mustermann")))
            << page.toStdString();
        EXPECT_TRUE(HasEntry(page, QStringLiteral("Ergebnis"), r.verdict)) << page.toStdString();
        EXPECT_TRUE(HasEntry(page, QStringLiteral("SHA-256"), QString::fromLatin1(r.sha256)))
            << page.toStdString();
        EXPECT_TRUE(page.contains(QStringLiteral("Ort, Datum"))) << page.toStdString();
        EXPECT_TRUE(page.contains(QStringLiteral("Unterschrift"))) << page.toStdString();
    }
    // E-0815's next test follows from its latest test; the report body is the record window's.
    EXPECT_TRUE(HasEntry(pages[0], QStringLiteral("Nächste Prüfung"), QStringLiteral("14.01.2011")))
        << pages[0].toStdString();
    EXPECT_TRUE(HasEntry(pages[1], QStringLiteral("Ergebnis"), QStringLiteral("nicht bestanden")))
        << pages[1].toStdString();
    EXPECT_TRUE(pages[2].contains(QStringLiteral("Kaffeemaschine"))) << pages[2].toStdString();

    // PDF/A: the document says so in its metadata.
    const QByteArray pdf = ReadFile(File("signiert.pdf"));
    EXPECT_TRUE(pdf.contains("pdfaid:part") && pdf.contains("pdfaid:conformance"))
        << "no PDF/A identification in the XMP metadata";
}

TEST_P(ArchivePaperTest, ALogoThatCannotBeReadIsNamedAndTheReportIsMadeWithoutIt)
{
    ASSERT_TRUE(WriteFile(File("logo.png"), "\x89PNG\r\n\x1a\n not really a picture"));
    ASSERT_TRUE(WriteFile(File("signiert.pdf"), "the old file"));
    ReportSettings settings{QStringLiteral("Firma"), {}, File("logo.png"), QStringLiteral("Prüfer")};
    QStringList notes = ExportSignedReportPdf(*m_archive, {m_ids[0]}, settings, File("signiert.pdf"));
    ASSERT_EQ(notes.size(), 1);
    EXPECT_TRUE(notes[0].contains(QDir::toNativeSeparators(File("logo.png")))) << notes[0].toStdString();
    EXPECT_TRUE(notes[0].contains(QStringLiteral("ohne Logo"))) << notes[0].toStdString();
    EXPECT_TRUE(ReadFile(File("signiert.pdf")).startsWith("%PDF"));

    settings.logoFile = File("fehlt.png");
    notes = ExportSignedReportPdf(*m_archive, {m_ids[0]}, settings, File("signiert.pdf"));
    ASSERT_EQ(notes.size(), 1);
    EXPECT_TRUE(notes[0].contains(QDir::toNativeSeparators(File("fehlt.png")))) << notes[0].toStdString();

    // A record that is not there: named, and the old file stays.
    const QByteArray before = ReadFile(File("signiert.pdf"));
    EXPECT_THROW(ExportSignedReportPdf(*m_archive, {m_ids[0], 999999}, settings, File("signiert.pdf")),
                 ArchiveError);
    EXPECT_EQ(ReadFile(File("signiert.pdf")), before);
}

TEST_P(ArchivePaperTest, LabelsShowEachDeviceOnceAndTheirCodesReadBackToTheDevice)
{
    const QList<LabelDevice> devices = LabelDevices(*m_archive, m_ids);
    ASSERT_EQ(devices.size(), 2);
    EXPECT_EQ(devices[0].deviceId, QStringLiteral("E-0815"));
    EXPECT_EQ(devices[0].customer, QStringLiteral("Müller \\ Partner"));
    EXPECT_TRUE(devices[0].failed);
    EXPECT_EQ(devices[0].nextTest, QDate(2011, 1, 14));

    for (const LabelSheet &sheet : LabelSheets()) {
        SCOPED_TRACE(sheet.name.toStdString());
        const QString pdf = File("etiketten.pdf");
        // On a started sheet the first free label is the 24th: the second goes onto a new sheet.
        WriteLabelsPdf(devices, sheet, sheet.perPage(), pdf);
        const std::optional<QString> text = PdfText(pdf);
        if (!text)
            GTEST_SKIP() << "no pdftotext on this system";
        const QStringList pages = text->split(QLatin1Char('\f'), Qt::SkipEmptyParts);
        ASSERT_EQ(pages.size(), 2) << text->toStdString();
        EXPECT_TRUE(pages[0].contains(QStringLiteral("nicht bestanden"))) << pages[0].toStdString();
        EXPECT_TRUE(pages[0].contains(QStringLiteral("14.01.2011"))) << pages[0].toStdString();
        EXPECT_TRUE(pages[0].contains(QStringLiteral("Geprüft: 14.01.2010"))) << pages[0].toStdString();
        EXPECT_TRUE(pages[0].contains(QStringLiteral("ID-Nr: E-0815"))) << pages[0].toStdString();
        EXPECT_TRUE(pages[0].contains(QStringLiteral("Müller \\ Partner"))) << pages[0].toStdString();
        EXPECT_FALSE(pages[1].contains(QStringLiteral("nicht bestanden"))) << pages[1].toStdString();
        EXPECT_TRUE(pages[1].contains(QStringLiteral("bestanden"))) << pages[1].toStdString();
        EXPECT_TRUE(pages[1].contains(QStringLiteral("ID-Nr: K-12"))) << pages[1].toStdString();

        if (!HaveProgram("pdftoppm") || !HaveProgram("zbarimg"))
            GTEST_SKIP() << "no pdftoppm or zbarimg on this system";
        ASSERT_TRUE(RenderPdfPage(pdf, 1, 300, File("etikett.png")));
        const QStringList codes = ReadQrCodes(File("etikett.png"));
        ASSERT_EQ(codes.size(), 1) << codes.join(QLatin1Char('|')).toStdString();
        EXPECT_EQ(codes[0], LabelText(devices[0]));
        const std::optional<LabelDevice> found = FindLabelDevice(*m_archive, ParseLabelCode(codes[0]));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->lastRecordId, devices[0].lastRecordId);
    }
    // Another customer's label does not find the device.
    EXPECT_FALSE(FindLabelDevice(*m_archive, {QStringLiteral("Andere GmbH"), QStringLiteral("E-0815"), {}}));
}

INSTANTIATE_TEST_SUITE_P(Both, ArchivePaperTest, ::testing::Values(Backend::SQLite, Backend::PostgreSQL),
                         BackendName);

} // namespace
