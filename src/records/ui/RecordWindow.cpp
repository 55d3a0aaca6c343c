// The record window FRMProt ("Protokoll utility"): the record list, the report box, reading,
// printing, PDF, files and the CSV export.
#include "RecordWindow.h"

#include "gui/DeviceThread.h"
#include "gui/GuiPrompter.h"
#include "gui/Phrases.h"
#include "gui/ReportBox.h"
#include "gui/StatusLine.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "link/UserFiles.h"
#include "records/RecordDecoding.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"
#include "records/ReportBuilder.h"
#include "records/TesterPrintText.h"
#include "records/print/ReportDocument.h"

#include <QActionGroup>
#include <QDir>
#include <QDockWidget>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QSplitter>
#include <QVBoxLayout>

namespace kalvo::records::ui {

namespace {
const QString kPdfFilter = QStringLiteral("PDF (*.pdf)|*.pdf");
// The export is read by spreadsheets: ".csv" first, the record files' ".txt" still offered.
const QString kCsvFilter = QStringLiteral("CSV (*.csv)|*.csv|Ascii file (*.txt)|*.txt|(*.*)|*.*");

// "Menu: entry", or the entry alone where menu and entry say the same.
QString TitleOf(const QAction *entry)
{
    const QString text = entry->text().remove(QLatin1Char('&'));
    const auto *menu = qobject_cast<const QMenu *>(entry->parent());
    if (!menu || menu->title() == text)
        return text;
    return menu->title() + QStringLiteral(": ") + text;
}
} // namespace

RecordWindow::RecordWindow(gui::DeviceThread &device, const QString &programDir, QWidget *parent)
    : QMainWindow(parent), m_device(device), m_programDir(programDir)
{
    setObjectName(QStringLiteral("FRMProt"));
    setWindowTitle(QStringLiteral("Protokoll utility"));
    auto *splitter = new QSplitter(this);
    m_list = new QListWidget(splitter);
    m_list->setObjectName(QStringLiteral("lb1"));
    m_report = new QPlainTextEdit(splitter);
    m_report->setObjectName(QStringLiteral("Protokol"));
    gui::ShowInReportBox(m_report, QString(), ReportFont(), kReportTabColumns);
    splitter->setStretchFactor(1, 3);
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    m_templateBar = new QHBoxLayout;
    layout->addLayout(m_templateBar);
    layout->addWidget(splitter, 1);
    setCentralWidget(central);
    // The window covers the main window: what its work does, and how it ends, shows here too.
    m_status = new gui::StatusLine(device, this);
    m_status->setObjectName(QStringLiteral("recordStatus"));
    m_status->ShowOperationsOnly();
    setStatusBar(m_status);
    BuildMenus();
    EnableOutput(false);
    connect(m_list, &QListWidget::currentRowChanged, this, &RecordWindow::RecordSelected);
    // A report is made from a record text; an empty box holds none.
    m_printProt->setEnabled(false);
    connect(m_report, &QPlainTextEdit::textChanged, this,
            [this] { m_printProt->setEnabled(!m_report->toPlainText().trimmed().isEmpty()); });
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
    m_printProt = add(report, "PrintProt", QStringLiteral("Mache Protokoll"), &RecordWindow::MakeReport);
    m_drucken = add(report, "drucken", QStringLiteral("Drucken"), &RecordWindow::PrintReport);
    m_pdf = add(report, "pdf", QStringLiteral("als PDF speichern"), &RecordWindow::SaveReportAsPdf);

    QMenu *templates = menuBar()->addMenu(QStringLiteral("Vorlagen"));
    auto *group = new QActionGroup(this);
    // Each caption names the regulation whose report the template lays out; the fifth, the
    // universal one, is the tester's template 0.
    const std::pair<const char *, int> entries[] = {{"1 (DIN VDE 0701)", 1},
                                                    {"2 (DIN VDE 0702)", 2},
                                                    {"3 (DIN VDE 0751)", 3},
                                                    {"4 (IEC 601)", 4},
                                                    {"5 (Universal)", 0}};
    for (const auto &[caption, number] : entries) {
        QAction *a = templates->addAction(QString::fromLatin1(caption));
        a->setObjectName(QStringLiteral("vorlage%1").arg(number));
        a->setCheckable(true);
        a->setChecked(number == m_template);
        group->addAction(a);
        connect(a, &QAction::triggered, this, [this, number = number] { m_template = number; });
    }
}

void RecordWindow::AddTemplateTools(QMenu *menu, QWidget *fileLabel, QWidget *numberEntry)
{
    menuBar()->addMenu(menu);
    m_templateBar->addWidget(fileLabel, 1);
    m_templateBar->addWidget(numberEntry);
}

void RecordWindow::AddLimitTools(QMenu *menu, QWidget *frame)
{
    menuBar()->addMenu(menu);
    m_limitDock = new QDockWidget(this);
    m_limitDock->setObjectName(QStringLiteral("limitDock"));
    m_limitDock->setWidget(frame);
    m_limitDock->setFeatures(QDockWidget::DockWidgetClosable);
    addDockWidget(Qt::RightDockWidgetArea, m_limitDock);
    m_limitDock->hide();
}

void RecordWindow::ShowLimitFrame()
{
    if (m_limitDock)
        m_limitDock->show();
}

void RecordWindow::ShowingTemplate()
{
    EnableOutput(false);
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

void RecordWindow::Post(QAction *entry, std::function<void(link::Link &, link::Prompter &)> job)
{
    m_device.Post(this, TitleOf(entry), [job = std::move(job)](link::Link &link, link::Prompter &prompter) {
        if (!link.PortClosed())
            job(link, prompter);
    });
}

gui::GuiPrompter RecordWindow::Asker(QAction *entry)
{
    return gui::GuiPrompter(this, TitleOf(entry));
}

QAction *RecordWindow::Entry(const char *name) const
{
    return findChild<QAction *>(QString::fromLatin1(name));
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

void RecordWindow::SetLanguage(const QString &language)
{
    m_language = language;
    m_status->SetLanguage(language);
}

void RecordWindow::ShowReport(const QString &text)
{
    gui::ShowInReportBox(m_report, text, ReportFont(), kReportTabColumns);
    EnableOutput(true);
    emit shown();
}

void RecordWindow::ShowPrintText(const QString &text)
{
    ShowReport(text);
    // The tester draws its frames with line-drawing characters; without them the report shows gaps.
    if (!HasLineDrawing(m_report->font()))
        gui::GuiPrompter(this, windowTitle())
            .message(QStringLiteral("Um Umlaute, Ohm und andere ASCII Zeichen darstellen zu können muß die "
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

void RecordWindow::ClearList(Source source)
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    m_records.clear();
    m_numbers.clear();
    m_source = source;
}

void RecordWindow::TellSaved(const QString &path)
{
    m_device.Tell(gui::PhraseText(gui::Phrase::FileSaved, m_language).arg(QDir::toNativeSeparators(path)));
}

void RecordWindow::Unlist()
{
    OnWindow([this] {
        ClearList(Source::None);
        EnableOutput(false);
        emit shown();
    });
}

void RecordWindow::AddRecord(const QByteArray &record)
{
    m_records << record;
    const QSignalBlocker blocker(m_list);
    m_list->addItem(QString::number(m_records.size()));
    m_list->scrollToBottom();
}

void RecordWindow::ShowCurrentRecord()
{
    const int number = m_template;
    Post(Entry("aktuellProt"), [this, number](link::Link &link, link::Prompter &) {
        const QString text = RenderCurrentRecord(link, number);
        OnWindow([this, text] { ShowPrintText(text); });
    });
}

void RecordWindow::StoreCurrentRecordToFile()
{
    Post(Entry("storesingle"), [this](link::Link &link, link::Prompter &prompter) {
        const RetrievalResult result = StoreCurrentRecord(link, prompter);
        if (result.status == RetrievalStatus::Done && !result.records.isEmpty())
            OnWindow([this, records = result.records] {
                ShowReport(link::DecodeRecordText(records.first()));
                emit recordsRead(records, QString(), false);
            });
    });
}

void RecordWindow::ShowStoreListing()
{
    ClearList(Source::TesterStore);
    Post(Entry("dbProt"), [this](link::Link &link, link::Prompter &prompter) {
        const QString proto = link::PlaceFileAndSay(prompter, QDir::currentPath(), kProtoFileName);
        // Entries show as the listing streams in; the finished listing then stands for them all.
        const ListingResult result =
            ListStoreRecords(link, prompter, proto, [this](const QString &entry, int number) {
                OnWindow([this, entry, number] {
                    m_numbers << number;
                    const QSignalBlocker blocker(m_list);
                    m_list->addItem(entry);
                });
            });
        if (result.status != RetrievalStatus::Done)
            return Unlist();
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
    ClearList(Source::Records);
    Post(Entry("storeall"), [this, language = m_language](link::Link &link, link::Prompter &prompter) {
        const RetrievalResult result = StoreAllRecords(link, prompter, [this](int, const QByteArray &record) {
            OnWindow([this, record] { AddRecord(record); });
        });
        if (result.status != RetrievalStatus::Done)
            return Unlist();
        m_device.Tell(gui::CountedPhrase(gui::Phrase::RecordsRead, result.records.size(), language));
        OnWindow([this, records = result.records] {
            ShowRecords(records, Source::Records);
            emit recordsRead(records, QString(), false);
        });
    });
}

void RecordWindow::ReadAccessory()
{
    ClearList(Source::Records);
    Post(Entry("kymAscii"), [this](link::Link &link, link::Prompter &prompter) {
        const QString logTmp = link::PlaceFileAndSay(prompter, m_programDir, kLogTmpFileName);
        const RetrievalResult result =
            ReadAccessoryRecords(link, prompter, logTmp, [this](int, const QByteArray &record) {
                OnWindow([this, record] { AddRecord(record); });
            });
        if (result.status != RetrievalStatus::Done)
            return Unlist();
        OnWindow([this, records = result.records] {
            ShowRecords(records, Source::Records);
            emit recordsRead(records, QString(), true);
        });
        // As after every accessory read, the records go to a file of the user's choice.
        StoreAccessoryRecords(link, prompter, logTmp, result.records, QString());
    });
}

void RecordWindow::StoreAccessory()
{
    Post(m_protStore, [dir = m_programDir, records = m_records,
                       text = reportText()](link::Link &link, link::Prompter &prompter) {
        const QString logTmp = link::PlaceFileAndSay(prompter, dir, kLogTmpFileName);
        StoreAccessoryRecords(link, prompter, logTmp, records, text);
    });
}

void RecordWindow::ExportCsv()
{
    gui::GuiPrompter asker = Asker(m_fexcel);
    const QString path = asker.askSaveFile(kCsvFilter);
    if (path.isEmpty())
        return;
    try {
        ExportCsvFile(path, QString(), m_records, reportText());
        TellSaved(path);
    } catch (const link::KalvoError &e) {
        asker.message(e.message(), link::Prompter::Icon::Critical);
    }
}

void RecordWindow::LoadRecordsFromFile()
{
    gui::GuiPrompter asker = Asker(Entry("ausDatei"));
    const QString path = asker.askOpenFile(kRecordFileFilter);
    if (path.isEmpty())
        return;
    try {
        const QList<QByteArray> records = LoadRecordFile(path);
        ShowRecords(records, Source::Records);
        emit recordsRead(records, path, false);
    } catch (const link::KalvoError &e) {
        asker.message(e.message(), link::Prompter::Icon::Critical);
    }
}

void RecordWindow::MakeReport()
{
    try {
        ShowReport(BuildReport(DecodeRecord(EncodeShownText(reportText()))));
    } catch (const link::KalvoError &e) {
        Asker(m_printProt).message(e.text(), link::Prompter::Icon::Warning);
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
            gui::ShowInReportBox(m_report, link::DecodeRecordText(m_records[row]), ReportFont(),
                                 kReportTabColumns);
            gui::GuiPrompter(this, windowTitle()).message(e.text(), link::Prompter::Icon::Warning);
        }
    } else if (m_source == Source::TesterStore && row < m_numbers.size()) {
        ShowStoredRecord(m_numbers[row]);
    }
}

void RecordWindow::ShowStoredRecord(int number)
{
    const int templateNumber = m_template;
    Post(Entry("dbProt"), [this, number, templateNumber](link::Link &link, link::Prompter &) {
        const QString text = RenderStoredRecord(link, templateNumber, number);
        OnWindow([this, text] { ShowPrintText(text); });
    });
}

void RecordWindow::PrintReport()
{
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(TitleOf(m_drucken));
    if (dialog.exec() != QDialog::Accepted)
        return;
    PaintReport(reportText(), printer);
}

void RecordWindow::SaveReportAsPdf()
{
    gui::GuiPrompter asker = Asker(m_pdf);
    const QString path = asker.askSaveFile(kPdfFilter);
    if (path.isEmpty())
        return;
    try {
        SaveReportPdf(reportText(), path, windowTitle());
        TellSaved(path);
    } catch (const link::KalvoError &e) {
        asker.message(e.message(), link::Prompter::Icon::Critical);
    }
}

} // namespace kalvo::records::ui
