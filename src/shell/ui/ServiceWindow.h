// The service window (form "test"): command line and answers, terminal panel, scripts,
// help-text stepping, direct printing and the trace views.
#pragma once

#include "shell/ServiceTerminal.h"

#include <QMainWindow>

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QPushButton;

namespace kalvo::link {
class Prompter;
}

namespace kalvo::shell {
class LanguageTable;
}

namespace kalvo::config::ui {
class ServiceConfigPanel;
}

namespace kalvo::shell::ui {

class DeviceThread;

class ServiceWindow : public QMainWindow {
    Q_OBJECT
public:
    ServiceWindow(DeviceThread &device, link::Prompter &prompter, const LanguageTable &texts,
                  QWidget *parent = nullptr);

    void ApplyTexts(const LanguageTable &texts);
    void SetBusy(bool busy);

    // Where the script, its result and the trace are: the current directory.
    void setWorkingDirectory(const QString &dir) { m_dir = dir; }
    // The calibration backup's proposed name.
    void setDefaultBackupName(const QString &name);

signals:
    // The terminal entry switches the development-terminal mode off.
    void terminalOpened();
    // Register D3 was reset from the configuration menu.
    void d3Reset();

private:
    void SendCommandLine();
    void OpenTerminal();
    void RunScript();
    void ShowScriptResult();
    void StartHelpTexts();
    void NextHelpText();
    void StopHelpTexts();
    void ToggleDirectPrinting();
    void ShowTrace(bool asCodes);
    void ReadAllRecords(); // readprot
    void AppendToTerminal(const QString &text);
    QString FilePath(const QString &name) const;

    DeviceThread &m_device;
    link::Prompter &m_prompter;
    QString m_dir;
    HelpStepper m_helpStepper; // used on the device thread only

    QLineEdit *m_befehl;
    QPlainTextEdit *m_answers;  // Termantwort
    QPlainTextEdit *m_terminal; // Testfeld
    QLabel *m_commandLabel, *m_answerLabel;
    QPushButton *m_ahtt, *m_aht, *m_ahst;
    QLabel *m_ahnr;
    QMenu *m_viewMenu, *m_scriptMenu, *m_configMenu;
    config::ui::ServiceConfigPanel *m_config;
    QAction *m_term, *m_clearDisp, *m_log, *m_loghex, *m_abl, *m_ablPro, *m_printdirekt, *m_readprot;
    QList<QAction *> m_deviceActions;
    QList<QWidget *> m_deviceWidgets;
};

} // namespace kalvo::shell::ui
