// The window "Archiv": searching the record archive, a device's history and next test, a record's
// report, and the selection exported as PDF or CSV.
#include "ArchiveWindow.h"

#include "ArchiveSettingsDialog.h"
#include "ArchiveTableModel.h"
#include "DeviceCaptions.h"
#include "IntervalDialog.h"

#include "archive/ArchiveExport.h"
#include "archive/ArchiveQueries.h"
#include "archive/ArchiveSession.h"
#include "archive/Customers.h"
#include "archive/DeviceData.h"
#include "archive/RetestIntervals.h"
#include "gui/GuiPrompter.h"
#include "gui/ReportBox.h"
#include "records/print/ReportDocument.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

namespace {

QDateEdit *DateField(const char *name, const QDate &date)
{
    auto *edit = new QDateEdit(date);
    edit->setObjectName(QString::fromLatin1(name));
    edit->setCalendarPopup(true);
    edit->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    return edit;
}

template <typename W> W *Named(W *widget, const char *name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

} // namespace

ArchiveWindow::ArchiveWindow(const ArchiveTarget &target, QWidget *parent)
    : QMainWindow(parent), m_session(new ArchiveSession(this)),
      m_model(new ArchiveTableModel(*m_session, this))
{
    setObjectName(QStringLiteral("FRMArchiv"));
    BuildForm();
    SetLanguage(QString());
    connect(m_model, &ArchiveTableModel::failed, this, &ArchiveWindow::Fail);
    // The model drops answers to old searches; a device's status is added to the count shown.
    connect(m_model, &ArchiveTableModel::shown, this,
            [this](qint64 total) { ShowStatus(CountedCaption(Caption::Records, total, m_language)); });
    connect(m_session, &ArchiveSession::busyChanged, this, [this](bool waiting) {
        if (waiting)
            setCursor(Qt::BusyCursor);
        else
            unsetCursor();
        ShowStatus(m_statusText);
    });
    m_session->Open(target);
    Search();
    CheckBackupAge();
}

ArchiveWindow::~ArchiveWindow() = default;

bool ArchiveWindow::busy() const
{
    return m_session->busy();
}

void ArchiveWindow::BuildForm()
{
    auto *form = new QGridLayout;
    m_device = Named(new QLineEdit, "idNr");
    m_type = Named(new QLineEdit, "typ");
    m_customer = Named(new QLineEdit, "kunde");
    m_archiveCustomer = Named(new QComboBox, "kundenwahl");
    m_archiveCustomer->addItem(QString()); // every customer
    m_text = Named(new QLineEdit, "text");
    m_verdict = Named(new QComboBox, "ergebnis");
    m_verdict->addItems({QString(), QString(), QString()}); // all, passed, failed
    m_regulation = Named(new QComboBox, "vorschrift");
    m_regulation->addItem(QString()); // all
    for (const auto &[name, months] : DefaultRegulationIntervals())
        m_regulation->addItem(name);
    const QDate today = QDate::currentDate();
    m_useFrom = Named(new QCheckBox, "mitVon");
    m_useTo = Named(new QCheckBox, "mitBis");
    m_useDue = Named(new QCheckBox, "mitFaellig");
    m_from = DateField("von", today.addYears(-1));
    m_to = DateField("bis", today);
    m_due = DateField("faellig", today.addMonths(1));
    const std::pair<Caption, QWidget *> fields[] = {{Caption::DeviceId, m_device},
                                                    {Caption::Type, m_type},
                                                    {Caption::Customer, m_archiveCustomer},
                                                    {Caption::RecordCustomer, m_customer},
                                                    {Caption::Text, m_text},
                                                    {Caption::Verdict, m_verdict},
                                                    {Caption::Regulation, m_regulation}};
    int row = 0;
    for (const auto &[caption, field] : fields) {
        auto *label = new QLabel;
        m_labels.append({label, caption});
        form->addWidget(label, row / 2, (row % 2) * 2);
        form->addWidget(field, row / 2, (row % 2) * 2 + 1);
        ++row;
    }
    auto *dates = new QHBoxLayout;
    for (const auto &[check, date] : {std::pair{m_useFrom, m_from}, {m_useTo, m_to}, {m_useDue, m_due}}) {
        dates->addWidget(check);
        dates->addWidget(date);
    }
    auto *search = Named(new QPushButton, "suchen");
    m_buttons.append({search, Caption::Search});
    search->setDefault(true);
    dates->addStretch();
    dates->addWidget(search);
    form->addLayout(dates, 4, 0, 1, 4);
    for (QLineEdit *edit : {m_device, m_type, m_customer, m_text})
        connect(edit, &QLineEdit::returnPressed, this, &ArchiveWindow::Search);
    connect(search, &QPushButton::clicked, this, &ArchiveWindow::Search);

    m_table = Named(new QTableView, "liste");
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &ArchiveWindow::ShowSelectedReport);
    m_report = Named(new QPlainTextEdit, "bericht");
    m_report->setReadOnly(true);
    auto *split = new QSplitter(Qt::Vertical);
    split->addWidget(m_table);
    split->addWidget(m_report);

    m_status = Named(new QLabel, "status");
    m_status->setWordWrap(true);
    auto *buttons = new QHBoxLayout;
    auto *history = Named(new QPushButton, "verlauf");
    m_buttons.append({history, Caption::History});
    auto *deviceData = Named(new QPushButton, "geraetedaten");
    m_deviceButton = deviceData;
    auto *intervals = Named(new QPushButton, "intervalle");
    m_buttons.append({intervals, Caption::IntervalsTitle});
    auto *settings = Named(new QPushButton, "einstellungen");
    m_buttons.append({settings, Caption::SettingsTitle});
    auto *pdf = Named(new QPushButton(QStringLiteral("PDF ...")), "pdf");
    auto *csv = Named(new QPushButton(QStringLiteral("CSV ...")), "csv");
    connect(history, &QPushButton::clicked, this, &ArchiveWindow::ShowHistory);
    connect(deviceData, &QPushButton::clicked, this, &ArchiveWindow::EditDeviceData);
    connect(intervals, &QPushButton::clicked, this, &ArchiveWindow::EditIntervals);
    connect(settings, &QPushButton::clicked, this, &ArchiveWindow::EditSettings);
    connect(pdf, &QPushButton::clicked, this,
            [this] { AskAndExport(QStringLiteral("PDF (*.pdf)|*.pdf"), &ArchiveWindow::ExportPdf); });
    connect(csv, &QPushButton::clicked, this,
            [this] { AskAndExport(QStringLiteral("CSV (*.csv)|*.csv"), &ArchiveWindow::ExportCsv); });
    // The status line has a row of its own: a device's next tests at several customers are long.
    auto *statusRow = new QHBoxLayout;
    statusRow->addWidget(m_status, 1);
    buttons->addStretch();
    for (QPushButton *button : {history, deviceData, intervals, settings, pdf, csv})
        buttons->addWidget(button);

    auto *central = new QWidget;
    auto *layout = new QVBoxLayout(central);
    layout->addLayout(form);
    BuildBackupParts(layout, statusRow);
    layout->addWidget(split, 1);
    layout->addLayout(statusRow);
    layout->addLayout(buttons);
    layout->addWidget(PaperButtons());
    setCentralWidget(central);
    resize(900, 700);
}

void ArchiveWindow::SetLanguage(const QString &language)
{
    m_language = language;
    setWindowTitle(Text(Caption::Title));
    for (const auto &[label, caption] : std::as_const(m_labels))
        label->setText(Text(caption));
    // A button that opens a dialog says so.
    for (const auto &[button, caption] : std::as_const(m_buttons))
        button->setText(Text(caption) +
                        (caption == Caption::IntervalsTitle || caption == Caption::SettingsTitle
                             ? QStringLiteral(" ...")
                             : QString()));
    for (const auto &[button, caption] : std::as_const(m_paperButtons))
        button->setText(PaperCaptionText(caption, language) +
                        (caption == PaperCaption::ReportSettings ? QStringLiteral(" ...") : QString()));
    m_verdict->setItemText(0, Text(Caption::All));
    m_verdict->setItemText(1, Text(Caption::Passed));
    m_verdict->setItemText(2, Text(Caption::Failed));
    m_regulation->setItemText(0, Text(Caption::All));
    m_archiveCustomer->setItemText(0, Text(Caption::All));
    m_useFrom->setText(Text(Caption::From));
    m_useTo->setText(Text(Caption::To));
    m_useDue->setText(Text(Caption::DueBefore));
    m_deviceButton->setText(DeviceCaptionText(DeviceCaption::Button, language));
    m_model->SetLanguage(language);
    SetBackupLanguage();
}

QString ArchiveWindow::Text(Caption caption) const
{
    return CaptionText(caption, m_language);
}

ArchiveFilter ArchiveWindow::Filter() const
{
    ArchiveFilter filter;
    filter.deviceId = m_device->text().trimmed();
    filter.type = m_type->text().trimmed();
    filter.customer = m_customer->text().trimmed();
    if (m_archiveCustomer->currentIndex() > 0)
        filter.customerName = m_archiveCustomer->currentText();
    filter.text = m_text->text().trimmed();
    if (m_verdict->currentIndex() > 0)
        filter.failed = m_verdict->currentIndex() == 2;
    if (m_regulation->currentIndex() > 0)
        filter.regulation = m_regulation->currentText();
    if (m_useFrom->isChecked())
        filter.from = m_from->date();
    if (m_useTo->isChecked())
        filter.to = m_to->date();
    if (m_useDue->isChecked())
        filter.dueBefore = m_due->date();
    return filter;
}

// The customers to choose from, read again with every search (an import may have added one); the
// choice stays.
void ArchiveWindow::LoadCustomers()
{
    m_session->Ask(
        this,
        [](Archive &archive) {
            QStringList names;
            for (const Customer &customer : ListCustomers(archive))
                names.append(customer.name);
            return names;
        },
        [this](const QStringList &names) {
            const QString chosen =
                m_archiveCustomer->currentIndex() > 0 ? m_archiveCustomer->currentText() : QString();
            while (m_archiveCustomer->count() > 1)
                m_archiveCustomer->removeItem(1);
            m_archiveCustomer->addItems(names);
            m_archiveCustomer->setCurrentIndex(std::max(0, m_archiveCustomer->findText(chosen)));
        },
        [this](const QString &message) { Fail(message); });
}

void ArchiveWindow::Search()
{
    LoadCustomers();
    m_report->clear();
    const ArchiveFilter filter = Filter();
    m_model->Show(filter);
    if (!filter.deviceId.isEmpty())
        ShowDeviceStatus(filter.deviceId, filter.customerName);
}

void ArchiveWindow::ShowHistory()
{
    // The device is its ID-Nr at its customer: the same ID-Nr at another customer is another device.
    const QModelIndex current = m_table->currentIndex();
    if (!current.isValid())
        return;
    const ArchivedRecord record = m_model->record(current.row());
    if (record.deviceId.isEmpty())
        return;
    m_device->setText(record.deviceId);
    ChooseCustomer(record.customerName);
    for (QLineEdit *edit : {m_type, m_customer, m_text})
        edit->clear();
    m_verdict->setCurrentIndex(0);
    m_regulation->setCurrentIndex(0);
    for (QCheckBox *check : {m_useFrom, m_useTo, m_useDue})
        check->setChecked(false);
    Search();
}

void ArchiveWindow::ChooseCustomer(const QString &name)
{
    if (name.isEmpty()) {
        m_archiveCustomer->setCurrentIndex(0);
        return;
    }
    if (m_archiveCustomer->findText(name) < 0)
        m_archiveCustomer->addItem(name);
    m_archiveCustomer->setCurrentIndex(m_archiveCustomer->findText(name));
}

void ArchiveWindow::ShowDeviceStatus(const QString &deviceId, const QString &customer)
{
    const quint64 search = m_model->search();
    m_session->Ask(
        this,
        [deviceId, customer](Archive &archive) {
            QList<DueDevice> devices;
            for (const DeviceData &device : FindDevices(archive, deviceId, customer))
                if (const std::optional<DueDevice> status = DeviceStatus(archive, device.key))
                    devices.append(*status);
            return devices;
        },
        [this, search, deviceId](const QList<DueDevice> &devices) {
            if (search != m_model->search())
                return;
            if (devices.isEmpty()) {
                ShowStatus(m_statusText + Text(Caption::NoDatedTest).arg(deviceId));
                return;
            }
            // One ID-Nr may be a device at each of several customers, each with its own next test.
            QStringList states;
            for (const DueDevice &device : devices)
                states.append(Text(Caption::DeviceStatus)
                                  .arg(devices.size() > 1
                                           ? QStringLiteral("%1 (%2)").arg(deviceId, device.customerName)
                                           : deviceId,
                                       device.lastTest.date().toString(QStringLiteral("dd.MM.yyyy")),
                                       device.nextTest.toString(QStringLiteral("dd.MM.yyyy")))
                                  .arg(device.intervalMonths));
            ShowStatus(m_statusText + states.join(QString()));
        },
        [this](const QString &message) { Fail(message); });
}

void ArchiveWindow::ShowSelectedReport()
{
    const QModelIndex current = m_table->currentIndex();
    if (!current.isValid())
        return;
    const qint64 id = m_model->record(current.row()).id;
    m_session->Ask(
        this,
        [id](Archive &archive) {
            const std::optional<StoredRecord> stored = FetchRecord(archive, id);
            return stored ? ReportWithHash(stored->raw, stored->record.sha256) : QString();
        },
        [this, id](const QString &report) {
            // Only when that record is still the chosen one: the arrows may have moved on.
            const QModelIndex now = m_table->currentIndex();
            if (now.isValid() && m_model->record(now.row()).id == id)
                gui::ShowInReportBox(m_report, report, records::ReportFont(), records::kReportTabColumns);
        },
        [this](const QString &message) { Fail(message); });
}

QList<ArchivedRecord> ArchiveWindow::Selected() const
{
    // In the order of the list, whatever order they were selected in.
    QList<int> rows;
    for (const QModelIndex &index : m_table->selectionModel()->selectedRows())
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    QList<ArchivedRecord> chosen;
    for (const int row : rows)
        chosen.append(m_model->record(row));
    return chosen;
}

DeviceKey ArchiveWindow::CurrentDevice() const
{
    const QModelIndex current = m_table->currentIndex();
    if (!current.isValid())
        return {};
    const ArchivedRecord &record = m_model->record(current.row());
    return {record.customerId, record.deviceId};
}

template <typename Job> void ArchiveWindow::Export(const QString &path, Caption saved, Job job)
{
    m_session->Ask(
        this, std::move(job),
        [this, path, saved](qint64 count) {
            ShowStatus(CountedCaption(saved, count, m_language).arg(QDir::toNativeSeparators(path)));
            emit exported(path, true);
        },
        [this, path](const QString &message) {
            Fail(message);
            emit exported(path, false);
        });
}

void ArchiveWindow::ExportPdf(const QString &path)
{
    Export(path, Caption::ReportsSaved, [chosen = ChosenIds(), path](Archive &archive) -> qint64 {
        return ExportArchivePdf(archive, chosen(archive), path);
    });
}

std::function<QList<qint64>(Archive &)> ArchiveWindow::ChosenIds() const
{
    QList<qint64> ids;
    for (const ArchivedRecord &record : Selected())
        ids.append(record.id);
    return [ids, filter = Filter()](Archive &archive) {
        QList<qint64> chosen = ids;
        if (chosen.isEmpty())
            ForEachRecord(archive, filter,
                          [&chosen](const ArchivedRecord &record) { chosen.append(record.id); });
        return chosen;
    };
}

void ArchiveWindow::ExportCsv(const QString &path)
{
    Export(path, Caption::RecordsSaved, [selected = Selected(), filter = Filter(), path](Archive &archive) {
        return selected.isEmpty() ? ExportArchiveCsv(archive, filter, path) : WriteArchiveCsv(selected, path);
    });
}

void ArchiveWindow::AskAndExport(const QString &filter, void (ArchiveWindow::*exporter)(const QString &))
{
    // The program's save dialog: it belongs to this window and adds the suffix a name lacks.
    const QString path = gui::GuiPrompter(this, windowTitle()).askSaveFile(filter);
    if (!path.isEmpty())
        (this->*exporter)(path);
}

void ArchiveWindow::EditIntervals()
{
    m_session->Ask(
        this, [](Archive &archive) { return LoadIntervals(archive); },
        [this, device = CurrentDevice()](const RetestIntervals &current) {
            auto *dialog = new IntervalDialog(current, device, m_language, this);
            OpenDialog(dialog, [this, dialog] { ApplyIntervals(dialog->Changes()); });
            emit intervalsShown(dialog);
        },
        [this](const QString &message) { Fail(message); });
}

void ArchiveWindow::EditSettings()
{
    const ArchiveSettings before = ReadArchiveSettings();
    auto *dialog = new ArchiveSettingsDialog(before, m_language, this);
    OpenDialog(dialog, [this, dialog, before] {
        const ArchiveSettings after = dialog->Settings();
        WriteArchiveSettings(after);
        if (after.url != before.url) {
            m_session->Open(ParseArchiveUrl(after.url)); // the dialog took only an address that parses
            Search();
            CheckBackupAge();
        }
    });
    emit settingsShown(dialog);
}

void ArchiveWindow::ApplyIntervals(const IntervalChanges &changes)
{
    if (changes.IsEmpty())
        return;
    m_session->Ask(
        this,
        [changes](Archive &archive) {
            for (const auto &[regulation, months] : changes.regulations)
                SetRegulationInterval(archive, regulation, months);
            if (changes.deviceChanged)
                SetDeviceInterval(archive, changes.device, changes.deviceMonths);
        },
        [this] { Search(); }, [this](const QString &message) { Fail(message); });
}

void ArchiveWindow::Fail(const QString &message)
{
    ShowStatus(message);
}

void ArchiveWindow::ShowStatus(const QString &text)
{
    m_statusText = text;
    m_status->setText(busy() ? Text(Caption::Busy) : text);
}

} // namespace kalvo::archive::ui
