// The main window IEC601: settings frame, configuration, clock and name, languages, help, service.
#include "MainWindow.h"

#include "ConfigFrame.h"
#include "HelpWindow.h"
#include "LanguageMenu.h"
#include "RemoteDisplay.h"
#include "ServiceWindow.h"
#include "SettingsFrame.h"
#include "config/Calibration.h"
#include "config/Variables.h"
#include "config/ui/LimitFrame.h"
#include "link/PortNames.h"
#include "link/Registers.h"
#include "link/ServiceSession.h"
#include "modem/ui/ModemWindow.h"
#include "records/ui/RecordWindow.h"
#include "shell/ClockAndName.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace kalvo::shell::ui {

namespace {
const QString kTitle = QStringLiteral("kalvo");
constexpr int kExitNoAnswer = 3;
} // namespace

MainWindow::MainWindow(const Startup &startup, QWidget *parent)
    : QMainWindow(parent), m_startup(startup), m_prompter(new GuiPrompter(this, kTitle))
{
    setObjectName(QStringLiteral("IEC601"));
    setWindowTitle(kTitle);
    m_device = std::make_unique<DeviceThread>(m_startup.transportFactory, *m_prompter);
    m_device->Configure([seconds = m_startup.switches.timeoutSeconds](link::Link &link) {
        link.setTimeout(link::FromSeconds(seconds));
    });

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    m_settings = new SettingsFrame(central);
    m_config = new ConfigFrame(central);
    m_display = new RemoteDisplay(central);
    m_limits = new config::ui::LimitFrame(*m_device, *m_prompter, central);
    layout->addWidget(m_settings);
    layout->addWidget(m_config);
    layout->addWidget(m_limits);
    layout->addWidget(m_display);
    layout->addStretch();
    setCentralWidget(central);
    BuildMenus();

    // Start-up: ports, settings file, language, switches; the port stays closed until OK.
    m_settings->FillPorts(true);
    m_settings->SelectPort(m_startup.switches.simulate ? link::kSimulatorPortName
                                                       : m_startup.settings.portName);
    SetLanguage(m_startup.settings.language.value_or(QStringLiteral("deutsch")));
    m_deviceWidgets = {m_settings->activateButton(), m_config->storeButton()};
    m_setKal->setVisible(m_startup.switches.service || m_startup.switches.development);
    if (m_startup.switches.development) {
        m_developmentAction->setVisible(true);
        const QString trace = QDir::current().filePath(QStringLiteral("test.log"));
        m_device->Configure([trace](link::Link &link) { link.StartTrace(trace); });
    }
    if (const QStringList warnings = m_startup.settings.warnings + m_startup.switches.warnings;
        !warnings.isEmpty())
        QTimer::singleShot(0, this,
                           [this, warnings] { QMessageBox::warning(this, kTitle, warnings.join('\n')); });
    if (m_startup.switches.openConfiguration)
        QTimer::singleShot(0, this, &MainWindow::OpenConfig);

    connect(m_settings, &SettingsFrame::activateRequested, this, &MainWindow::Connect);
    connect(m_config, &ConfigFrame::storeRequested, this, &MainWindow::StoreConfig);
    connect(m_device.get(), &DeviceThread::busyChanged, this, &MainWindow::SetBusy);
    connect(m_device.get(), &DeviceThread::fatal, this, &MainWindow::Fatal);
    connect(m_device.get(), &DeviceThread::failed, this, &MainWindow::Failed);
    connect(m_device.get(), &DeviceThread::displayBytes, m_display, &RemoteDisplay::Show);
    resize(640, 520);
}

MainWindow::~MainWindow()
{
    delete m_service;
    delete m_records;
    delete m_modem;
    m_device.reset();
}

void MainWindow::BuildMenus()
{
    const auto action = [this](QMenu *menu, const char *name, auto slot) {
        QAction *a = menu ? menu->addAction(QString()) : menuBar()->addAction(QString());
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    m_settingsMenu = menuBar()->addMenu(QString());
    m_settingsMenu->setObjectName(QStringLiteral("einstellungen"));
    m_connection_ = action(m_settingsMenu, "verbindung", [this] { m_settings->show(); });
    m_configAction = action(m_settingsMenu, "config", &MainWindow::OpenConfig);
    m_clockAction = action(m_settingsMenu, "UhrStellen", &MainWindow::SetClock);
    m_nameAction = action(m_settingsMenu, "Taufe", &MainWindow::NameTester);
    m_settingsMenu->addSeparator();
    m_mitBez = action(m_settingsMenu, "mitBez", [this] { ToggleSwitch(true); });
    m_mitBez->setCheckable(true);
    m_quillbank = action(m_settingsMenu, "Quillbank", [this] { ToggleSwitch(false); });
    m_quillbank->setCheckable(true);
    m_quillbank->setEnabled(false);
    m_setKal = action(m_settingsMenu, "setKal", &MainWindow::RestoreCalibrationFromFile);
    m_setKal->setVisible(false);
    m_modemAction = action(m_settingsMenu, "modem", &MainWindow::OpenModem);

    m_limitsMenu = menuBar()->addMenu(QString());
    m_limitsMenu->setObjectName(QStringLiteral("grenzwerte"));
    const auto limit = [this](const char *name, config::LimitKind kind) {
        QAction *a = m_limitsMenu->addAction(QString());
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, [this, a, kind] { m_limits->Edit(kind, a->text()); });
        return a;
    };
    m_kuschl = limit("kuschl", config::LimitKind::Kuschl);
    m_ubez = limit("Ubez", config::LimitKind::Ubez);
    m_pzhv = limit("PZHV", config::LimitKind::Pzhv);
    m_recordsAction = action(nullptr, "protokolle", &MainWindow::OpenRecords);
    m_serviceAction = action(nullptr, "service", &MainWindow::OpenService);

    m_languageMenu = new LanguageMenu(this);
    menuBar()->addMenu(m_languageMenu);
    connect(m_languageMenu, &LanguageMenu::chosen, this, &MainWindow::SetLanguage);
    m_helpMenu = menuBar()->addMenu(QString());
    m_helpMenu->setObjectName(QStringLiteral("hilfeMenu"));
    m_helpContents = action(m_helpMenu, "Inhalt", &MainWindow::ShowHelp);
    m_infoAction = action(m_helpMenu, "info", &MainWindow::ShowInfo);
    m_developmentAction =
        action(nullptr, "Entw", [this] { m_developmentTerminal = m_developmentAction->isChecked(); });
    m_developmentAction->setCheckable(true);
    m_developmentAction->setVisible(false);
    m_exitAction = action(nullptr, "Beenden", [] { QCoreApplication::exit(0); });
    m_deviceActions = {m_configAction, m_clockAction, m_nameAction, m_mitBez,
                       m_setKal,       m_kuschl,      m_ubez,       m_pzhv};
}

void MainWindow::SetLanguage(const QString &name)
{
    QString error;
    m_texts.SetLanguageFromFile(name, QDir(m_startup.programDir).filePath(kLanguageFileName), &error);
    // The same fault again at every switch would only nag; a new one is told.
    if (!error.isEmpty() && error != m_languageFileError) {
        m_languageFileError = error;
        QMessageBox::warning(this, kTitle,
                             error + (m_texts.fromFile()
                                          ? QStringLiteral("\nDie bisherigen Texte bleiben.")
                                          : QStringLiteral("\nDie eingebauten deutschen Texte bleiben.")));
    }
    ApplyTexts();
}

void MainWindow::ApplyTexts()
{
    m_settingsMenu->setTitle(m_texts.text(TxtMenuSettings));
    m_connection_->setText(m_texts.text(TxtMenuConnection));
    m_configAction->setText(m_texts.text(TxtMenuConfig));
    m_clockAction->setText(m_texts.text(TxtMenuClock));
    m_nameAction->setText(m_texts.text(TxtMenuName));
    m_serviceAction->setText(m_texts.text(TxtMenuService));
    m_recordsAction->setText(m_texts.text(TxtMenuRecords));
    m_mitBez->setText(m_texts.text(TxtMenuWithDesignation));
    m_quillbank->setText(m_texts.text(TxtMenuQuillbank));
    m_setKal->setText(m_texts.text(TxtMenuRestoreCalibration));
    m_modemAction->setText(m_texts.text(TxtMenuModem));
    m_limitsMenu->setTitle(m_texts.text(TxtMenuLimits));
    m_kuschl->setText(m_texts.text(TxtMenuLimitShortCircuit));
    m_ubez->setText(m_texts.text(TxtMenuLimitReferenceVoltage));
    m_pzhv->setText(m_texts.text(TxtMenuLimitHighVoltageTime));
    m_limits->ApplyTexts(m_texts);
    if (m_modem)
        m_modem->ApplyTexts(m_texts);
    m_languageMenu->setTitle(m_texts.text(TxtMenuLanguage));
    m_helpMenu->setTitle(m_texts.text(TxtMenuHelp));
    m_helpContents->setText(m_texts.text(TxtMenuHelpContents));
    m_infoAction->setText(m_texts.text(TxtMenuInfo));
    m_exitAction->setText(m_texts.text(TxtMenuExit));
    m_developmentAction->setText(m_texts.text(TxtMenuDevelopment));
    m_languageMenu->ShowChosen(m_texts.language());
    m_settings->ApplyTexts(m_texts);
    m_config->ApplyTexts(m_texts);
    m_display->setTitle(m_texts.text(TxtLabelDisplay));
    if (m_help)
        m_help->setWindowTitle(m_texts.text(TxtHelpWindow));
    if (m_service)
        m_service->ApplyTexts(m_texts);
    m_device->Configure([portNotOpen = m_texts.text(TxtPortNotOpen),
                         protocol = m_texts.text(TxtProtocolError)](link::Link &link) {
        link.setPortNotOpenText(portNotOpen);
        link.setProtocolErrorText(protocol);
    });
}

void MainWindow::SetBusy(bool busy)
{
    for (QAction *a : std::as_const(m_deviceActions))
        a->setEnabled(!busy);
    for (QWidget *w : std::as_const(m_deviceWidgets))
        w->setEnabled(!busy);
    if (m_service)
        m_service->SetBusy(busy);
    if (m_records)
        m_records->SetBusy(busy);
    if (m_modem)
        m_modem->SetBusy(busy);
    m_limits->SetBusy(busy);
    // The accessory switch is offered only when the tester reported the accessory.
    m_quillbank->setEnabled(!busy && m_connection.quillbankPresent);
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void MainWindow::Fatal(const QString &message)
{
    // A tester that stops answering ends the program; the user reconnects and starts again.
    QMessageBox::critical(this, kTitle, message);
    QCoreApplication::exit(kExitNoAnswer);
}

void MainWindow::Failed(const QString &message)
{
    QMessageBox::critical(this, kTitle, message);
}

void MainWindow::OnWindow(std::function<void()> call)
{
    QMetaObject::invokeMethod(this, std::move(call));
}

void MainWindow::PostChecked(DeviceThread::Job job)
{
    m_device->Post([job = std::move(job)](link::Link &link) {
        if (!link.PortClosed())
            job(link);
    });
}

void MainWindow::Connect()
{
    const QString port = m_settings->port();
    const bool developmentTerminal = m_developmentTerminal;
    const link::IdentifyOptions options{m_startup.programDir, link::SystemDateOrder()};
    m_device->Post([this, port, developmentTerminal, options](link::Link &link) {
        const link::ConnectionState state = link::ConnectTester(link, port, developmentTerminal);
        const link::TesterIdentity identity = link::IdentifyTester(link, options);
        OnWindow([this, state, identity] { ShowIdentity(state, identity); });
    });
}

void MainWindow::ShowIdentity(const link::ConnectionState &state, const link::TesterIdentity &identity)
{
    if (state.flagsRead) {
        m_connection = state;
        m_quillbank->setEnabled(state.quillbankPresent);
        m_mitBez->setChecked(state.d3Option);
    }
    m_identity = identity;
    // The tester's display language becomes the program's language.
    SetLanguage(identity.language.name);
    m_settings->ShowIdentity(identity, m_texts);
    const QString name = QString::fromLatin1(identity.shortDesignation);
    setWindowTitle(name.isEmpty() ? kTitle : QStringLiteral("%1 - %2").arg(kTitle, name));
    emit identified();
}

void MainWindow::OpenConfig()
{
    PostChecked([this](link::Link &link) {
        link::RegisterTable table;
        link::ReadRegisters(link, table);
        OnWindow([this, table] { m_config->ShowRegisters(table); });
    });
}

void MainWindow::StoreConfig()
{
    PostChecked([this](link::Link &link) {
        link::StoreChanges(link, *m_prompter, link::StoreCommand::Configuration);
    });
}

void MainWindow::SetClock()
{
    PostChecked(
        [this](link::Link &link) { SetTesterClock(link, *m_prompter, QDateTime::currentDateTime()); });
}

void MainWindow::NameTester()
{
    m_settings->show();
    const link::IdentifyOptions options{m_startup.programDir, link::SystemDateOrder()};
    // The device thread gets its own copy of the texts: the window may switch language meanwhile.
    auto texts = std::make_shared<const LanguageTable>(m_texts);
    PostChecked([this, options, texts](link::Link &link) {
        const auto show = [this](const link::TesterIdentity &identity) {
            OnWindow([this, identity] { ShowIdentity(m_connection, identity); });
        };
        const Naming naming = shell::NameTester(link, *m_prompter, *texts, options, std::nullopt, show);
        if (naming.result == NamingResult::Sent)
            show(naming.identity);
    });
}

void MainWindow::OpenService()
{
    if (!m_service) {
        // Loading the service form, like its terminal entry, ends the development-terminal mode.
        const auto endDevelopmentTerminal = [this] {
            m_developmentTerminal = false;
            m_developmentAction->setChecked(false);
        };
        endDevelopmentTerminal();
        m_service = new ServiceWindow(*m_device, *m_prompter, m_texts);
        m_service->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_service, &ServiceWindow::terminalOpened, this, endDevelopmentTerminal);
        connect(m_service, &ServiceWindow::d3Reset, this, [this] { m_mitBez->setChecked(false); });
        m_service->SetBusy(m_device->busy());
    }
    if (!m_identity.shortDesignation.isEmpty())
        m_service->setDefaultBackupName(config::DefaultBackupName(m_identity.shortDesignation));
    m_service->show();
    m_service->raise();
}

void MainWindow::OpenRecords()
{
    if (!m_records) {
        m_records = new records::ui::RecordWindow(*m_device, *m_prompter, m_startup.programDir);
        m_records->setAttribute(Qt::WA_DeleteOnClose);
        m_records->SetBusy(m_device->busy());
    }
    m_records->show();
    m_records->raise();
}

void MainWindow::OpenModem()
{
    if (!m_modem) {
        m_modem = new modem::ui::ModemWindow(*m_device, *m_prompter, m_texts);
        m_modem->setAttribute(Qt::WA_DeleteOnClose);
        m_modem->SetBusy(m_device->busy());
    }
    m_modem->show();
    m_modem->raise();
}

void MainWindow::ToggleSwitch(bool d3)
{
    QAction *entry = d3 ? m_mitBez : m_quillbank;
    // The check mark has already flipped; the switch works from what it showed before.
    const bool wasChecked = !entry->isChecked();
    const auto which = d3 ? config::RegisterSwitch::MitBez : config::RegisterSwitch::Accessory;
    PostChecked([this, entry, which, wasChecked](link::Link &link) {
        const bool now = config::ToggleRegisterSwitch(link, which, wasChecked);
        OnWindow([entry, now] { entry->setChecked(now); });
    });
}

void MainWindow::RestoreCalibrationFromFile()
{
    PostChecked([this](link::Link &link) {
        const QString path = m_prompter->askOpenFile(config::kCalibrationFilter);
        if (!path.isEmpty())
            config::RestoreCalibration(link, *m_prompter, path, config::RestoreSource::MainForm);
    });
}

void MainWindow::ShowHelp()
{
    if (!m_help)
        m_help = new HelpWindow(this);
    m_help->ShowPage(QDir(m_startup.programDir).filePath(m_texts.helpFile()), m_texts.text(TxtHelpWindow));
}

QString MainWindow::InformationText()
{
    return QStringLiteral("Version 7.23-10.9.2009\n\n"
                          "Service- und Konfigurationsprogramm für Kalvomer-Prüfgeräte\n"
                          "Fragen zum Prüfgerät beantwortet Ihr Kalvomer-Servicepartner.");
}

void MainWindow::ShowInfo()
{
    QMessageBox::about(this, kTitle, InformationText());
}

} // namespace kalvo::shell::ui
