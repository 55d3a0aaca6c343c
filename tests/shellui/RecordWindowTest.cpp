// The record window offscreen against the virtual tester: the store, files, reports, PDF and CSV.
#include "RecordWindowFixture.h"
#include "archive/ArchiveLocation.h"
#include "archive/ui/ArchiveTableModel.h"
#include "archive/ui/ArchiveWindow.h"
#include "gui/DeviceThread.h"
#include "link/Link.h"
#include "link/TextIds.h"
#include "records/RecordSamples.h"
#include "sim/SampleRecords.h"
#include "support/TestFiles.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QTimer>

using namespace kalvo;
using namespace kalvo::testing;

TEST_F(RecordWindowTest, TheStoreListingShowsTestRecordsOnlyAndTheTesterRendersTheChosenOne)
{
    OpenRecords();
    // Two specifications in front of the test records: the listing leaves them out, its numbers count them.
    m_window->device().RunAndWait([this](link::Link &) {
        m_tester.load()->model().records().setSpecifications(sim::SampleSpecifications());
    });
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
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"tas!ron\r", "prn!3,7\r", "rst!0\r"}));
    Screenshot(*m_records, QStringLiteral("records-tester-print"));
}

TEST_F(RecordWindowTest, EachReportTemplateOfVorlagenRendersTheCurrentRecordWithItsNumber)
{
    OpenRecords();
    QMenu *templates = nullptr;
    for (QAction *menu : m_records->menuBar()->actions())
        if (menu->text() == QStringLiteral("Vorlagen"))
            templates = menu->menu();
    ASSERT_NE(templates, nullptr);
    const struct {
        const char *caption;
        QByteArray command;
    } choices[] = {
        {"1 (DIN VDE 0701)", "prn!1\r"}, {"2 (DIN VDE 0702)", "prn!2\r"}, {"3 (DIN VDE 0751)", "prn!3\r"},
        {"4 (IEC 601)", "prn!4\r"},      {"5 (Universal)", "prn!0\r"},
    };
    const QList<QAction *> entries = templates->actions();
    ASSERT_EQ(entries.size(), std::size(choices));
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const auto &choice = choices[i];
        EXPECT_EQ(entries[i]->text().toStdString(), choice.caption) << i;
        entries[i]->trigger();
        EXPECT_TRUE(entries[i]->isChecked()) << choice.caption;
        const qsizetype before = LinesSince(0).size();
        Trigger("aktuellProt");
        EXPECT_EQ(LinesSince(before), QList<QByteArray>{choice.command}) << choice.caption;
    }
}

TEST_F(RecordWindowTest, TheRecordWindowEditsTheLimitsWithAFrameOfItsOwn)
{
    OpenRecords();
    auto *frame = m_records->findChild<QWidget *>(QStringLiteral("GWFrame"));
    ASSERT_NE(frame, nullptr);
    EXPECT_FALSE(frame->isVisible());
    Trigger("Ubez");
    ASSERT_TRUE(WaitUntil([&] { return frame->isVisible(); }));
    auto *scroll = frame->findChild<QScrollBar *>(QStringLiteral("VScroll1"));
    EXPECT_EQ(scroll->maximum(), 300);
    scroll->setValue(300);
    EXPECT_EQ(frame->findChild<QLabel *>(QStringLiteral("Label10"))->text(), QStringLiteral(" 300 V"));
    const qsizetype before = LinesSince(0).size();
    QMetaObject::invokeMethod(frame->findChild<QPushButton *>(QStringLiteral("GWok")), "click");
    ASSERT_TRUE(Idle());
    QMetaObject::invokeMethod(frame->findChild<QPushButton *>(QStringLiteral("GWspeichern")), "click");
    ASSERT_TRUE(Idle());
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"wer!bgw601_UBEZ+300 V\r", "cfg!pgm\r"}));
    Screenshot(*m_records, QStringLiteral("records-limit-frame"));
    // The main window's frame is another one and stays as it was.
    EXPECT_FALSE(m_window->findChild<QWidget *>(QStringLiteral("GWFrame"))->isVisible());
    // Its entries speak the program's language.
    m_window->findChild<QAction *>(QStringLiteral("english"))->trigger();
    EXPECT_EQ(m_records->findChild<QAction *>(QStringLiteral("Ubez"))->text(),
              m_window->texts().text(link::TxtMenuLimitReferenceVoltage));
    EXPECT_EQ(m_records->findChild<QMenu *>(QStringLiteral("grenzwerte"))->title(),
              m_window->texts().text(link::TxtMenuLimits));
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
    if (const std::optional<QString> text = PdfText(Path("bericht.pdf"), {QStringLiteral("-layout")})) {
        EXPECT_TRUE(text->contains(QStringLiteral("Prüfvorschrift:"))) << text->left(300).toStdString();
        EXPECT_TRUE(text->contains(QStringLiteral("Wasserkocher")));
        EXPECT_TRUE(text->contains(QStringLiteral("MW R-SL:")));
    }

    m_dialogs.files.push_back(Path("export.csv"));
    Trigger("fexcel");
    const QList<QByteArray> rows = ReadFile(Path("export.csv")).split('\n');
    // The header, one row per record, each ending behind the next record's first character; the
    // last record's "$FF" has none behind it, and so no line end.
    ASSERT_EQ(rows.size(), 1 + 14) << ReadFile(Path("export.csv")).left(400).constData();
    EXPECT_TRUE(rows[1].startsWith(";")) << rows[1].left(40).constData();
    EXPECT_TRUE(rows[1].endsWith("$FFP\r")) << rows[1].right(40).constData();
    EXPECT_TRUE(rows.last().endsWith("$FF")) << rows.last().right(40).constData();
}

TEST_F(RecordWindowTest, RecordsReadInTheWindowGoIntoTheArchiveOnceAndShowInTheWindowArchiv)
{
    archive::WriteArchiveSettings({true, Path("archiv.sqlite")});
    OpenRecords();
    // After each read the main window asks once for the customer of the records that name none.
    m_dialogs.inputs.push_back(QStringLiteral("Werkstatt"));
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    // The question comes once the read is over; it is answered before the next read starts, as a
    // person would, so that the tester's records are kept first.
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 14 && m_dialogs.proposals.size() == 1; }));
    // The same records once more, from the file just written: the archive keeps each once.
    m_dialogs.inputs.push_back(std::nullopt);
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("ausDatei");
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.proposals.size() == 2; }));
    EXPECT_EQ(m_dialogs.proposals, (QStringList{"ohne Kunde", "Werkstatt"})); // the last choice
    EXPECT_TRUE(m_dialogs.prompts[0].startsWith(QStringLiteral("Kunde der gelesenen Protokolle")));
    // The question belongs to the window that read, as every dialog of the read does.
    for (const DialogAnswerer::Seen &seen : std::as_const(m_dialogs.seen))
        EXPECT_EQ(seen.owner.data(), static_cast<QWidget *>(m_records)) << seen.title.toStdString();

    m_window->findChild<QAction *>(QStringLiteral("archiv"))->trigger();
    archive::ui::ArchiveWindow *window = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("FRMArchiv"))
            window = qobject_cast<archive::ui::ArchiveWindow *>(w);
    ASSERT_NE(window, nullptr);
    // The archive works on its own thread: the window shows the records when they are in.
    ASSERT_TRUE(WaitUntil([&] { return !window->busy() && window->model()->total() == 14; }))
        << window->status()->text().toStdString();
    // Read from the tester, which the archive names with its serial number.
    const archive::RecordSource &source = window->model()->record(13).source;
    EXPECT_EQ(source.file, QString());
    EXPECT_EQ(source.tester, QString::fromLatin1(m_window->identity().shortDesignation).trimmed());
    EXPECT_FALSE(source.tester.isEmpty());
    EXPECT_EQ(source.testerSerial, QStringLiteral("0471 1203 5567"));
    EXPECT_EQ(window->model()->record(13).customerName, QStringLiteral("Werkstatt"));
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('|').toStdString();
    window->table()->selectRow(2);
    ASSERT_TRUE(WaitUntil([&] { return !window->busy(); }));
    Screenshot(*window, QStringLiteral("archive-window"));
    QDialog *intervals = nullptr;
    QObject::connect(window, &archive::ui::ArchiveWindow::intervalsShown, window,
                     [&intervals](QDialog *dialog) { intervals = dialog; });
    window->findChild<QAbstractButton *>(QStringLiteral("intervalle"))->click();
    ASSERT_TRUE(WaitUntil([&] { return intervals != nullptr; }));
    Screenshot(*intervals, QStringLiteral("archive-intervals"));
    intervals->reject();

    // Switched off, a read leaves the archive as it was.
    archive::WriteArchiveSettings({false, Path("archiv.sqlite")});
    ASSERT_TRUE(WriteFile(Path("neu.txt"), RecordText({{2, CodeString('0', '5')}, {3, "NEU-1"}})));
    m_dialogs.files.push_back(Path("neu.txt"));
    Trigger("ausDatei");
    QTest::qWait(200); // a keeping that would happen is posted by now
    window->Search();
    ASSERT_TRUE(WaitUntil([&] { return !window->busy(); }));
    EXPECT_EQ(window->model()->total(), 14);
}

TEST_F(RecordWindowTest, TheAccessorysRecordsAreReadListedAndStored)
{
    OpenRecords({}, true);
    m_dialogs.files.push_back(Path("kym.txt"));
    Trigger("kymAscii");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 5; }));
    EXPECT_TRUE(Report().contains(QStringLiteral("Reparatur:")));
    EXPECT_FALSE(ReadFile(Path("kym.txt")).isEmpty());
}

TEST_F(RecordWindowTest, ARefusedRecordLeavesTheChosenFileByteForByteAndListsNothing)
{
    const QByteArray old = "PALT;M\x81ller;$FF\r\n";
    WriteFile(Path("alle.txt"), old);
    // The save dialog asks whether to replace the file from inside the answerer's own tick, where
    // the answerer cannot see it: this timer says yes.
    QTimer replace;
    QObject::connect(&replace, &QTimer::timeout, [] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box && qobject_cast<QFileDialog *>(box->parentWidget()) && box->button(QMessageBox::Yes))
            box->button(QMessageBox::Yes)->click();
    });
    replace.start(20);
    OpenRecords({QStringLiteral("refuse:prx?3y")});
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.messages.join('|').contains(QStringLiteral("abgelehnt")); }))
        << m_dialogs.messages.join('|').toStdString();
    EXPECT_TRUE(m_dialogs.messages.join('|').contains(QStringLiteral("prx?3y")));
    EXPECT_EQ(ReadFile(Path("alle.txt")), old);
    EXPECT_EQ(List()->count(), 0);
}

TEST_F(RecordWindowTest, ARefusedAccessoryReadLeavesLogTmpAndAsksForNoFile)
{
    const QString logTmp = QDir(m_programDir).filePath(QStringLiteral("log.tmp"));
    const QByteArray before = ReadFile(logTmp);
    OpenRecords({QStringLiteral("refuse:wer?")}, true);
    m_dialogs.files.push_back(Path("kym.txt"));
    Trigger("kymAscii");
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.messages.join('|').contains(QStringLiteral("abgelehnt")); }))
        << m_dialogs.messages.join('|').toStdString();
    EXPECT_EQ(ReadFile(logTmp), before);
    EXPECT_FALSE(QFile::exists(Path("kym.txt")));
    EXPECT_EQ(m_dialogs.files.size(), 1u); // the save dialog of protStore never came
    EXPECT_EQ(List()->count(), 0);
}

TEST_F(RecordWindowTest, ARecordFileInTesterOrWindowsBytesShowsItsUmlautsAndSigns)
{
    QByteArray file;
    for (const QByteArray &name : {QByteArray("M\x81ller"), QByteArray("M\xfcller")})
        file += RecordText(
            {{1, "KALVO"}, {2, CodeString('1', '5')}, {3, "#12 @Werk"}, {55, "18.03.09"}, {61, name}});
    WriteFile(Path("gemischt.txt"), file);
    OpenRecords();
    m_dialogs.files.push_back(Path("gemischt.txt"));
    Trigger("ausDatei");
    ASSERT_EQ(List()->count(), 2);
    for (const int row : {0, 1}) {
        SCOPED_TRACE(row);
        List()->setCurrentRow(row);
        EXPECT_TRUE(Report().contains(QStringLiteral("Name    \tMüller\n"))) << Report().toStdString();
        EXPECT_TRUE(Report().contains(QStringLiteral("ID_Nr:          #12 @Werk\n")));
    }
}

TEST_F(RecordWindowTest, DialogsBelongToTheRecordWindowAndSayWhatTheyDo)
{
    OpenRecords({QStringLiteral("refuse:prx?3y")});
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.seen.size() >= 2; }));
    // The save dialog, then the refusal: both over the record window, neither over the main window.
    for (const DialogAnswerer::Seen &dialog : std::as_const(m_dialogs.seen)) {
        EXPECT_EQ(dialog.owner, m_records) << dialog.title.toStdString();
        EXPECT_EQ(dialog.title, QStringLiteral("aus Datenbank: als Ascii"));
    }
    EXPECT_FALSE(m_window->isActiveWindow() && !m_records->isActiveWindow());
}

TEST_F(RecordWindowTest, SaveDialogsAddTheSuffixOfTheirFilterAndTheCsvExportOffersCsvFirst)
{
    OpenRecords();
    m_dialogs.files.push_back(Path("alle"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 14; }));
    EXPECT_TRUE(QFile::exists(Path("alle.txt")));
    EXPECT_FALSE(QFile::exists(Path("alle")));

    m_dialogs.files.push_back(Path("bericht"));
    Trigger("pdf");
    EXPECT_TRUE(QFile::exists(Path("bericht.pdf")));

    // The first filter of the export is "*.csv", so a bare name becomes a ".csv".
    m_dialogs.files.push_back(Path("tabelle"));
    Trigger("fexcel");
    EXPECT_TRUE(QFile::exists(Path("tabelle.csv")));

    // A name with its own suffix keeps it, and "aus Datei" finds the file under its name.
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("ausDatei");
    EXPECT_EQ(List()->count(), 14);
}

TEST_F(RecordWindowTest, RecordsAreListedAsTheyArriveAndMakeReportWantsARecordText)
{
    OpenRecords();
    auto *makeReport = m_records->findChild<QAction *>(QStringLiteral("PrintProt"));
    EXPECT_FALSE(makeReport->isEnabled()); // the report box is empty

    // Rows appear one at a time, while the read still runs.
    QList<int> rowsWhileBusy;
    QObject::connect(List()->model(), &QAbstractItemModel::rowsInserted, [&] {
        if (m_window->device().busy())
            rowsWhileBusy << List()->count();
    });
    QList<int> progress;
    QObject::connect(&m_window->device(), &gui::DeviceThread::progressed,
                     [&](int percent) { progress << percent; });
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() == 14; }));
    ASSERT_GE(rowsWhileBusy.size(), 14);
    EXPECT_EQ(rowsWhileBusy.mid(0, 3), (QList<int>{1, 2, 3}));
    ASSERT_FALSE(progress.isEmpty());
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_TRUE(makeReport->isEnabled());
}

TEST_F(RecordWindowTest, ATemplateGoesFromTheTesterIntoTheEditorIntoAFileAndBack)
{
    OpenRecords();
    Trigger("protvor");
    auto *number = m_records->findChild<QLineEdit *>(QStringLiteral("VorTExt"));
    ASSERT_TRUE(number->isVisible());
    // Digits only, four at the most.
    QTest::keyClick(number, Qt::Key_A);
    QTest::keyClicks(number, QStringLiteral("2"));
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_EQ(m_dialogs.messages.value(0), QStringLiteral("Nur maximal 4 Zahlen möglich"));
    EXPECT_EQ(number->text(), QStringLiteral("2"));
    QTest::keyClick(number, Qt::Key_Return);
    ASSERT_TRUE(Idle());
    ASSERT_TRUE(WaitUntil([&] { return !Report().isEmpty(); }));
    EXPECT_EQ(m_records->findChild<QLabel *>(QStringLiteral("ProtLabel"))->text(), QStringLiteral("2.pr"));
    EXPECT_TRUE(m_records->findChild<QAction *>(QStringLiteral("speichern"))->isEnabled());
    EXPECT_FALSE(m_records->findChild<QAction *>(QStringLiteral("drucken"))->isEnabled());
    const QString fromTester = Report();
    EXPECT_TRUE(fromTester.contains(QChar(0x2500)) || fromTester.contains(QChar(0x2502)))
        << "the line-drawing characters should show as such: " << fromTester.left(120).toStdString();

    // Edited, kept in its file with CR LF lines and the tester's bytes, and stored into slot 3.
    auto *box = m_records->findChild<QPlainTextEdit *>(QStringLiteral("Protokol"));
    EXPECT_FALSE(box->isReadOnly());
    box->moveCursor(QTextCursor::End);
    box->insertPlainText(QStringLiteral("\nGeändert"));
    m_records->findChild<QAction *>(QStringLiteral("vor3"))->trigger();
    const qsizetype before = LinesSince(0).size();
    Trigger("Command2");
    ASSERT_TRUE(Idle());
    const QByteArray file = ReadFile(m_dir.filePath(QStringLiteral("2.pr")));
    EXPECT_TRUE(file.endsWith("\r\nGe\x84ndert\r\n") || file.endsWith("\r\nGe\x84ndert"))
        << file.right(40).toHex().constData();
    EXPECT_TRUE(QFile::exists(m_dir.filePath(QStringLiteral("2.P"))));
    const QList<QByteArray> lines = LinesSince(before);
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_TRUE(lines.contains("kal!upd3\r")) << QByteArrayList(lines).join(' ').left(300).toStdString();
    QByteArray slot3;
    m_window->device().RunAndWait([&](link::Link &link) { slot3 = link.Exchange("prn?3"); });
    EXPECT_TRUE(slot3.contains("Ge\x84ndert")) << slot3.right(60).toHex().constData();
}
