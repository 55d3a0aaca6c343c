// The record window offscreen against the virtual tester: the store, files, reports, PDF and CSV.
#include "WindowFixture.h"
#include "support/TestFiles.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>

using namespace kalvo;
using namespace kalvo::testing;

class RecordWindowTest : public WindowFixture {
protected:
    QMainWindow &OpenRecords(const QStringList &faults = {})
    {
        Open({QStringLiteral("--simulate")}, faults);
        EXPECT_TRUE(ConnectToSimulator());
        m_window->findChild<QAction *>(QStringLiteral("protokolle"))->trigger();
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == QLatin1String("FRMProt"))
                m_records = qobject_cast<QMainWindow *>(w);
        EXPECT_NE(m_records, nullptr);
        return *m_records;
    }
    void Trigger(const char *name)
    {
        m_records->findChild<QAction *>(QString::fromLatin1(name))->trigger();
        EXPECT_TRUE(Idle());
    }
    QListWidget *List() { return m_records->findChild<QListWidget *>(QStringLiteral("lb1")); }
    QString Report()
    {
        return m_records->findChild<QPlainTextEdit *>(QStringLiteral("Protokol"))->toPlainText();
    }
    QString Path(const char *name) { return m_dir.filePath(QString::fromLatin1(name)); }

    QMainWindow *m_records = nullptr;
};

namespace {

QString PdfText(const QString &path)
{
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    pdftotext.waitForFinished(30000);
    return QString::fromUtf8(pdftotext.readAllStandardOutput());
}

} // namespace

TEST_F(RecordWindowTest, TheStoreListingShowsTestRecordsOnlyAndTheTesterRendersTheChosenOne)
{
    OpenRecords();
    Trigger("dbProt");
    ASSERT_EQ(List()->count(), 14);
    for (int i = 0; i < List()->count(); ++i)
        EXPECT_FALSE(List()->item(i)->text().contains(QStringLiteral("Elektrowerkzeuge"))) << i;
    const qsizetype before = LinesSince(0).size();
    m_records->findChild<QAction *>(QStringLiteral("vorlage3"))->trigger();
    List()->setCurrentRow(4);
    ASSERT_TRUE(Idle());
    ASSERT_TRUE(WaitUntil([&] { return Report().contains(QStringLiteral("─")); }));
    EXPECT_TRUE(Report().contains(QStringLiteral("Infusionspumpe")));
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"tas!ron\r", "prn!3,5\r", "rst!0\r"}));
    Screenshot(*m_records, QStringLiteral("records-tester-print"));
}

TEST_F(RecordWindowTest, AllRecordsGoToAFileThatReadsBackUnchangedAndBecomeReports)
{
    OpenRecords();
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 14; }))
        << List()->count() << " " << m_dialogs.messages.join('|').toStdString() << " files left "
        << m_dialogs.files.size() << " exists " << QFile::exists(Path("alle.txt"));
    const QByteArray file = ReadFile(Path("alle.txt"));
    EXPECT_EQ(file.count("$FF\r\n"), 14);
    EXPECT_TRUE(Report().startsWith(QStringLiteral("Prüfvorschrift:   DIN VDE 0701 Teil 1 bestanden")))
        << Report().left(200).toStdString();

    // Read back into the list: the same records, the same reports.
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("ausDatei");
    ASSERT_EQ(List()->count(), 14);
    List()->setCurrentRow(3);
    EXPECT_TRUE(Report().contains(QStringLiteral("nicht bestanden")));
    EXPECT_TRUE(Report().contains(QStringLiteral("Datum KYM  \t")));
    EXPECT_TRUE(Report().contains(QStringLiteral("Ohm")));

    // The same records stored again give the same bytes.
    m_dialogs.files.push_back(Path("nochmal.txt"));
    Trigger("storeall");
    EXPECT_EQ(ReadFile(Path("nochmal.txt")), file);
}

TEST_F(RecordWindowTest, AReportBecomesAPdfAndTheRecordsACsvWithARowEach)
{
    OpenRecords();
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 14; }));
    List()->setCurrentRow(1);

    m_dialogs.files.push_back(Path("bericht.pdf"));
    Trigger("pdf");
    ASSERT_TRUE(QFile::exists(Path("bericht.pdf"))) << m_dialogs.messages.join('|').toStdString();
    const QString text = PdfText(Path("bericht.pdf"));
    EXPECT_TRUE(text.contains(QStringLiteral("Prüfvorschrift:"))) << text.left(300).toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Wasserkocher")));
    EXPECT_TRUE(text.contains(QStringLiteral("MW R-SL:")));

    m_dialogs.files.push_back(Path("export.csv"));
    Trigger("fexcel");
    const QList<QByteArray> rows = ReadFile(Path("export.csv")).split('\n');
    // The header, one row per record, and nothing behind the last line end.
    ASSERT_EQ(rows.size(), 1 + 14 + 1) << ReadFile(Path("export.csv")).left(400).constData();
    EXPECT_TRUE(rows[1].startsWith(";")) << rows[1].left(40).constData();
    EXPECT_TRUE(rows.last().isEmpty());
}

TEST_F(RecordWindowTest, TheAccessorysRecordsAreReadListedAndStored)
{
    Open({QStringLiteral("--simulate")});
    WaitUntil([&] { return m_tester.load() != nullptr; });
    m_window->device().RunAndWait([this](link::Link &) { m_tester.load()->model().setKymInFront(true); });
    EXPECT_TRUE(ConnectToSimulator());
    m_window->findChild<QAction *>(QStringLiteral("protokolle"))->trigger();
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("FRMProt"))
            m_records = qobject_cast<QMainWindow *>(w);
    ASSERT_NE(m_records, nullptr);
    m_dialogs.files.push_back(Path("kym.txt"));
    Trigger("kymAscii");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 5; }));
    EXPECT_TRUE(Report().contains(QStringLiteral("Reparatur:")));
    EXPECT_FALSE(ReadFile(Path("kym.txt")).isEmpty());
}
