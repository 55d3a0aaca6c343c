// The service form's configuration part: the variable list, the configuration dump and store,
// and the calibration backup and restore with their file frame.
#pragma once

#include <QWidget>
#include <functional>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace kalvo::link {
class LanguageTable;
}

namespace kalvo::gui {
class DeviceThread;
class FolderLists;
} // namespace kalvo::gui

namespace kalvo::config::ui {

class ServiceConfigPanel : public QWidget {
    Q_OBJECT
public:
    using TextSink = std::function<void(const QString &text, bool clearFirst)>;

    // `show` writes into the service form's terminal panel; `command` shows a command in its command line.
    ServiceConfigPanel(gui::DeviceThread &device, TextSink show, std::function<void(const QString &)> command,
                       QWidget *parent = nullptr);

    // varmas, konfiguration, bitstore, resetD3, readcal, storecal: for the form's menu.
    QList<QAction *> actions() const { return m_actions; }
    void ApplyTexts(const link::LanguageTable &texts);
    void SetBusy(bool busy);
    // The calibration files are looked for and written here (the current directory at first);
    // the frame's folder lists change it.
    void setDirectory(const QString &dir);
    // The names a backup is offered under (CalibrationBackupNames): the first is preset in Text1,
    // the others are a choice away.
    void setBackupNames(const QStringList &names) { m_backupNames = names; }

signals:
    // Register D3 was set to 0: the main form's D3 switch is off now.
    void d3Reset();

private:
    void LoadVariables();      // varmas
    void ReadChosenVariable(); // readvar
    void DumpConfiguration();  // konfiguration
    void StoreConfiguration(); // bitstore
    void ResetD3();            // resetD3
    void BeginBackup();        // readcal
    void BeginRestore();       // storecal
    void SaveBackup();         // speichern
    void RestoreChosenFile();  // kalibfiles
    void ListBackups();        // kalibfiles, from the folder of the lists
    // The caption of menu entry `index` of actions(): the title of what it starts.
    QString Title(int index) const;
    // A line for the terminal panel, from the device thread.
    void ShowLine(const QString &line);

    gui::DeviceThread &m_device;
    QString m_language;
    TextSink m_show;
    std::function<void(const QString &)> m_command;
    QString m_dir;
    QStringList m_backupNames{QStringLiteral("kalvomer.cal")};

    QListWidget *m_readvar;
    QLabel *m_variablesLabel;
    QWidget *m_calibrationFrame;
    QLabel *m_label2;
    gui::FolderLists *m_folders; // DrvList, dirList, File1 ("*.cal")
    QComboBox *m_backupName;     // the names offered, with Text1 as its text box
    QLineEdit *m_text1;
    QListWidget *m_kalibfiles;
    QPushButton *m_speichern;
    QList<QAction *> m_actions;
};

} // namespace kalvo::config::ui
