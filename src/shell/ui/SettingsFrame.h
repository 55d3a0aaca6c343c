// The tester-settings frame: the port chooser, its OK button and what identification found.
#pragma once

#include "link/Identification.h"

#include <QGroupBox>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kalvo::link {
class LanguageTable;
}

namespace kalvo::shell::ui {

class SettingsFrame : public QGroupBox {
    Q_OBJECT
public:
    explicit SettingsFrame(QWidget *parent = nullptr);

    // "COM 1" to "COM 4", the ports the system reports, and the built-in simulator.
    void FillPorts(bool withSimulator);
    void SelectPort(const QString &name);
    QString port() const;
    QPushButton *activateButton() const { return m_activate; }

    void ShowIdentity(const link::TesterIdentity &identity, const link::LanguageTable &texts);
    void ApplyTexts(const link::LanguageTable &texts);

signals:
    void activateRequested();
    // The port chosen or typed, before it is confirmed.
    void portChanged(const QString &port);

private:
    QComboBox *m_port;
    QPushButton *m_activate;
    QLabel *m_portLabel;
    QLabel *m_captions[6];
    QLabel *m_values[6]; // SystVer, KonfigVer, bilderver, hilfever, ablaufVer, Version
    QLabel *m_serialLabel;
    QLineEdit *m_serial; // SetSRNr: the serial number the backup names are built from
    QLabel *m_identity;
    QLabel *m_update;
    bool m_updateDue = false;
};

} // namespace kalvo::shell::ui
