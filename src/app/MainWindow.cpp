// The main window IEC601: menus, one frame at a time, the tester display, the status bar; it
// builds and connects the windows of every subsystem.
#include "MainWindow.h"

#include "ChildWindows.h"
#include "CloseQuestion.h"
#include "MainMenu.h"
#include "config/Calibration.h"
#include "config/Variables.h"
#include "config/ui/LimitFrame.h"
#include "gui/FrameStack.h"
#include "gui/GuiPrompter.h"
#include "gui/Mnemonics.h"
#include "gui/Phrases.h"
#include "gui/QtTranslations.h"
#include "gui/StatusLine.h"
#include "link/PortNames.h"
#include "link/Registers.h"
#include "link/ServiceSession.h"
#include "link/UserFiles.h"
#include "shell/ClockAndName.h"
#include "shell/PortMemory.h"
#include "shell/ServiceTerminal.h"
#include "shell/ui/ConfigFrame.h"
#include "shell/ui/HelpWindow.h"
#include "shell/ui/LanguageMenu.h"
#include "shell/ui/RemoteDisplay.h"
#include "shell/ui/ServiceWindow.h"
#include "shell/ui/SettingsFrame.h"
#include "update/ui/FileChoiceFrame.h"
#include "update/ui/UpdateFrame.h"
#include "update/ui/UpdatePanel.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

namespace kalvo::app {

namespace {
const QString kTitle = QStringLiteral("kalvo");
// The tester display never takes more than this of the window's height; it scrolls instead.
constexpr int kDisplayHeight = 150;

QString Caption(const QAction *entry)
{
    return gui::WithoutMnemonic(entry->text());
}
} // namespace

MainWindow::MainWindow(const Startup &startup, QWidget *parent)
    : QMainWindow(parent), m_startup(startup), m_openConfigWhenConnected(startup.switches.openConfiguration)
{
    setObjectName(QStringLiteral("IEC601"));
    setWindowTitle(kTitle);
    m_device = std::make_unique<gui::DeviceThread>(m_startup.transportFactory, this);
    m_device->Configure([seconds = m_startup.switches.timeoutSeconds](link::Link &link) {
        link.setTimeout(link::FromSeconds(seconds));
    });
    m_windows = new ChildWindows(*m_device, this, m_startup.programDir);
    m_status = new gui::StatusLine(*m_device, this);
    setStatusBar(m_status);
    BuildFrames();
    m_menu = new MainMenu(menuBar(), *m_limits);
    menuBar()->insertMenu(m_menu->languages->menuAction(), m_update->menu());
    ConnectMenus();

    // Start-up: ports, settings file, language, switches; the port stays closed until OK.
    m_settings->FillPorts(true);
    m_settings->SelectPort(m_startup.switches.simulate ? link::kSimulatorPortName
                                                       : shell::StartPort(m_startup.settings));
    m_status->ShowPort(m_settings->port());
    SetLanguage(m_startup.settings.language.value_or(QStringLiteral("deutsch")));
    m_deviceWidgets = {m_settings->activateButton(), m_config->storeButton()};
    m_menu->setKal->setVisible(m_startup.switches.service || m_startup.switches.development);
    if (m_startup.switches.development) {
        m_menu->development->setVisible(true);
        m_menu->ras->setVisible(true);
        m_update->SetDevelopment(true);
        const link::FilePlace trace = link::PlaceFile(QDir::currentPath(), shell::kTraceFileName);
        if (trace.moved())
            m_startup.switches.warnings << link::MovedNote(trace);
        m_device->Configure([path = trace.path](link::Link &link) { link.StartTrace(path); });
    }
    if (const QStringList warnings = m_startup.settings.warnings + m_startup.switches.warnings;
        !warnings.isEmpty())
        QTimer::singleShot(0, this,
                           [this, warnings] { QMessageBox::warning(this, kTitle, warnings.join('\n')); });

    connect(m_device.get(), &gui::DeviceThread::busyChanged, this, &MainWindow::SetBusy);
    // A tester that does not answer ends the operation, not the program: its message has been
    // shown, the port is closed, and the user chooses a port again.
    connect(m_device.get(), &gui::DeviceThread::noAnswer, this, [this] {
        ShowNotConnected();
        m_frames->ShowFrame(m_settings);
    });
    connect(m_device.get(), &gui::DeviceThread::portOpenChanged, this, &MainWindow::PortOpenChanged);
    connect(m_device.get(), &gui::DeviceThread::displayBytes, this, [this](const QByteArray &bytes) {
        m_display->Show(bytes);
        m_displayDock->show();
    });
    // RAS follows the display dock however it was shown or closed.
    connect(m_menu->ras, &QAction::triggered, m_displayDock, &QDockWidget::setVisible);
    connect(m_displayDock, &QDockWidget::visibilityChanged, m_menu->ras, &QAction::setChecked);
    connect(m_windows, &ChildWindows::terminalOpened, this, [this] {
        m_developmentTerminal = false;
        m_menu->development->setChecked(false);
    });
    connect(m_windows, &ChildWindows::d3Reset, this, [this] { m_menu->mitBez->setChecked(false); });
    resize(720, 520);
}

MainWindow::~MainWindow()
{
    m_windows->CloseAll();
    m_device.reset();
}

void MainWindow::BuildFrames()
{
    m_frames = new gui::FrameStack(this);
    m_settings = new shell::ui::SettingsFrame;
    m_config = new shell::ui::ConfigFrame;
    m_limits = new config::ui::LimitFrame(*m_device);
    m_frames->AddFrame(m_settings);
    m_frames->AddFrame(m_config, m_config->closeButton());
    m_frames->AddFrame(m_limits);
    m_update = new update::ui::UpdatePanel(*m_device, this, m_startup.programDir);
    m_update->SetUpoc(m_startup.settings.updateWithoutVersionCheck);
    m_frames->AddFrame(m_update->fileChoice());
    // The update frame has its own cancel button, disabled while a transfer runs.
    m_frames->AddFrame(m_update->updateFrame(), m_update->updateFrame()->cancelButton());
    m_frames->ShowFrame(m_settings);
    setCentralWidget(m_frames);

    m_display = new shell::ui::RemoteDisplay;
    m_displayDock = new QDockWidget(this);
    m_displayDock->setObjectName(QStringLiteral("displayDock"));
    m_displayDock->setWidget(m_display);
    m_displayDock->setMaximumHeight(kDisplayHeight);
    m_displayDock->setFeatures(QDockWidget::DockWidgetClosable);
    addDockWidget(Qt::BottomDockWidgetArea, m_displayDock);
    m_displayDock->hide(); // until the tester sends its display

    connect(m_settings, &shell::ui::SettingsFrame::activateRequested, this, &MainWindow::Connect);
    connect(m_settings, &shell::ui::SettingsFrame::portChanged, m_status, &gui::StatusLine::ShowPort);
    connect(m_config, &shell::ui::ConfigFrame::storeRequested, this, &MainWindow::StoreConfig);
    connect(m_limits, &config::ui::LimitFrame::loaded, this, [this] { m_frames->ShowFrame(m_limits); });
    connect(m_update, &update::ui::UpdatePanel::showFrame, m_frames, &gui::FrameStack::ShowFrame);
    connect(m_update, &update::ui::UpdatePanel::leave, this, [this] { m_frames->ShowFrame(m_settings); });
    connect(m_update, &update::ui::UpdatePanel::identityRead, this,
            [this](const link::TesterIdentity &identity) { ShowIdentity(m_connection, identity, true); });
}

void MainWindow::ConnectMenus()
{
    const auto on = [this](QAction *entry, auto slot) { connect(entry, &QAction::triggered, this, slot); };
    on(m_menu->connection, [this] { m_frames->ShowFrame(m_settings); });
    on(m_menu->config, &MainWindow::OpenConfig);
    on(m_menu->clock, &MainWindow::SetClock);
    on(m_menu->name, &MainWindow::NameTester);
    on(m_menu->mitBez, [this] { ToggleSwitch(true); });
    on(m_menu->quillbank, [this] { ToggleSwitch(false); });
    on(m_menu->setKal, &MainWindow::RestoreCalibrationFromFile);
    on(m_menu->modem, [this] { m_windows->OpenModem(m_texts); });
    on(m_menu->records, [this] { m_windows->OpenRecords(m_texts); });
    on(m_menu->specifications, [this] { m_windows->OpenDatabase(m_texts); });
    on(m_menu->archive, [this] { m_windows->OpenArchive(m_texts.language()); });
    // A backup is offered under the tester's name and under the serial number SetSRNr shows.
    on(m_menu->service, [this] {
        m_windows->OpenService(
            m_texts, config::CalibrationBackupNames(m_identity.shortDesignation, m_identity.serialNumber));
    });
    connect(m_menu->languages, &shell::ui::LanguageMenu::chosen, this, &MainWindow::SetLanguage);
    const auto showHelp = [this](const QString &chapter) {
        m_windows->ShowHelp(QDir(m_startup.programDir).filePath(m_texts.helpFile()),
                            m_texts.text(link::TxtHelpWindow), chapter);
    };
    // F1 opens the help at the chapter of what is shown: here the update's frames.
    on(m_menu->helpContents, [this, showHelp] {
        const QWidget *shown = m_frames->shownFrame();
        const bool update = shown == m_update->fileChoice() || shown == m_update->updateFrame();
        showHelp(update ? QString::fromLatin1(shell::ui::kHelpUpdate) : QString());
    });
    connect(m_windows, &ChildWindows::helpWanted, this, showHelp);
    on(m_menu->info, &MainWindow::ShowInfo);
    on(m_menu->development, [this] { m_developmentTerminal = m_menu->development->isChecked(); });
    on(m_menu->exit, [this] { close(); });
}

void MainWindow::SetLanguage(const QString &name)
{
    QString error;
    const QString path = QDir(m_startup.programDir).filePath(link::kLanguageFileName);
    m_texts.SetLanguageFromFile(name, path, &error);
    // The same fault again at every switch would only nag: a fault is told again only once the
    // file has changed (the system's part of the message changes with Qt's language).
    const QFileInfo file(path);
    const QString state =
        file.exists()
            ? QStringLiteral("%1 %2").arg(file.size()).arg(file.lastModified().toString(Qt::ISODateWithMs))
            : QStringLiteral("missing");
    if (!error.isEmpty() && state != m_languageFileError) {
        m_languageFileError = state;
        QMessageBox::warning(this, kTitle,
                             error + (m_texts.fromFile()
                                          ? QStringLiteral("\nDie bisherigen Texte bleiben.")
                                          : QStringLiteral("\nDie eingebauten deutschen Texte bleiben.")));
    }
    gui::UseQtTranslations(m_texts.language());
    ApplyTexts();
}

void MainWindow::ApplyTexts()
{
    m_menu->ApplyTexts(m_texts);
    m_settings->ApplyTexts(m_texts);
    m_config->ApplyTexts(m_texts);
    m_limits->ApplyTexts(m_texts);
    m_update->ApplyTexts(m_texts);
    m_frames->SetCloseText(m_texts.text(link::TxtButtonClose));
    m_displayDock->setWindowTitle(m_texts.text(link::TxtLabelDisplay));
    m_status->SetLanguage(m_texts.language());
    m_windows->ApplyTexts(m_texts);
    gui::AssignMenuMnemonics(menuBar());
    // Every entry of the menu bar shows, in every language: none behind the bar's "»".
    const int menuWidth = std::min(menuBar()->sizeHint().width(), screen()->availableGeometry().width());
    if (width() < menuWidth)
        resize(menuWidth, height());
    m_device->Configure([portNotOpen = m_texts.text(link::TxtPortNotOpen),
                         protocol = m_texts.text(link::TxtProtocolError)](link::Link &link) {
        link.setPortNotOpenText(portNotOpen);
        link.setProtocolErrorText(protocol);
    });
}

void MainWindow::SetBusy(bool busy)
{
    for (QAction *a : m_menu->deviceEntries())
        a->setEnabled(!busy);
    for (QWidget *w : std::as_const(m_deviceWidgets))
        w->setEnabled(!busy);
    m_windows->SetBusy(busy);
    m_limits->SetBusy(busy);
    m_update->SetBusy(busy);
    // The accessory switch is offered only when the tester reported the accessory.
    m_menu->quillbank->setEnabled(!busy && m_connection.quillbankPresent);
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void MainWindow::PortOpenChanged(bool open)
{
    // A port that closes while connected, without a new connect, is a lost line.
    if (!open && m_connected) {
        m_connected = false;
        m_status->ShowConnection(gui::StatusLine::Connection::LineLost);
    }
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_device->transferring() && !CloseDuringTransfer(this, kTitle, m_texts.language())) {
        event->ignore();
        return;
    }
    m_windows->CloseAll();
    m_device->Stop();
    event->accept();
    QCoreApplication::quit();
}

void MainWindow::OnWindow(std::function<void()> call)
{
    QMetaObject::invokeMethod(this, std::move(call));
}

void MainWindow::PostChecked(QAction *entry, gui::DeviceThread::Job job)
{
    m_device->Post(this, Caption(entry), [job = std::move(job)](link::Link &link, link::Prompter &prompter) {
        if (!link.PortClosed())
            job(link, prompter);
    });
}

void MainWindow::Connect()
{
    const QString port = m_settings->port();
    shell::RememberPort(port);
    m_status->ShowPort(port);
    // The tester shown so far is gone the moment another connection is asked for.
    ShowNotConnected();
    m_status->ShowConnection(gui::StatusLine::Connection::Connecting);
    const bool developmentTerminal = m_developmentTerminal;
    const link::IdentifyOptions options{m_startup.programDir};
    m_device->Post(this, Caption(m_menu->connection),
                   [this, port, developmentTerminal, options](link::Link &link, link::Prompter &) {
                       try {
                           const link::ConnectionState state =
                               link::ConnectTester(link, port, developmentTerminal);
                           const link::TesterIdentity identity = link::IdentifyTester(link, options);
                           OnWindow([this, state, identity, open = link.IsOpen()] {
                               ShowIdentity(state, identity, open);
                           });
                       } catch (...) {
                           // A port that would not open, or a tester that did not identify: not connected,
                           // and the message of the failure says why.
                           OnWindow([this] { ShowNotConnected(); });
                           throw;
                       }
                   });
}

void MainWindow::ShowNotConnected()
{
    m_connected = false;
    m_identity = {};
    m_connection = {};
    m_settings->ShowIdentity(m_identity, m_texts);
    m_windows->SetTester({}, {});
    m_menu->quillbank->setEnabled(false);
    setWindowTitle(kTitle);
    m_status->ShowConnection(gui::StatusLine::Connection::NotConnected);
}

void MainWindow::ShowIdentity(const link::ConnectionState &state, const link::TesterIdentity &identity,
                              bool open)
{
    if (state.flagsRead) {
        m_connection = state;
        m_menu->quillbank->setEnabled(state.quillbankPresent);
        m_menu->mitBez->setChecked(state.d3Option);
    }
    m_identity = identity;
    // The tester's display language becomes the program's language.
    SetLanguage(identity.language.name);
    m_settings->ShowIdentity(identity, m_texts);
    const QString name = identity.DesignationText();
    m_windows->SetTester(open ? name : QString(), open ? identity.SerialText() : QString());
    setWindowTitle(name.isEmpty() ? kTitle : QStringLiteral("%1 - %2").arg(kTitle, name));
    m_connected = open;
    if (open)
        m_status->ShowConnection(gui::StatusLine::Connection::Connected, name,
                                 QString::fromLatin1(identity.VersionText()).trimmed());
    else
        m_status->ShowConnection(gui::StatusLine::Connection::NotConnected);
    emit identified();
    if (open && std::exchange(m_openConfigWhenConnected, false))
        OpenConfig();
}

void MainWindow::OpenConfig()
{
    PostChecked(m_menu->config, [this](link::Link &link, link::Prompter &) {
        link::RegisterTable table;
        link::ReadRegisters(link, table);
        OnWindow([this, table] {
            m_config->ShowRegisters(table);
            m_frames->ShowFrame(m_config);
        });
    });
}

void MainWindow::StoreConfig()
{
    PostChecked(m_menu->config,
                [this, done = gui::PhraseText(gui::Phrase::ConfigurationStored, m_texts.language())](
                    link::Link &link, link::Prompter &prompter) {
                    if (link::StoreChanges(link, prompter, link::StoreCommand::Configuration))
                        m_device->Tell(done);
                });
}

void MainWindow::SetClock()
{
    PostChecked(m_menu->clock, [this, done = gui::PhraseText(gui::Phrase::ClockSet, m_texts.language())](
                                   link::Link &link, link::Prompter &prompter) {
        if (shell::SetTesterClock(link, prompter, QDateTime::currentDateTime()).sent)
            m_device->Tell(done);
    });
}

void MainWindow::NameTester()
{
    m_frames->ShowFrame(m_settings);
    const link::IdentifyOptions options{m_startup.programDir};
    // The device thread gets its own copy of the texts: the window may switch language meanwhile.
    auto texts = std::make_shared<const link::LanguageTable>(m_texts);
    PostChecked(m_menu->name, [this, options, texts,
                               done = gui::PhraseText(gui::Phrase::NameStored, m_texts.language())](
                                  link::Link &link, link::Prompter &prompter) {
        const auto show = [this](const link::TesterIdentity &identity) {
            OnWindow([this, identity, open = true] { ShowIdentity(m_connection, identity, open); });
        };
        const shell::Naming naming = shell::NameTester(link, prompter, *texts, options, std::nullopt, show);
        if (naming.result != shell::NamingResult::Sent)
            return;
        // What the tester calls itself now, not what it called itself before.
        show(naming.identity);
        m_device->Tell(done);
    });
}

void MainWindow::ToggleSwitch(bool d3)
{
    QAction *entry = d3 ? m_menu->mitBez : m_menu->quillbank;
    // The check mark has already flipped; the switch works from what it showed before.
    const bool wasChecked = !entry->isChecked();
    const auto which = d3 ? config::RegisterSwitch::MitBez : config::RegisterSwitch::Accessory;
    PostChecked(entry, [this, entry, which, wasChecked](link::Link &link, link::Prompter &) {
        const bool now = config::ToggleRegisterSwitch(link, which, wasChecked);
        OnWindow([entry, now] { entry->setChecked(now); });
    });
}

void MainWindow::RestoreCalibrationFromFile()
{
    PostChecked(m_menu->setKal, [language = m_texts.language()](link::Link &link, link::Prompter &prompter) {
        const QString path = prompter.askOpenFile(config::kCalibrationFilter);
        if (!path.isEmpty())
            config::RestoreCalibration(link, prompter, path, config::RestoreSource::MainForm, {}, language);
    });
}

QString MainWindow::InformationText()
{
    return QStringLiteral("Version 7.23-10.9.2009\n\n"
                          "Service- und Konfigurationsprogramm für Kalvomer-Prüfgeräte\n"
                          "Fragen zum Prüfgerät beantwortet Ihr Kalvomer-Servicepartner.");
}

void MainWindow::ShowInfo()
{
    QMessageBox::about(this, Caption(m_menu->info), InformationText());
}

} // namespace kalvo::app
