// The main window IEC601: settings frame, configuration, clock and name, languages, help, service.
#pragma once

#include "DeviceThread.h"
#include "GuiPrompter.h"
#include "link/Identification.h"
#include "shell/LanguageTable.h"
#include "shell/Settings.h"
#include "shell/Switches.h"

#include <QMainWindow>
#include <QPointer>

class QAction;
class QMenu;

namespace kalvo::records::ui {
class RecordWindow;
}
namespace kalvo::config::ui {
class LimitFrame;
}
namespace kalvo::modem::ui {
class ModemWindow;
}

namespace kalvo::shell::ui {

class ConfigFrame;
class HelpWindow;
class LanguageMenu;
class RemoteDisplay;
class ServiceWindow;
class SettingsFrame;

struct Startup {
    Settings settings;
    Switches switches;
    QString programDir; // sprachen.TXT, the help pages and the update packages
    DeviceThread::TransportFactory transportFactory;
};

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(const Startup &startup, QWidget *parent = nullptr);
    ~MainWindow() override;

    // The language switch: loads the column of `name` from sprachen.TXT and refreshes every caption.
    void SetLanguage(const QString &name);
    const LanguageTable &texts() const { return m_texts; }
    DeviceThread &device() { return *m_device; }
    const link::TesterIdentity &identity() const { return m_identity; }

    // The information text of the Info entry.
    static QString InformationText();

signals:
    // Identification finished and its results are shown.
    void identified();

private:
    void BuildMenus();
    void ApplyTexts();
    void SetBusy(bool busy);
    void Fatal(const QString &message);
    void Failed(const QString &message);
    // Runs `job` on the device thread after the port check; `job` gets the link.
    void PostChecked(DeviceThread::Job job);
    // Runs `call` on the window's thread.
    void OnWindow(std::function<void()> call);

    void Connect();
    void ShowIdentity(const link::ConnectionState &state, const link::TesterIdentity &identity);
    void OpenConfig();
    void StoreConfig();
    void SetClock();
    void NameTester();
    void OpenService();
    void OpenRecords();
    void OpenModem();
    void ToggleSwitch(bool d3);
    void RestoreCalibrationFromFile(); // setKal
    void ShowHelp();
    void ShowInfo();

    Startup m_startup;
    LanguageTable m_texts;
    QString m_languageFileError; // the last one shown
    GuiPrompter *m_prompter;     // a child of the window: it outlives the device thread
    std::unique_ptr<DeviceThread> m_device;
    link::TesterIdentity m_identity;
    link::ConnectionState m_connection;
    bool m_developmentTerminal = false;

    SettingsFrame *m_settings;
    ConfigFrame *m_config;
    RemoteDisplay *m_display;
    QPointer<HelpWindow> m_help;
    QPointer<ServiceWindow> m_service;
    QPointer<records::ui::RecordWindow> m_records;
    QPointer<modem::ui::ModemWindow> m_modem;
    config::ui::LimitFrame *m_limits;

    QMenu *m_settingsMenu, *m_helpMenu, *m_limitsMenu;
    LanguageMenu *m_languageMenu;
    QAction *m_mitBez, *m_quillbank, *m_setKal, *m_modemAction, *m_kuschl, *m_ubez, *m_pzhv;
    QAction *m_connection_, *m_configAction, *m_clockAction, *m_nameAction, *m_serviceAction,
        *m_recordsAction, *m_helpContents, *m_infoAction, *m_exitAction, *m_developmentAction;
    // Entries and buttons that start device work: disabled while an operation runs.
    QList<QAction *> m_deviceActions;
    QList<QWidget *> m_deviceWidgets;
};

} // namespace kalvo::shell::ui
