// The windows the main window opens: service, records, modem and help, each once, built here
// from the parts their subsystems bring.
#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace kalvo::link {
class LanguageTable;
}
namespace kalvo::gui {
class DeviceThread;
}
namespace kalvo::shell::ui {
class HelpWindow;
class ServiceWindow;
} // namespace kalvo::shell::ui
namespace kalvo::config::ui {
class LimitFrame;
class LimitMenu;
class ServiceConfigPanel;
} // namespace kalvo::config::ui
namespace kalvo::records::ui {
class RecordWindow;
}
namespace kalvo::archive {
class ArchiveSession;
struct RecordSource;
} // namespace kalvo::archive
namespace kalvo::archive::ui {
class ArchiveWindow;
}
namespace kalvo::modem::ui {
class ModemWindow;
}
namespace kalvo::specdb::ui {
class DatabaseWindow;
}
namespace kalvo::update::ui {
class TemplateTools;
}

namespace kalvo::app {

class ChildWindows : public QObject {
    Q_OBJECT
public:
    // `main` is the window they come from (placement, and the help window's parent).
    ChildWindows(gui::DeviceThread &device, QWidget *main, const QString &programDir);
    ~ChildWindows() override;

    // Each opens its window, or raises it when it is open already.
    // `backupNames`: what the calibration backup offers, the first preset; none keeps the last.
    shell::ui::ServiceWindow *OpenService(const link::LanguageTable &texts, const QStringList &backupNames);
    // The record window, with a limit menu and frame of its own.
    records::ui::RecordWindow *OpenRecords(const link::LanguageTable &texts);
    modem::ui::ModemWindow *OpenModem(const link::LanguageTable &texts);
    // The test-specification database FRMDB; a test record clicked there opens in the record
    // window. `texts` must outlive the window.
    specdb::ui::DatabaseWindow *OpenDatabase(const link::LanguageTable &texts);
    // The record archive named in the user settings (the SQLite file in the user's data folder).
    archive::ui::ArchiveWindow *OpenArchive(const QString &language);
    void ShowHelp(const QString &path, const QString &title, const QString &chapter = QString());
    // The tester connected now (empty when none): records read from it are archived as its.
    void SetTester(const QString &name, const QString &serialNumber);

    void ApplyTexts(const link::LanguageTable &texts);
    void SetBusy(bool busy);
    // Closes every window (the program ends).
    void CloseAll();

signals:
    // F1 in a window that has its own chapter in the help.
    void helpWanted(const QString &chapter);
    // The service window's terminal entry, or its opening, ends the development-terminal mode.
    void terminalOpened();
    // Register D3 was reset from the service window.
    void d3Reset();

private:
    void Present(QWidget *window);
    void AddHelpKey(QWidget *window, const char *chapter);
    void ApplyRecordTexts(const link::LanguageTable &texts);
    // Records the window `reader` read go into the archive too, on the archive's thread; `reader`
    // asks for their customer and tells the user what could not be kept (the main window when it
    // is gone).
    void KeepInArchive(QWidget *reader, const QList<QByteArray> &records, const QString &file,
                       bool fromAccessory);
    void Keep(const QPointer<QWidget> &reader, const QList<QByteArray> &records,
              const archive::RecordSource &source);

    gui::DeviceThread &m_device;
    QWidget *m_main;
    QString m_programDir;
    QString m_tester, m_testerSerial;
    QString m_language; // of the texts applied last
    archive::ArchiveSession *m_keeper = nullptr;
    QPointer<shell::ui::ServiceWindow> m_service;
    QPointer<config::ui::ServiceConfigPanel> m_servicePanel;
    QPointer<records::ui::RecordWindow> m_records;
    QPointer<update::ui::TemplateTools> m_templates; // a child of the record window
    QPointer<config::ui::LimitFrame> m_recordLimits; // the record window's, as are the two below
    QPointer<config::ui::LimitMenu> m_recordLimitMenu;
    QPointer<modem::ui::ModemWindow> m_modem;
    QPointer<specdb::ui::DatabaseWindow> m_database;
    QPointer<archive::ui::ArchiveWindow> m_archive;
    QPointer<shell::ui::HelpWindow> m_help;
};

} // namespace kalvo::app
