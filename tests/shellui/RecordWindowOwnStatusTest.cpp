// The record window on its own: it says in its own status line what its work did, its template
// number entry says what it takes, a report after a template is set as a report again, and a
// report lies on the printed page where it lies in its PDF.
#include "RecordWindowFixture.h"

#include "gui/StatusLine.h"
#include "records/print/ReportDocument.h"
#include "support/TestFiles.h"

#include <QFontMetricsF>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrinter>
#include <QRegularExpression>
#include <QTest>

using namespace kalvo;
using namespace kalvo::testing;

namespace {

// Where the first word of a PDF lies on its page, in points, as pdftotext reads it back.
std::optional<QPointF> FirstWordAt(const QString &pdf)
{
    const std::optional<QString> boxes = PdfText(pdf, {QStringLiteral("-bbox")});
    if (!boxes)
        return std::nullopt;
    static const QRegularExpression word(QStringLiteral(R"re(<word xMin="([\d.]+)" yMin="([\d.]+)")re"));
    const QRegularExpressionMatch match = word.match(*boxes);
    if (!match.hasMatch())
        return std::nullopt;
    return QPointF(match.captured(1).toDouble(), match.captured(2).toDouble());
}

} // namespace

TEST_F(RecordWindowTest, TheRecordWindowSaysInItsOwnStatusLineWhatItsWorkDid)
{
    OpenRecords();
    auto *status = m_records->findChild<gui::StatusLine *>(QStringLiteral("recordStatus"));
    ASSERT_NE(status, nullptr) << "the record window covers the main window's status bar";
    EXPECT_TRUE(status->isVisible());

    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() > 0; }));
    EXPECT_EQ(status->operationText(), QStringLiteral("%1 Protokolle gelesen").arg(List()->count()));

    m_dialogs.files.push_back(Path("bericht.pdf"));
    Trigger("pdf");
    EXPECT_EQ(status->operationText(),
              QStringLiteral("Datei gespeichert: %1").arg(QDir::toNativeSeparators(Path("bericht.pdf"))));

    // In the program's language, as the main window's.
    m_window->findChild<QAction *>(QStringLiteral("english"))->trigger();
    m_dialogs.files.push_back(Path("bericht2.pdf"));
    Trigger("pdf");
    EXPECT_EQ(status->operationText(),
              QStringLiteral("File saved: %1").arg(QDir::toNativeSeparators(Path("bericht2.pdf"))));
    Screenshot(*m_records, QStringLiteral("record-window-own-status"));
}

TEST_F(RecordWindowTest, TheTemplateNumberIsLabelledRefusedWithAReasonAndAStoredTemplateAskedFor)
{
    OpenRecords();
    auto *status = m_records->findChild<gui::StatusLine *>(QStringLiteral("recordStatus"));
    ASSERT_NE(status, nullptr);
    m_dialogs.files.push_back(Path("alle.txt"));
    Trigger("storeall");
    ASSERT_TRUE(WaitUntil([&] { return List()->count() > 1; }));

    // The entry says what it takes, and a number the tester has no template for is refused so.
    Trigger("protvor");
    auto *number = m_records->findChild<QLineEdit *>(QStringLiteral("VorTExt"));
    auto *label = m_records->findChild<QLabel *>(QStringLiteral("templateNumberLabel"));
    ASSERT_NE(label, nullptr);
    EXPECT_TRUE(label->isVisible());
    EXPECT_EQ(label->text(), QStringLiteral("Vorlage (0 bis 4):"));
    EXPECT_EQ(label->buddy(), number);
    QTest::keyClicks(number, QStringLiteral("7"));
    QTest::keyClick(number, Qt::Key_Return);
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_EQ(m_dialogs.messages.last(),
              QStringLiteral("Vorlage 7 gibt es nicht: der Kalvomer hat die Vorlagen 0 bis 4."));
    EXPECT_FALSE(label->isVisible());

    Trigger("protvor");
    QTest::keyClicks(number, QStringLiteral("2"));
    QTest::keyClick(number, Qt::Key_Return);
    ASSERT_TRUE(Idle());
    ASSERT_TRUE(
        WaitUntil([&] { return Report().contains(QChar(0x2500)) || Report().contains(QChar(0x2502)); }));

    // Storing it replaces the template in the tester's slot: Enter keeps the tester's.
    const qsizetype before = LinesSince(0).size();
    m_dialogs.pressEnter = true;
    Trigger("Command2");
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.messages.size() == 2 && !m_window->device().busy(); }));
    EXPECT_EQ(m_dialogs.messages.last(),
              QStringLiteral("Vorlage 1 im Kalvomer wird durch %1 ersetzt. Speichern?")
                  .arg(QDir::toNativeSeparators(Path("2.pr"))));
    EXPECT_EQ(m_dialogs.defaultButtons.last(), int(QMessageBox::Cancel));
    EXPECT_TRUE(LinesSince(before).isEmpty());
    m_dialogs.pressEnter = false;
    m_dialogs.confirmations = {true};
    Trigger("Command2");
    ASSERT_TRUE(Idle());
    EXPECT_TRUE(LinesSince(before).contains("kal!upd3\r")) << "the template loader starts";
    EXPECT_EQ(status->operationText(), QStringLiteral("speichern im Kalvomer: fertig"));

    // A record shown after the template is set as a report again: its font, its tab stops.
    List()->setCurrentRow(1);
    auto *box = m_records->findChild<QPlainTextEdit *>(QStringLiteral("Protokol"));
    EXPECT_EQ(box->font(), records::ReportFont());
    EXPECT_DOUBLE_EQ(box->tabStopDistance(),
                     QFontMetricsF(records::ReportFont()).horizontalAdvance(QLatin1Char(' ')) * 8);
}

TEST_F(RecordWindowTest, APrintedReportLiesOnThePageWhereItsPdfHasIt)
{
    if (!HavePdfToText())
        GTEST_SKIP() << "no pdftotext on this system";
    const QString report = QStringLiteral("Prüfprotokoll\tGerät 4711\nSchutzleiter\t0.05 Ohm\n");
    // What "Drucken" does with the printer the dialog returns, here one that prints to a file.
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setOutputFileName(Path("gedruckt.pdf"));
    records::PaintReport(report, printer);
    records::SaveReportPdf(report, Path("gespeichert.pdf"), QStringLiteral("Bericht"));

    const std::optional<QPointF> printed = FirstWordAt(Path("gedruckt.pdf"));
    const std::optional<QPointF> saved = FirstWordAt(Path("gespeichert.pdf"));
    ASSERT_TRUE(printed && saved);
    EXPECT_NEAR(printed->x(), saved->x(), 0.5);
    EXPECT_NEAR(printed->y(), saved->y(), 0.5);
    // 15 mm from the left edge of the page.
    EXPECT_NEAR(saved->x(), 15 / 25.4 * 72, 1.0);
}
