// The record window FRMProt ("Protokoll utility"): the record list, the report box, reading,
// printing, PDF, files and the CSV export.
#include "RecordWindow.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "records/RecordDecoding.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"
#include "records/ReportBuilder.h"
#include "records/TesterPrintText.h"
#include "records/print/ReportDocument.h"
#include "shell/ui/DeviceThread.h"

#include <QActionGroup>
#include <QDir>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QSplitter>

namespace kalvo::records::ui {

namespace {
const QString kLogTmp = QStringLiteral("log.tmp");
const QString kProtoTxt = QStringLiteral("proto.txt");
const QString kPdfFilter = QStringLiteral("PDF (*.pdf)|*.pdf");
} // namespace

RecordWindow::RecordWindow(shell::ui::DeviceThread &device, link::Prompter &prompter,
                           const QString &programDir, QWidget *parent)
    : QMainWindow(parent), m_device(device), m_prompter(prompter), m_programDir(programDir)
{
    setObjectName(QStringLiteral("FRMProt"));
    setWindowTitle(QStringLiteral("Protokoll utility"));
    auto *splitter = new QSplitter(this);
    m_list = new QListWidget(splitter);
    m_list->setObjectName(QStringLiteral("lb1"));
    m_report = new QPlainTextEdit(splitter);
    m_report->setObjectName(QStringLiteral("Protokol"));
    m_report->setFont(ReportFont());
    m_report->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_report->setTabStopDistance(QFontMetricsF(m_report->font()).horizontalAdvance(QLatin1Char(' ')) * 8);
    splitter->setStretchFactor(1, 3);
    setCentralWidget(splitter);
    BuildMenus();
    EnableOutput(false);
    connect(m_list, &QListWidget::currentRowChanged, this, &RecordWindow::RecordSelected);
    resize(900, 620);
}

void RecordWindow::BuildMenus()
{
    const auto add = [this](QMenu *menu, const char *name, const QString &caption, auto slot) {
        QAction *a = menu->addAction(caption);
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    QMenu *current = menuBar()->addMenu(QStringLiteral("Aktuell"));
    m_deviceActions << add(current, "aktuellProt", QStringLiteral("als Protokoll"),
                           &RecordWindow::ShowCurrentRecord)
                    << add(current, "storesingle", QStringLiteral("als Ascii"),
                           &RecordWindow::StoreCurrentRecordToFile);
    QMenu *store = menuBar()->addMenu(QStringLiteral("aus Datenbank"));
    m_deviceActions << add(store, "dbProt", QStringLiteral("als Protokoll"), &RecordWindow::ShowStoreListing)
                    << add(store, "storeall", QStringLiteral("als Ascii"),
                           &RecordWindow::StoreAllRecordsToFile);
    QMenu *kym = menuBar()->addMenu(QStringLiteral("aus KYM"));
    m_deviceActions << add(kym, "kymAscii", QStringLiteral("aus KYM"), &RecordWindow::ReadAccessory);
    m_protStore = add(kym, "protStore", QStringLiteral("speichern"), &RecordWindow::StoreAccessory);
    m_fexcel = add(kym, "fexcel", QStringLiteral("Ansi (Windows)"), &RecordWindow::ExportCsv);
    m_deviceActions << m_protStore;
    QMenu *file = menuBar()->addMenu(QStringLiteral("aus Datei"));
    add(file, "ausDatei", QStringLiteral("aus Datei"), &RecordWindow::LoadRecordsFromFile);
    QMenu *report = menuBar()->addMenu(QStringLiteral("Protokoll"));
    add(report, "PrintProt", QStringLiteral("Mache Protokoll"), &RecordWindow::MakeReport);
    m_drucken = add(report, "drucken", QStringLiteral("Drucken"), &RecordWindow::PrintReport);
    m_pdf = add(report, "pdf", QStringLiteral("als PDF speichern"), &RecordWindow::SaveReportAsPdf);

    QMenu *templates = menuBar()->addMenu(QStringLiteral("Vorlagen"));
    auto *group = new QActionGroup(this);
    const std::pair<const char *, int> entries[] = {
        {"Vorlage 1", 1}, {"Vorlage 2", 2}, {"Vorlage 3", 3}, {"Vorlage 4", 4}, {"Universal", 0}};
    for (const auto &[caption, number] : entries) {
        QAction *a = templates->addAction(QString::fromLatin1(caption));
        a->setObjectName(QStringLiteral("vorlage%1").arg(number));
        a->setCheckable(true);
        a->setChecked(number == m_template);
        group->addAction(a);
        connect(a, &QAction::triggered, this, [this, number = number] { m_template = number; });
    }
}

void RecordWindow::SetBusy(bool busy)
{
    for (QAction *a : std::as_const(m_deviceActions))
        a->setEnabled(!busy);
    m_list->setEnabled(!busy);
}

QString RecordWindow::reportText() const
{
    return m_report->toPlainText();
}

void RecordWindow::Post(std::function<void(link::Link &)> job)
{
    m_device.Post([job = std::move(job)](link::Link &link) {
        if (!link.PortClosed())
            job(link);
    });
}

void RecordWindow::OnWindow(std::function<void()> call)
{
    QMetaObject::invokeMethod(this, std::move(call));
}

void RecordWindow::EnableOutput(bool on)
{
    m_drucken->setEnabled(on);
    m_pdf->setEnabled(on);
    m_protStore->setEnabled(on);
    m_fexcel->setEnabled(on);
}

void RecordWindow::ShowReport(const QString &text)
{
    m_report->setPlainText(text);
    EnableOutput(true);
    emit shown();
}

void RecordWindow::ShowPrintText(const QString &text)
{
    ShowReport(text);
    // The tester draws its frames with line-drawing characters; without them the report shows gaps.
    if (!HasLineDrawing(m_report->font()))
        m_prompter.message(
            QStringLiteral("Um Umlaute, Ohm und andere ASCII Zeichen darstellen zu können muß die "
                           "Schriftart MS LineDraw installiert sein"),
            link::Prompter::Icon::Warning);
}

void RecordWindow::ShowRecords(const QList<QByteArray> &records, Source source)
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    m_records = records;
    m_numbers.clear();
    m_source = source;
    for (qsizetype i = 0; i < records.size(); ++i)
        m_list->addItem(QString::number(i + 1));
    EnableOutput(!records.isEmpty());
    if (!records.isEmpty())
        m_list->setCurrentRow(0);
    RecordSelected(m_list->currentRow());
    emit shown();
}

void RecordWindow::ShowCurrentRecord()
{
    const int number = m_template;
    Post([this, number](link::Link &link) {
        const QString text = RenderCurrentRecord(link, number);
        OnWindow([this, text] { ShowPrintText(text); });
    });
}

void RecordWindow::StoreCurrentRecordToFile()
{
    Post([this](link::Link &link) {
        const RetrievalResult result = StoreCurrentRecord(link, m_prompter);
        if (result.status == RetrievalStatus::Done && !result.records.isEmpty())
            OnWindow([this, record = result.records.first()] { ShowReport(link::DecodeRecordText(record)); });
    });
}

void RecordWindow::ShowStoreListing()
{
    const QString proto = QDir::current().filePath(kProtoTxt);
    Post([this, proto](link::Link &link) {
        const ListingResult result = ListStoreRecords(link, m_prompter, proto);
        if (result.status != RetrievalStatus::Done)
            return;
        OnWindow([this, entries = result.listing.records, numbers = result.listing.numbers] {
            const QSignalBlocker blocker(m_list);
            m_list->clear();
            m_records.clear();
            m_numbers = numbers;
            m_source = Source::TesterStore;
            m_list->addItems(entries);
            EnableOutput(!entries.isEmpty());
            emit shown();
        });
    });
}

void RecordWindow::StoreAllRecordsToFile()
{
    m_report->clear();
    m_list->clear();
    Post([this](link::Link &link) {
        const RetrievalResult result = StoreAllRecords(link, m_prompter);
        if (result.status == RetrievalStatus::Done)
            OnWindow([this, records = result.records] { ShowRecords(records, Source::Records); });
    });
}

void RecordWindow::ReadAccessory()
{
    m_list->clear();
    const QString logTmp = QDir(m_programDir).filePath(kLogTmp);
    Post([this, logTmp](link::Link &link) {
        const RetrievalResult result = ReadAccessoryRecords(link, m_prompter, logTmp);
        if (result.status != RetrievalStatus::Done)
            return;
        OnWindow([this, records = result.records] { ShowRecords(records, Source::Records); });
        // As after every accessory read, the records go to a file of the user's choice.
        StoreAccessoryRecords(link, m_prompter, logTmp, result.records, QString());
    });
}

void RecordWindow::StoreAccessory()
{
    const QString logTmp = QDir(m_programDir).filePath(kLogTmp);
    Post([this, logTmp, records = m_records, text = reportText()](link::Link &link) {
        StoreAccessoryRecords(link, m_prompter, logTmp, records, text);
    });
}

void RecordWindow::ExportCsv()
{
    const QString path = m_prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return;
    try {
        ExportCsvFile(path, QString(), m_records, reportText());
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Critical);
    }
}

void RecordWindow::LoadRecordsFromFile()
{
    const QString path = m_prompter.askOpenFile(kRecordFileFilter);
    if (path.isEmpty())
        return;
    try {
        ShowRecords(LoadRecordFile(path), Source::Records);
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Critical);
    }
}

void RecordWindow::MakeReport()
{
    try {
        ShowReport(BuildReport(DecodeRecord(EncodeShownText(reportText()))));
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.text(), link::Prompter::Icon::Warning);
    }
}

void RecordWindow::RecordSelected(int row)
{
    if (row < 0)
        return;
    if (m_source == Source::Records && row < m_records.size()) {
        try {
            ShowReport(BuildReport(DecodeRecord(m_records[row])));
        } catch (const link::KalvoError &e) {
            m_report->setPlainText(link::DecodeRecordText(m_records[row]));
            m_prompter.message(e.text(), link::Prompter::Icon::Warning);
        }
    } else if (m_source == Source::TesterStore && row < m_numbers.size()) {
        const int number = m_numbers[row];
        const int templateNumber = m_template;
        Post([this, number, templateNumber](link::Link &link) {
            const QString text = RenderStoredRecord(link, templateNumber, number);
            OnWindow([this, text] { ShowPrintText(text); });
        });
    }
}

void RecordWindow::PrintReport()
{
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    PaintReport(reportText(), printer);
}

void RecordWindow::SaveReportAsPdf()
{
    const QString path = m_prompter.askSaveFile(kPdfFilter);
    if (path.isEmpty())
        return;
    try {
        SaveReportPdf(reportText(), path, windowTitle());
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Critical);
    }
}

} // namespace kalvo::records::ui
