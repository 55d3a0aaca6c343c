// The windows the main window opens: service, records, modem and help, each once, built here
// from the parts their subsystems bring.
#include "ChildWindows.h"

#include "archive/ArchiveLocation.h"
#include "archive/ArchiveSession.h"
#include "archive/Customers.h"
#include "archive/RecordKeeping.h"
#include "archive/ui/ArchiveWindow.h"
#include "archive/ui/CustomerQuestion.h"
#include "config/ui/LimitFrame.h"
#include "config/ui/LimitMenu.h"
#include "config/ui/ServiceConfigPanel.h"
#include "gui/DeviceThread.h"
#include "gui/WindowKeys.h"
#include "gui/WindowPlacement.h"
#include "link/LanguageTable.h"
#include "modem/ui/ModemWindow.h"
#include "records/ui/RecordReadAction.h"
#include "records/ui/RecordWindow.h"
#include "shell/ui/HelpWindow.h"
#include "shell/ui/ServiceWindow.h"
#include "specdb/DefaultLimits.h"
#include "specdb/SpecEditor.h"
#include "specdb/ui/DatabaseWindow.h"
#include "update/ui/TemplateTools.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>

#include <QWidget>

namespace kalvo::app {

ChildWindows::ChildWindows(gui::DeviceThread &device, QWidget *main, const QString &programDir)
    : QObject(main), m_device(device), m_main(main), m_programDir(programDir)
{}

ChildWindows::~ChildWindows()
{
    CloseAll();
}

void ChildWindows::Present(QWidget *window)
{
    const bool opening = !window->isVisible();
    window->show();
    if (opening)
        gui::FitOnScreen(window, m_main);
    window->raise();
    window->activateWindow();
}

shell::ui::ServiceWindow *ChildWindows::OpenService(const link::LanguageTable &texts,
                                                    const QStringList &backupNames)
{
    emit terminalOpened(); // loading the service form ends the development-terminal mode
    if (!m_service) {
        m_service = new shell::ui::ServiceWindow(m_device, texts);
        m_service->setAttribute(Qt::WA_DeleteOnClose);
        gui::CloseOnEscape(m_service);
        shell::ui::ServiceWindow *service = m_service;
        m_servicePanel = new config::ui::ServiceConfigPanel(
            m_device,
            [service](const QString &text, bool clearFirst) { service->ShowInTerminal(text, clearFirst); },
            [service](const QString &command) { service->ShowCommand(command); });
        m_service->AddConfigPanel(m_servicePanel, m_servicePanel->actions());
        auto *reader = new records::ui::RecordReadAction(
            m_device, m_service, [service](const QString &text) { service->ShowInTerminal(text, false); });
        connect(reader, &records::ui::RecordReadAction::recordsRead, this,
                [this](const QList<QByteArray> &records, const QString &file, bool fromAccessory) {
                    KeepInArchive(m_service, records, file, fromAccessory);
                });
        m_service->AddRecordReader(reader);
        m_servicePanel->ApplyTexts(texts);
        m_service->ApplyTexts(texts);
        connect(m_service, &shell::ui::ServiceWindow::terminalOpened, this, &ChildWindows::terminalOpened);
        connect(m_servicePanel, &config::ui::ServiceConfigPanel::d3Reset, this, &ChildWindows::d3Reset);
        SetBusy(m_device.busy());
    }
    if (!backupNames.isEmpty())
        m_servicePanel->setBackupNames(backupNames);
    Present(m_service);
    return m_service;
}

records::ui::RecordWindow *ChildWindows::OpenRecords(const link::LanguageTable &texts)
{
    if (!m_records) {
        m_records = new records::ui::RecordWindow(m_device, m_programDir);
        m_records->setAttribute(Qt::WA_DeleteOnClose);
        gui::CloseOnEscape(m_records);
        connect(m_records, &records::ui::RecordWindow::recordsRead, this,
                [this](const QList<QByteArray> &records, const QString &file, bool fromAccessory) {
                    KeepInArchive(m_records, records, file, fromAccessory);
                });
        m_templates = new update::ui::TemplateTools(m_device, m_records->reportBox(), m_records);
        m_records->AddTemplateTools(m_templates->menu(), m_templates->fileLabel(),
                                    m_templates->numberEntry());
        connect(m_templates, &update::ui::TemplateTools::templateShown, m_records,
                &records::ui::RecordWindow::ShowingTemplate);
        // The main window's limit editor again, with controls of the record window's own.
        m_recordLimits = new config::ui::LimitFrame(m_device);
        m_recordLimitMenu =
            new config::ui::LimitMenu(*m_recordLimits, QStringLiteral("grenzwerte"), m_records);
        m_records->AddLimitTools(m_recordLimitMenu, m_recordLimits);
        connect(m_recordLimits, &config::ui::LimitFrame::loaded, m_records,
                &records::ui::RecordWindow::ShowLimitFrame);
        SetBusy(m_device.busy());
    }
    ApplyRecordTexts(texts);
    Present(m_records);
    return m_records;
}

modem::ui::ModemWindow *ChildWindows::OpenModem(const link::LanguageTable &texts)
{
    if (!m_modem) {
        m_modem = new modem::ui::ModemWindow(m_device, texts);
        m_modem->setAttribute(Qt::WA_DeleteOnClose);
        m_modem->SetBusy(m_device.busy());
    }
    Present(m_modem);
    return m_modem;
}

specdb::ui::DatabaseWindow *ChildWindows::OpenDatabase(const link::LanguageTable &texts)
{
    if (!m_database) {
        m_database = new specdb::ui::DatabaseWindow(
            m_device, texts, specdb::RegulationRules{specdb::ApplyDefaults, specdb::LooserLimits});
        m_database->setAttribute(Qt::WA_DeleteOnClose);
        // Test records about to be deleted from the tester go into the archive first; the database
        // window asks for the customer of those that name none, as a read does.
        m_database->SetRecordKeeping([this]() -> specdb::RecordKeeper {
            if (!archive::KeepingRecords())
                return {};
            return [source = archive::RecordSource{m_tester, m_testerSerial, QString(), QString()},
                    language = m_language](const QList<QByteArray> &records, link::Prompter &prompter) {
                archive::RecordSource chosen = source;
                if (archive::AnyWithoutCustomer(records))
                    chosen.customer = archive::ui::AskCustomerOfRecords(prompter, language);
                return archive::KeepBeforeDeleting(records, chosen);
            };
        });
        gui::CloseOnEscape(m_database);
        connect(m_database, &specdb::ui::DatabaseWindow::testRecordChosen, this,
                [this, &texts](int number) { OpenRecords(texts)->ShowStoredRecord(number); });
        m_database->SetBusy(m_device.busy());
        AddHelpKey(m_database, shell::ui::kHelpSpecifications);
    }
    Present(m_database);
    return m_database;
}

archive::ui::ArchiveWindow *ChildWindows::OpenArchive(const QString &language)
{
    if (!m_archive) {
        archive::ArchiveTarget target;
        try {
            target = archive::ParseArchiveUrl(archive::ReadArchiveSettings().url);
        } catch (const link::KalvoError &) {
            // A bad address in the settings: the window opens on the default file and says so there.
            target = archive::ParseArchiveUrl(QString());
        }
        m_archive = new archive::ui::ArchiveWindow(target);
        m_archive->setAttribute(Qt::WA_DeleteOnClose);
        AddHelpKey(m_archive, shell::ui::kHelpArchive);
        gui::CloseOnEscape(m_archive);
    }
    m_archive->SetLanguage(language);
    Present(m_archive);
    return m_archive;
}

void ChildWindows::SetTester(const QString &name, const QString &serialNumber)
{
    m_tester = name;
    m_testerSerial = serialNumber;
}

void ChildWindows::KeepInArchive(QWidget *reader, const QList<QByteArray> &records, const QString &file,
                                 bool fromAccessory)
{
    // Records loaded from a file name the file; records read now name the tester they came from.
    const bool fromTester = file.isEmpty();
    const archive::RecordSource source{fromTester ? m_tester : QString(),
                                       fromTester ? m_testerSerial : QString(),
                                       fromAccessory ? QStringLiteral("KYM") : QString(), file};
    // Once a read: the customer of the records that name none.
    if (archive::KeepingRecords() && archive::AnyWithoutCustomer(records)) {
        archive::ui::AskCustomerOfRead(reader ? reader : m_main, m_language,
                                       [self = QPointer(this), reader = QPointer<QWidget>(reader), records,
                                        source](const QString &customer) {
                                           archive::RecordSource chosen = source;
                                           chosen.customer = customer;
                                           if (self)
                                               self->Keep(reader, records, chosen);
                                       });
        return;
    }
    Keep(reader, records, source);
}

void ChildWindows::Keep(const QPointer<QWidget> &reader, const QList<QByteArray> &records,
                        const archive::RecordSource &source)
{
    if (!m_keeper)
        m_keeper = new archive::ArchiveSession(this);
    const auto tell = [this, reader](const QStringList &messages) {
        if (!messages.isEmpty())
            QMessageBox::warning(reader ? reader.data() : m_main, QStringLiteral("Archiv"),
                                 messages.join(QLatin1Char('\n')));
    };
    m_keeper->Run(
        this, [records, source] { return archive::KeepReadRecords(records, source); },
        [this, tell](const archive::KeepOutcome &outcome) {
            if (outcome.kept && m_archive)
                m_archive->Search();
            tell(outcome.messages);
        },
        [tell](const QString &message) { tell({message}); });
}

void ChildWindows::ShowHelp(const QString &path, const QString &title, const QString &chapter)
{
    if (!m_help)
        m_help = new shell::ui::HelpWindow(m_main);
    m_help->ShowPage(path, title, chapter);
}

void ChildWindows::AddHelpKey(QWidget *window, const char *chapter)
{
    auto *key = new QAction(window);
    key->setShortcut(QKeySequence::HelpContents);
    key->setShortcutContext(Qt::WindowShortcut);
    window->addAction(key);
    connect(key, &QAction::triggered, this,
            [this, chapter = QString::fromLatin1(chapter)] { emit helpWanted(chapter); });
}

void ChildWindows::ApplyTexts(const link::LanguageTable &texts)
{
    m_language = texts.language();
    if (m_service) {
        m_service->ApplyTexts(texts);
        m_servicePanel->ApplyTexts(texts);
    }
    if (m_records)
        ApplyRecordTexts(texts);
    if (m_modem)
        m_modem->ApplyTexts(texts);
    if (m_archive)
        m_archive->SetLanguage(texts.language());
    if (m_database)
        m_database->ApplyTexts();
    if (m_help)
        m_help->setWindowTitle(texts.text(link::TxtHelpWindow));
}

void ChildWindows::SetBusy(bool busy)
{
    if (m_service) {
        m_service->SetBusy(busy);
        m_servicePanel->SetBusy(busy);
    }
    if (m_records) {
        m_records->SetBusy(busy);
        m_templates->SetBusy(busy);
        m_recordLimits->SetBusy(busy);
        for (QAction *entry : m_recordLimitMenu->entries())
            entry->setEnabled(!busy);
    }
    if (m_modem)
        m_modem->SetBusy(busy);
    if (m_database)
        m_database->SetBusy(busy);
}

void ChildWindows::ApplyRecordTexts(const link::LanguageTable &texts)
{
    m_records->SetLanguage(texts.language());
    m_templates->SetLanguage(texts.language());
    m_recordLimits->ApplyTexts(texts);
    m_recordLimitMenu->ApplyTexts(texts);
}

void ChildWindows::CloseAll()
{
    // Deleted at once, not later: they hold the device thread, which goes with the main window.
    delete m_service;
    delete m_records;
    delete m_modem;
    delete m_database;
    delete m_archive;
    delete m_help;
}

} // namespace kalvo::app
