// The main window IEC601: menus, one frame at a time, the tester display, the status bar; it
// builds and connects the windows of every subsystem.
#pragma once

#include "gui/DeviceThread.h"
#include "link/Identification.h"
#include "link/LanguageTable.h"
#include "shell/Settings.h"
#include "shell/Switches.h"

#include <QMainWindow>

class QAction;
class QDockWidget;

namespace kalvo::gui {
class FrameStack;
class StatusLine;
} // namespace kalvo::gui
namespace kalvo::shell::ui {
class ConfigFrame;
class RemoteDisplay;
class SettingsFrame;
} // namespace kalvo::shell::ui
namespace kalvo::config::ui {
class LimitFrame;
}
namespace kalvo::update::ui {
class UpdatePanel;
}

namespace kalvo::app {

class ChildWindows;
class MainMenu;

struct Startup {
    shell::Settings settings;
    shell::Switches switches;
    QString programDir; // sprachen.TXT, the help pages and the update packages
    gui::DeviceThread::TransportFactory transportFactory;
};

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(const Startup &startup, QWidget *parent = nullptr);
    ~MainWindow() override;

    // The language switch: loads the column of `name` from sprachen.TXT and refreshes every caption.
    void SetLanguage(const QString &name);
    const link::LanguageTable &texts() const { return m_texts; }
    gui::DeviceThread &device() { return *m_device; }
    ChildWindows &windows() { return *m_windows; }
    const link::TesterIdentity &identity() const { return m_identity; }

    // The information text of the Info entry.
    static QString InformationText();

signals:
    // Identification finished and its results are shown.
    void identified();

protected:
    // Closing the main window ends the program: every window closes, and the port with them.
    // During an update transfer the user is asked first.
    void closeEvent(QCloseEvent *event) override;

private:
    void BuildFrames();
    void ConnectMenus();
    void ApplyTexts();
    void SetBusy(bool busy);
    void PortOpenChanged(bool open);
    // Runs `job` for the entry `entry` (its caption titles the dialogs) once the port is open.
    void PostChecked(QAction *entry, gui::DeviceThread::Job job);
    // Runs `call` on the window's thread.
    void OnWindow(std::function<void()> call);

    void Connect();
    // No tester: nothing of the last one is shown (title, labels, status), the archive forgets it.
    void ShowNotConnected();
    void ShowIdentity(const link::ConnectionState &state, const link::TesterIdentity &identity, bool open);
    void OpenConfig();
    void StoreConfig();
    void SetClock();
    void NameTester();
    void ToggleSwitch(bool d3);
    void RestoreCalibrationFromFile(); // setKal
    void ShowInfo();

    Startup m_startup;
    link::LanguageTable m_texts;
    QString m_languageFileError; // the state of the language file when its fault was last told
    std::unique_ptr<gui::DeviceThread> m_device;
    link::TesterIdentity m_identity;
    link::ConnectionState m_connection;
    bool m_connected = false;
    bool m_developmentTerminal = false;
    bool m_openConfigWhenConnected = false; // "/K"

    gui::FrameStack *m_frames;
    shell::ui::SettingsFrame *m_settings;
    shell::ui::ConfigFrame *m_config;
    config::ui::LimitFrame *m_limits;
    shell::ui::RemoteDisplay *m_display;
    QDockWidget *m_displayDock;
    gui::StatusLine *m_status;
    ChildWindows *m_windows;
    update::ui::UpdatePanel *m_update;

    MainMenu *m_menu;
    // Buttons that start device work: disabled while an operation runs, as the menu's entries are.
    QList<QWidget *> m_deviceWidgets;
};

} // namespace kalvo::app
