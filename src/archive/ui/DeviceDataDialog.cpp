// A device's own data and its history of who did what.
#include "DeviceDataDialog.h"

#include "DeviceCaptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

namespace {

// A form label without its colon, for the history's column "What".
QString Bare(const QString &label)
{
    QString text = label;
    while (text.endsWith(QLatin1Char(':')) || text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text;
}

QString Moment(const QDateTime &utc)
{
    return utc.isValid() ? utc.toLocalTime().toString(QStringLiteral("dd.MM.yyyy HH:mm"))
                         : QStringLiteral("-");
}

QString DateText(const QDate &date)
{
    return date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy")) : QStringLiteral("-");
}

// What a change row's field is called here; the archive keeps the field's own name.
QString FieldName(const QString &field, const QString &language)
{
    static const std::pair<const char *, DeviceCaption> kFields[] = {
        {"type", DeviceCaption::Type},
        {"manufacturer", DeviceCaption::Manufacturer},
        {"location", DeviceCaption::Location},
        {"remarks", DeviceCaption::Remarks},
        {"out_of_service", DeviceCaption::OutOfService},
        {"retired", DeviceCaption::Retired},
        {"interval", DeviceCaption::Interval},
        {"customer", DeviceCaption::Customer}};
    for (const auto &[name, caption] : kFields)
        if (field == QLatin1String(name))
            return Bare(DeviceCaptionText(caption, language));
    return field;
}

// A changed value as the user reads it: flags and an interval back to its regulation in words.
QString ValueText(const QString &field, const QString &value, const QString &language)
{
    if (value == QLatin1String("ja"))
        return DeviceCaptionText(DeviceCaption::Yes, language);
    if (value == QLatin1String("nein"))
        return DeviceCaptionText(DeviceCaption::No, language);
    if (value.isEmpty())
        return field == QLatin1String("interval") ? DeviceCaptionText(DeviceCaption::NoOwnInterval, language)
                                                  : QStringLiteral("-");
    return value;
}

QString ImportDetails(const ImportEntry &entry, const QString &language)
{
    QStringList parts{
        DeviceCaptionText(DeviceCaption::ImportDetails, language).arg(entry.added).arg(entry.known)};
    const QString tester = QStringList{entry.tester, entry.testerSerial}.join(QLatin1Char(' ')).trimmed();
    for (const QString &part : {tester, entry.file, entry.customerName})
        if (!part.isEmpty())
            parts.append(part);
    if (!entry.version.isEmpty())
        parts.append(QStringLiteral("kalvo ") + entry.version);
    return parts.join(QStringLiteral("; "));
}

QString Who(const QString &user, const QString &host)
{
    return host.isEmpty() ? user : user + QLatin1Char('@') + host;
}

QLineEdit *LineField(const char *name, const QString &text)
{
    auto *edit = new QLineEdit(text);
    edit->setObjectName(QString::fromLatin1(name));
    return edit;
}

QCheckBox *FlagField(const char *name, const QString &text, bool checked)
{
    auto *box = new QCheckBox(text);
    box->setObjectName(QString::fromLatin1(name));
    box->setChecked(checked);
    return box;
}

} // namespace

bool DeviceDataChanges::IsEmpty() const
{
    return moveTo.isEmpty() && !edit.type && !edit.manufacturer && !edit.location && !edit.remarks &&
           !edit.outOfService && !edit.retired;
}

DeviceDataDialog::DeviceDataDialog(const DeviceSheet &sheet, const QString &language, QWidget *parent)
    : QDialog(parent), m_before(sheet.data)
{
    const auto text = [&language](DeviceCaption caption) { return DeviceCaptionText(caption, language); };
    setObjectName(QStringLiteral("geraetedaten"));
    setWindowTitle(text(DeviceCaption::Title).arg(m_before.key.deviceId, m_before.customerName));

    m_customer = new QComboBox;
    m_customer->setObjectName(QStringLiteral("kunde"));
    m_customer->setEditable(true); // a new customer is added when the device moves there
    m_customer->addItems(sheet.customers);
    m_customer->setCurrentText(m_before.customerName);
    m_type = LineField("typ", m_before.type);
    m_type->setPlaceholderText(text(DeviceCaption::TypeHint).arg(m_before.recordType));
    m_manufacturer = LineField("hersteller", m_before.manufacturer);
    m_location = LineField("standort", m_before.location);
    m_remarks = new QPlainTextEdit(m_before.remarks);
    m_remarks->setObjectName(QStringLiteral("bemerkungen"));
    m_remarks->setTabChangesFocus(true);
    m_remarks->setFixedHeight(m_remarks->fontMetrics().lineSpacing() * 4);
    m_outOfService = FlagField("ausserBetrieb", text(DeviceCaption::OutOfService), m_before.outOfService);
    m_retired = FlagField("ausgemustert", text(DeviceCaption::Retired), m_before.retired);

    auto *form = new QFormLayout;
    form->addRow(text(DeviceCaption::Customer), m_customer);
    form->addRow(text(DeviceCaption::Type), m_type);
    form->addRow(text(DeviceCaption::Manufacturer), m_manufacturer);
    form->addRow(text(DeviceCaption::Location), m_location);
    form->addRow(text(DeviceCaption::Remarks), m_remarks);
    form->addRow(QString(), m_outOfService);
    form->addRow(QString(), m_retired);
    auto *tested =
        new QLabel(text(DeviceCaption::LastAndNext)
                       .arg(DateText(m_before.lastTest.date()), DateText(m_before.nextTest),
                            m_before.regulation.isEmpty() ? QStringLiteral("-") : m_before.regulation));
    tested->setObjectName(QStringLiteral("geprueft"));
    tested->setWordWrap(true);
    form->addRow(tested);

    m_history = new QTableWidget(this);
    m_history->setObjectName(QStringLiteral("wasGeschah"));
    m_history->setColumnCount(4);
    m_history->setHorizontalHeaderLabels({text(DeviceCaption::ColumnWhen), text(DeviceCaption::ColumnWho),
                                          text(DeviceCaption::ColumnWhat),
                                          text(DeviceCaption::ColumnDetails)});
    m_history->verticalHeader()->hide();
    m_history->horizontalHeader()->setStretchLastSection(true);
    m_history->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_history->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_history->setWordWrap(false);
    FillHistory(sheet.history, language);
    auto *historyBox = new QGroupBox(text(DeviceCaption::HistoryTitle));
    (new QVBoxLayout(historyBox))->addWidget(m_history);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(historyBox, 1);
    layout->addWidget(buttons);
    resize(720, 600);
}

void DeviceDataDialog::FillHistory(const QList<DeviceEvent> &events, const QString &language)
{
    m_history->setRowCount(static_cast<int>(events.size()));
    // Newest first, as the window lists records.
    for (int row = 0; row < events.size(); ++row) {
        const DeviceEvent &event = events[events.size() - 1 - row];
        QStringList cells{Moment(event.at)};
        if (const auto &entry = event.import)
            cells << Who(entry->user, entry->host)
                  << DeviceCaptionText(DeviceCaption::Import, language).arg(entry->id)
                  << ImportDetails(*entry, language);
        else if (const auto &change = event.change)
            cells << Who(change->user, change->host) << FieldName(change->field, language)
                  << ValueText(change->field, change->oldValue, language) + QStringLiteral(" -> ") +
                         ValueText(change->field, change->newValue, language);
        for (int column = 0; column < cells.size(); ++column)
            m_history->setItem(row, column, new QTableWidgetItem(cells[column]));
    }
    m_history->resizeColumnsToContents();
}

DeviceDataChanges DeviceDataDialog::Changes() const
{
    DeviceDataChanges changes;
    changes.device = m_before.key;
    const auto text = [](const QString &before, const QString &after) {
        return after == before ? std::nullopt : std::optional<QString>(after);
    };
    const auto flag = [](bool before, bool after) {
        return after == before ? std::nullopt : std::optional(after);
    };
    changes.edit.type = text(m_before.type, m_type->text().trimmed());
    changes.edit.manufacturer = text(m_before.manufacturer, m_manufacturer->text().trimmed());
    changes.edit.location = text(m_before.location, m_location->text().trimmed());
    changes.edit.remarks = text(m_before.remarks, m_remarks->toPlainText().trimmed());
    changes.edit.outOfService = flag(m_before.outOfService, m_outOfService->isChecked());
    changes.edit.retired = flag(m_before.retired, m_retired->isChecked());
    const QString customer = m_customer->currentText().trimmed();
    if (!customer.isEmpty() && customer != m_before.customerName)
        changes.moveTo = customer;
    return changes;
}

} // namespace kalvo::archive::ui
