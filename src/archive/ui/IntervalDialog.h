// The re-test intervals of the archive: months per regulation, and a device's own interval.
#pragma once

#include "archive/RetestIntervals.h"

#include <QDialog>
#include <QList>
#include <optional>
#include <utility>

class QCheckBox;
class QSpinBox;
class QTableWidget;

namespace kalvo::archive::ui {

// What the user changed in the dialog.
struct IntervalChanges {
    QList<std::pair<QString, int>> regulations; // regulation, months
    DeviceKey device;
    bool deviceChanged = false;
    std::optional<int> deviceMonths; // nullopt: the device follows its regulation again
    bool IsEmpty() const { return regulations.isEmpty() && !deviceChanged; }
};

class IntervalDialog : public QDialog {
    Q_OBJECT
public:
    // Shows `current` (the regulations' defaults where it holds none); `device` is the selected
    // record's device (empty: none, its line is disabled).
    IntervalDialog(const RetestIntervals &current, const DeviceKey &device, const QString &language,
                   QWidget *parent);

    IntervalChanges Changes() const;

    QTableWidget *table() const { return m_table; }
    QCheckBox *ownInterval() const { return m_own; }
    QSpinBox *deviceMonths() const { return m_deviceMonths; }

private:
    QList<std::pair<QString, int>> m_before;
    QTableWidget *m_table;
    DeviceKey m_device;
    std::optional<int> m_deviceBefore;
    QCheckBox *m_own;
    QSpinBox *m_deviceMonths;
};

} // namespace kalvo::archive::ui
