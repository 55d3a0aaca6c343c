// The re-test intervals of the archive: months per regulation, and a device's own interval.
#include "IntervalDialog.h"

#include "ArchiveCaptions.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

namespace {

QSpinBox *MonthsBox(int months, const QString &suffix)
{
    auto *box = new QSpinBox;
    box->setRange(1, kLongestIntervalMonths);
    box->setValue(months);
    box->setSuffix(suffix);
    return box;
}

} // namespace

IntervalDialog::IntervalDialog(const RetestIntervals &current, const DeviceKey &device,
                               const QString &language, QWidget *parent)
    : QDialog(parent), m_table(new QTableWidget(this)), m_device(device)
{
    setObjectName(QStringLiteral("intervalle"));
    setWindowTitle(CaptionText(Caption::IntervalsTitle, language));
    const QString months = QLatin1Char(' ') + CaptionText(Caption::Months, language);
    for (const auto &[regulation, fallback] : DefaultRegulationIntervals())
        m_before.append({regulation, current.byRegulation.value(regulation, fallback)});
    m_table->setObjectName(QStringLiteral("vorschriften"));
    m_table->setColumnCount(2);
    m_table->setRowCount(static_cast<int>(m_before.size()));
    m_table->setHorizontalHeaderLabels(
        {CaptionText(Caption::Regulation, language), CaptionText(Caption::Interval, language)});
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (int row = 0; row < m_before.size(); ++row) {
        m_table->setItem(row, 0, new QTableWidgetItem(m_before[row].first));
        m_table->setCellWidget(row, 1, MonthsBox(m_before[row].second, months));
    }

    if (const auto own = current.byDevice.constFind(device);
        !device.deviceId.isEmpty() && own != current.byDevice.cend())
        m_deviceBefore = *own;
    m_own = new QCheckBox(CaptionText(Caption::OwnInterval, language)
                              .arg(device.deviceId.isEmpty() ? QStringLiteral("-") : device.deviceId));
    m_own->setObjectName(QStringLiteral("eigenesIntervall"));
    m_own->setChecked(m_deviceBefore.has_value());
    m_own->setEnabled(!device.deviceId.isEmpty());
    m_deviceMonths = MonthsBox(m_deviceBefore.value_or(kAppliancesIntervalMonths), months);
    m_deviceMonths->setObjectName(QStringLiteral("geraetMonate"));
    m_deviceMonths->setEnabled(m_own->isChecked());
    connect(m_own, &QCheckBox::toggled, m_deviceMonths, &QWidget::setEnabled);
    auto *deviceLine = new QHBoxLayout;
    deviceLine->addWidget(m_own, 1);
    deviceLine->addWidget(m_deviceMonths);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_table, 1);
    layout->addLayout(deviceLine);
    layout->addWidget(buttons);
    resize(480, 460);
}

IntervalChanges IntervalDialog::Changes() const
{
    IntervalChanges changes;
    for (int row = 0; row < m_before.size(); ++row) {
        const int months = static_cast<QSpinBox *>(m_table->cellWidget(row, 1))->value();
        if (months != m_before[row].second)
            changes.regulations.append({m_before[row].first, months});
    }
    if (!m_device.deviceId.isEmpty()) {
        const std::optional<int> after =
            m_own->isChecked() ? std::optional(m_deviceMonths->value()) : std::nullopt;
        changes.device = m_device;
        changes.deviceChanged = after != m_deviceBefore;
        changes.deviceMonths = after;
    }
    return changes;
}

} // namespace kalvo::archive::ui
