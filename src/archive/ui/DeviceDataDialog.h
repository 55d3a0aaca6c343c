// A device's own data (type, manufacturer, location, remarks, out of service, retired, its
// customer) and its history of who did what: the imports that brought its records and every change.
#pragma once

#include "archive/DeviceData.h"

#include <QDialog>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QTableWidget;

namespace kalvo::archive::ui {

// What the dialog shows, read on the archive's thread.
struct DeviceSheet {
    DeviceData data;
    QList<DeviceEvent> history;
    QStringList customers; // to move the device to
};

// What the user changed.
struct DeviceDataChanges {
    DeviceKey device;
    DeviceEdit edit;
    QString moveTo; // the customer it goes to; empty: it stays
    bool IsEmpty() const;
};

class DeviceDataDialog : public QDialog {
    Q_OBJECT
public:
    DeviceDataDialog(const DeviceSheet &sheet, const QString &language, QWidget *parent);

    DeviceDataChanges Changes() const;

    QComboBox *customer() const { return m_customer; }
    QLineEdit *type() const { return m_type; }
    QLineEdit *manufacturer() const { return m_manufacturer; }
    QLineEdit *location() const { return m_location; }
    QPlainTextEdit *remarks() const { return m_remarks; }
    QCheckBox *outOfService() const { return m_outOfService; }
    QCheckBox *retired() const { return m_retired; }
    QTableWidget *history() const { return m_history; }

private:
    void FillHistory(const QList<DeviceEvent> &events, const QString &language);

    DeviceData m_before;
    QComboBox *m_customer;
    QLineEdit *m_type, *m_manufacturer, *m_location;
    QPlainTextEdit *m_remarks;
    QCheckBox *m_outOfService, *m_retired;
    QTableWidget *m_history;
};

} // namespace kalvo::archive::ui
