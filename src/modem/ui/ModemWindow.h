// The "Modem Konfiguration" window: the tester's two telephone numbers and its modem's initialisation string.
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace kalvo::link {
class LanguageTable;
}

namespace kalvo::gui {
class DeviceThread;
}

namespace kalvo::modem::ui {

class ModemWindow : public QDialog {
    Q_OBJECT
public:
    ModemWindow(gui::DeviceThread &device, const link::LanguageTable &texts, QWidget *parent = nullptr);

    void ApplyTexts(const link::LanguageTable &texts);
    void SetBusy(bool busy);

private:
    void SendSettings(); // ModemOK
    void Store();        // ModemStore

    gui::DeviceThread &m_device;
    QString m_storedText;
    QString m_language;
    // What the tester refused of the last settings sent; read and written on the device thread only.
    QList<QByteArray> m_refused;
    QLineEdit *m_tel1, *m_tel2, *m_init;
    QLabel *m_tel1Label, *m_tel2Label, *m_initLabel;
    QPushButton *m_ok, *m_store, *m_cancel;
};

} // namespace kalvo::modem::ui
