// The service window (form "test"): command line and answers, terminal panel, scripts,
// help-text stepping, direct printing and the trace views.
#include "ServiceWindow.h"

#include "DeviceThread.h"
#include "config/ui/ServiceConfigPanel.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "records/RecordRetrieval.h"
#include "shell/LanguageTable.h"

#include <QAction>
#include <QDir>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::shell::ui {

namespace {
// An answer as the tester sent it, its line breaks kept and the other control bytes (DC1) left out.
QString AnswerText(const QByteArray &answer)
{
    QByteArray kept;
    for (char ch : answer)
        if (static_cast<unsigned char>(ch) >= 32 || ch == '\r' || ch == '\n')
            kept.append(ch);
    kept.replace("\r\n", "\n").replace('\r', '\n');
    return link::DecodeTesterText(kept);
}
} // namespace

ServiceWindow::ServiceWindow(DeviceThread &device, link::Prompter &prompter, const LanguageTable &texts,
                             QWidget *parent)
    : QMainWindow(parent), m_device(device), m_prompter(prompter), m_dir(QDir::currentPath())
{
    setObjectName(QStringLiteral("test"));
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);

    m_commandLabel = new QLabel(central);
    m_befehl = new QLineEdit(central);
    m_befehl->setObjectName(QStringLiteral("befehl"));
    m_answerLabel = new QLabel(central);
    m_answers = new QPlainTextEdit(central);
    m_answers->setObjectName(QStringLiteral("Termantwort"));
    m_answers->setReadOnly(true);
    m_answers->setFont(QFont(QStringLiteral("Arial")));
    m_terminal = new QPlainTextEdit(central);
    m_terminal->setObjectName(QStringLiteral("Testfeld"));
    m_terminal->setReadOnly(true);
    m_terminal->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_terminal->hide();

    auto *help = new QHBoxLayout;
    m_ahtt = new QPushButton(central);
    m_ahtt->setObjectName(QStringLiteral("ahtt"));
    m_aht = new QPushButton(central);
    m_aht->setObjectName(QStringLiteral("aht"));
    m_ahst = new QPushButton(central);
    m_ahst->setObjectName(QStringLiteral("ahst"));
    m_ahnr = new QLabel(central);
    m_ahnr->setObjectName(QStringLiteral("ahnr"));
    for (QWidget *w : {static_cast<QWidget *>(m_ahtt), static_cast<QWidget *>(m_aht),
                       static_cast<QWidget *>(m_ahst), static_cast<QWidget *>(m_ahnr)})
        help->addWidget(w);
    help->addStretch();
    m_aht->hide();
    m_ahst->hide();
    m_ahnr->hide();

    layout->addWidget(m_commandLabel);
    layout->addWidget(m_befehl);
    layout->addWidget(m_answerLabel);
    layout->addWidget(m_answers, 1);
    layout->addLayout(help);
    layout->addWidget(m_terminal, 2);
    // The configuration part: variable list and calibration frame beside the terminal.
    m_config = new config::ui::ServiceConfigPanel(
        device, prompter,
        [this](const QString &text, bool clearFirst) {
            m_terminal->show();
            if (clearFirst)
                m_terminal->clear();
            AppendToTerminal(text);
        },
        [this](const QString &command) { m_befehl->setText(command); }, this);
    connect(m_config, &config::ui::ServiceConfigPanel::d3Reset, this, &ServiceWindow::d3Reset);
    auto *holder = new QWidget(this);
    auto *outer = new QHBoxLayout(holder);
    outer->addWidget(central, 3);
    outer->addWidget(m_config, 1);
    setCentralWidget(holder);

    const auto action = [this](QMenu *menu, const char *name, auto slot) {
        QAction *a = menu->addAction(QString());
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    m_viewMenu = menuBar()->addMenu(QString());
    m_term = action(m_viewMenu, "term", &ServiceWindow::OpenTerminal);
    m_clearDisp = action(m_viewMenu, "clearDisp", [this] { m_terminal->clear(); });
    m_log = action(m_viewMenu, "log", [this] { ShowTrace(false); });
    m_loghex = action(m_viewMenu, "loghex", [this] { ShowTrace(true); });
    m_printdirekt = action(m_viewMenu, "printdirekt", &ServiceWindow::ToggleDirectPrinting);
    m_printdirekt->setCheckable(true);
    m_configMenu = menuBar()->addMenu(QString());
    m_configMenu->setObjectName(QStringLiteral("konfigurationMenu"));
    m_configMenu->addActions(m_config->actions());
    m_scriptMenu = menuBar()->addMenu(QString());
    m_scriptMenu->setObjectName(QStringLiteral("abl_dum"));
    m_abl = action(m_scriptMenu, "abl", &ServiceWindow::RunScript);
    m_ablPro = action(m_scriptMenu, "ablPro", &ServiceWindow::ShowScriptResult);
    m_readprot = action(m_viewMenu, "readprot", &ServiceWindow::ReadAllRecords);
    m_deviceActions = {m_log, m_loghex, m_printdirekt, m_abl, m_readprot};
    m_deviceWidgets = {m_befehl, m_ahtt, m_aht, m_ahst};

    connect(m_befehl, &QLineEdit::returnPressed, this, &ServiceWindow::SendCommandLine);
    connect(m_ahtt, &QPushButton::clicked, this, &ServiceWindow::StartHelpTexts);
    connect(m_aht, &QPushButton::clicked, this, &ServiceWindow::NextHelpText);
    connect(m_ahst, &QPushButton::clicked, this, &ServiceWindow::StopHelpTexts);
    ApplyTexts(texts);
    resize(620, 560);
}

void ServiceWindow::ApplyTexts(const LanguageTable &texts)
{
    setWindowTitle(texts.text(TxtServiceWindow));
    m_viewMenu->setTitle(texts.text(TxtServiceView));
    m_term->setText(texts.text(TxtServiceTerminal));
    m_clearDisp->setText(texts.text(TxtServiceClear));
    m_log->setText(texts.text(TxtServiceLogAscii));
    m_loghex->setText(texts.text(TxtServiceLogHex));
    m_printdirekt->setText(texts.text(TxtServicePrintDirect));
    m_readprot->setText(texts.text(TxtMenuRecords));
    m_configMenu->setTitle(texts.text(TxtMenuConfig));
    m_config->ApplyTexts(texts);
    m_scriptMenu->setTitle(texts.text(TxtServiceScript));
    m_abl->setText(texts.text(TxtServiceScriptStart));
    m_ablPro->setText(texts.text(TxtServiceScriptResult));
    m_ahtt->setText(texts.text(TxtServiceAllHelp));
    m_aht->setText(texts.text(TxtServiceNextHelp));
    m_ahst->setText(texts.text(TxtServiceHelpStop));
    m_commandLabel->setText(texts.text(TxtServiceCommand));
    m_answerLabel->setText(texts.text(TxtServiceAnswer));
}

void ServiceWindow::setDefaultBackupName(const QString &name)
{
    m_config->setDefaultBackupName(name);
}

void ServiceWindow::SetBusy(bool busy)
{
    m_config->SetBusy(busy);
    for (QAction *a : std::as_const(m_deviceActions))
        a->setEnabled(!busy);
    for (QWidget *w : std::as_const(m_deviceWidgets))
        w->setEnabled(!busy);
}

QString ServiceWindow::FilePath(const QString &name) const
{
    return QDir(m_dir).filePath(name);
}

void ServiceWindow::SendCommandLine()
{
    const QString command = m_befehl->text();
    m_befehl->clear();
    m_device.Post([this, command](link::Link &link) {
        const QByteArray answer = SendTerminalCommand(link, command);
        QMetaObject::invokeMethod(this, [this, answer] {
            // Newest answer last, nothing added between answers but what the tester sent.
            m_answers->moveCursor(QTextCursor::End);
            m_answers->insertPlainText(AnswerText(answer));
            m_answers->moveCursor(QTextCursor::End);
        });
    });
}

void ServiceWindow::AppendToTerminal(const QString &text)
{
    m_terminal->moveCursor(QTextCursor::End);
    m_terminal->insertPlainText(text);
}

void ServiceWindow::OpenTerminal()
{
    emit terminalOpened();
    m_terminal->clear();
    m_terminal->show();
}

void ServiceWindow::RunScript()
{
    m_terminal->show();
    m_terminal->clear();
    const QString script = FilePath(kScriptFileName);
    const QString result = FilePath(kScriptResultFileName);
    m_device.Post([this, script, result](link::Link &link) {
        RunCommandScript(link, script, result, [this](const QString &line) {
            QMetaObject::invokeMethod(this, [this, line] { AppendToTerminal(line + QStringLiteral("\n")); });
        });
    });
}

void ServiceWindow::ShowScriptResult()
{
    m_terminal->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_terminal->show();
    try {
        QString text = ReadScriptResult(FilePath(kScriptResultFileName));
        AppendToTerminal(text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Warning);
    }
}

void ServiceWindow::StartHelpTexts()
{
    m_aht->show();
    m_ahst->show();
    m_ahnr->show();
    m_befehl->hide();
    m_ahnr->setText(QStringLiteral("1"));
    m_device.Post([this](link::Link &) { m_helpStepper.Begin(); });
}

void ServiceWindow::NextHelpText()
{
    m_device.Post([this](link::Link &link) {
        m_helpStepper.Next(link);
        QMetaObject::invokeMethod(
            this, [this, next = m_helpStepper.next()] { m_ahnr->setText(QString::number(next)); });
    });
}

void ServiceWindow::StopHelpTexts()
{
    m_device.Post([this](link::Link &link) { m_helpStepper.Stop(link); });
    m_aht->hide();
    m_ahst->hide();
    m_ahnr->hide();
    m_befehl->show();
}

void ServiceWindow::ToggleDirectPrinting()
{
    // The check mark has already flipped: it says what to send; the bit is never read back.
    const bool on = m_printdirekt->isChecked();
    m_device.Post([on](link::Link &link) { SetDirectPrinting(link, on); });
}

void ServiceWindow::ReadAllRecords()
{
    m_terminal->show();
    m_device.Post([this](link::Link &link) {
        // Each record shows in the terminal panel as it arrives; the file is written at the end.
        records::ReadProtocols(link, m_prompter, [this](int, const QByteArray &record) {
            QMetaObject::invokeMethod(this, [this, text = link::DecodeTesterText(record)] {
                AppendToTerminal(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
            });
        });
    });
}

void ServiceWindow::ShowTrace(bool asCodes)
{
    const QString path = FilePath(kTraceFileName);
    m_terminal->show();
    m_device.Post([this, path, asCodes](link::Link &link) {
        const QByteArray trace = TakeTrace(link, path);
        QMetaObject::invokeMethod(this, [this, trace, asCodes] {
            m_terminal->setFont(asCodes ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                        : QFont(QStringLiteral("Arial")));
            m_terminal->setPlainText(asCodes ? TraceAsCodes(trace) : TraceAsText(trace));
        });
    });
}

} // namespace kalvo::shell::ui
