// The service window (form "test"): command line and answers, terminal panel, scripts,
// help-text stepping, direct printing and the trace views.
#pragma once

#include "link/UserFiles.h"
#include "shell/ServiceTerminal.h"

#include <QMainWindow>
#include <functional>

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QPushButton;

namespace kalvo::link {
class LanguageTable;
}

namespace kalvo::gui {
class DeviceThread;
}

namespace kalvo::shell::ui {

class ServiceWindow : public QMainWindow {
    Q_OBJECT
public:
    ServiceWindow(gui::DeviceThread &device, const link::LanguageTable &texts, QWidget *parent = nullptr);

    // The parts other subsystems bring, placed by whoever builds the window: a panel beside the
    // terminal with the entries of the configuration menu, and the entry that reads all records
    // into the terminal panel (its caption follows the language).
    void AddConfigPanel(QWidget *panel, const QList<QAction *> &entries);
    void AddRecordReader(QAction *entry);
    // Text for the terminal panel ("Testfeld"), and a command shown in the command line.
    void ShowInTerminal(const QString &text, bool clearFirst);
    void ShowCommand(const QString &command);

    void ApplyTexts(const link::LanguageTable &texts);
    void SetBusy(bool busy);

    // Where the script, its result and the trace are: the current directory.
    void setWorkingDirectory(const QString &dir) { m_dir = dir; }

signals:
    // The terminal entry switches the development-terminal mode off.
    void terminalOpened();

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
    void AppendToTerminal(const QString &text);
    QString FilePath(const QString &name) const;
    // A file this window writes (trace, script result): in its folder, or the user's data folder.
    link::FilePlace WrittenFile(const QString &name) const;

    // Runs `job` for the entry or button captioned `title`.
    void Post(const QString &title, std::function<void(link::Link &)> job);

    gui::DeviceThread &m_device;
    QString m_dir;
    HelpStepper m_helpStepper; // used on the device thread only

    QLineEdit *m_befehl;
    QPlainTextEdit *m_answers;  // Termantwort
    QPlainTextEdit *m_terminal; // Testfeld
    QLabel *m_commandLabel, *m_answerLabel;
    QPushButton *m_ahtt, *m_aht, *m_ahst;
    QLabel *m_ahnr;
    QMenu *m_viewMenu, *m_scriptMenu, *m_configMenu;
    QWidget *m_holder;
    QAction *m_term, *m_clearDisp, *m_log, *m_loghex, *m_abl, *m_ablPro, *m_printdirekt;
    QAction *m_readprot = nullptr;
    QList<QAction *> m_deviceActions;
    QList<QWidget *> m_deviceWidgets;
};

} // namespace kalvo::shell::ui
