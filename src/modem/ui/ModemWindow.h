// The "Modem Konfiguration" window: the tester's two telephone numbers and its modem's initialisation string.
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace kalvo::link {
class Prompter;
}

namespace kalvo::shell {
class LanguageTable;
}

namespace kalvo::shell::ui {
class DeviceThread;
}

namespace kalvo::modem::ui {

class ModemWindow : public QDialog {
    Q_OBJECT
public:
    ModemWindow(shell::ui::DeviceThread &device, link::Prompter &prompter, const shell::LanguageTable &texts,
                QWidget *parent = nullptr);

    void ApplyTexts(const shell::LanguageTable &texts);
    void SetBusy(bool busy);

private:
    void SendSettings(); // ModemOK
    void Store();        // ModemStore

    shell::ui::DeviceThread &m_device;
    link::Prompter &m_prompter;
    QString m_storedText;
    // What the tester refused of the last settings sent; read and written on the device thread only.
    QList<QByteArray> m_refused;
    QLineEdit *m_tel1, *m_tel2, *m_init;
    QLabel *m_tel1Label, *m_tel2Label, *m_initLabel;
    QPushButton *m_ok, *m_store, *m_cancel;
};

} // namespace kalvo::modem::ui
