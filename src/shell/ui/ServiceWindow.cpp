// The service window (form "test"): command line and answers, terminal panel, scripts,
// help-text stepping, direct printing and the trace views.
#include "ServiceWindow.h"

#include "gui/DeviceThread.h"
#include "gui/GuiPrompter.h"
#include "link/Errors.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/TextRules.h"

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

ServiceWindow::ServiceWindow(gui::DeviceThread &device, const link::LanguageTable &texts, QWidget *parent)
    : QMainWindow(parent), m_device(device), m_dir(QDir::currentPath())
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
    m_holder = new QWidget(this);
    auto *outer = new QHBoxLayout(m_holder);
    outer->addWidget(central, 3);
    setCentralWidget(m_holder);

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
    m_scriptMenu = menuBar()->addMenu(QString());
    m_scriptMenu->setObjectName(QStringLiteral("abl_dum"));
    m_abl = action(m_scriptMenu, "abl", &ServiceWindow::RunScript);
    m_ablPro = action(m_scriptMenu, "ablPro", &ServiceWindow::ShowScriptResult);
    m_deviceActions = {m_log, m_loghex, m_printdirekt, m_abl};
    // The command line stays enabled and keeps the focus: a command typed while another runs is
    // queued behind it, not lost.
    m_deviceWidgets = {m_ahtt, m_aht, m_ahst};

    connect(m_befehl, &QLineEdit::returnPressed, this, &ServiceWindow::SendCommandLine);
    connect(m_ahtt, &QPushButton::clicked, this, &ServiceWindow::StartHelpTexts);
    connect(m_aht, &QPushButton::clicked, this, &ServiceWindow::NextHelpText);
    connect(m_ahst, &QPushButton::clicked, this, &ServiceWindow::StopHelpTexts);
    ApplyTexts(texts);
    resize(620, 560);
}

void ServiceWindow::ApplyTexts(const link::LanguageTable &texts)
{
    setWindowTitle(texts.text(link::TxtServiceWindow));
    m_viewMenu->setTitle(texts.text(link::TxtServiceView));
    m_term->setText(texts.text(link::TxtServiceTerminal));
    m_clearDisp->setText(texts.text(link::TxtServiceClear));
    m_log->setText(texts.text(link::TxtServiceLogAscii));
    m_loghex->setText(texts.text(link::TxtServiceLogHex));
    m_printdirekt->setText(texts.text(link::TxtServicePrintDirect));
    if (m_readprot)
        m_readprot->setText(texts.text(link::TxtMenuRecords));
    m_configMenu->setTitle(texts.text(link::TxtMenuConfig));
    m_scriptMenu->setTitle(texts.text(link::TxtServiceScript));
    m_abl->setText(texts.text(link::TxtServiceScriptStart));
    m_ablPro->setText(texts.text(link::TxtServiceScriptResult));
    m_ahtt->setText(texts.text(link::TxtServiceAllHelp));
    m_aht->setText(texts.text(link::TxtServiceNextHelp));
    m_ahst->setText(texts.text(link::TxtServiceHelpStop));
    m_commandLabel->setText(texts.text(link::TxtServiceCommand));
    m_answerLabel->setText(texts.text(link::TxtServiceAnswer));
}

void ServiceWindow::AddConfigPanel(QWidget *panel, const QList<QAction *> &entries)
{
    panel->setParent(m_holder);
    static_cast<QHBoxLayout *>(m_holder->layout())->addWidget(panel, 1);
    m_configMenu->addActions(entries);
}

void ServiceWindow::AddRecordReader(QAction *entry)
{
    m_readprot = entry;
    entry->setParent(this);
    m_viewMenu->addAction(entry);
    m_deviceActions << entry;
    // Records show in the terminal panel as they arrive.
    connect(entry, &QAction::triggered, m_terminal, &QWidget::show);
}

void ServiceWindow::ShowInTerminal(const QString &text, bool clearFirst)
{
    m_terminal->show();
    if (clearFirst)
        m_terminal->clear();
    AppendToTerminal(text);
}

void ServiceWindow::ShowCommand(const QString &command)
{
    m_befehl->setText(command);
}

void ServiceWindow::Post(const QString &title, std::function<void(link::Link &)> job)
{
    m_device.Post(this, QString(title).remove(QLatin1Char('&')),
                  [job = std::move(job)](link::Link &link, link::Prompter &) { job(link); });
}

void ServiceWindow::SetBusy(bool busy)
{
    for (QAction *a : std::as_const(m_deviceActions))
        a->setEnabled(!busy);
    for (QWidget *w : std::as_const(m_deviceWidgets))
        w->setEnabled(!busy);
}

QString ServiceWindow::FilePath(const QString &name) const
{
    return QDir(m_dir).filePath(name);
}

link::FilePlace ServiceWindow::WrittenFile(const QString &name) const
{
    return link::PlaceFile(m_dir, name);
}

void ServiceWindow::SendCommandLine()
{
    const QString command = m_befehl->text();
    m_befehl->clear();
    m_befehl->setFocus();
    Post(command, [this, command](link::Link &link) {
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
    const link::FilePlace place = WrittenFile(kScriptResultFileName);
    if (place.moved())
        AppendToTerminal(link::MovedNote(place) + QStringLiteral("\n"));
    const QString result = place.path;
    Post(m_abl->text(), [this, script, result](link::Link &link) {
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
        QString text = ReadScriptResult(WrittenFile(kScriptResultFileName).path);
        AppendToTerminal(text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    } catch (const link::KalvoError &e) {
        gui::GuiPrompter(this, m_ablPro->text().remove(QLatin1Char('&')))
            .message(e.message(), link::Prompter::Icon::Warning);
    }
}

void ServiceWindow::StartHelpTexts()
{
    m_aht->show();
    m_ahst->show();
    m_ahnr->show();
    m_befehl->hide();
    m_ahnr->setText(QStringLiteral("1"));
    Post(m_ahtt->text(), [this](link::Link &) { m_helpStepper.Begin(); });
}

void ServiceWindow::NextHelpText()
{
    Post(m_aht->text(), [this](link::Link &link) {
        m_helpStepper.Next(link);
        QMetaObject::invokeMethod(
            this, [this, next = m_helpStepper.next()] { m_ahnr->setText(QString::number(next)); });
    });
}

void ServiceWindow::StopHelpTexts()
{
    Post(m_ahst->text(), [this](link::Link &link) { m_helpStepper.Stop(link); });
    m_aht->hide();
    m_ahst->hide();
    m_ahnr->hide();
    m_befehl->show();
}

void ServiceWindow::ToggleDirectPrinting()
{
    // The check mark has already flipped: it says what to send; the bit is never read back.
    const bool on = m_printdirekt->isChecked();
    Post(m_printdirekt->text(), [on](link::Link &link) { SetDirectPrinting(link, on); });
}

void ServiceWindow::ShowTrace(bool asCodes)
{
    const QString path = WrittenFile(kTraceFileName).path;
    m_terminal->show();
    Post((asCodes ? m_loghex : m_log)->text(), [this, path, asCodes](link::Link &link) {
        const QByteArray trace = TakeTrace(link, path);
        QMetaObject::invokeMethod(this, [this, trace, asCodes] {
            m_terminal->setFont(asCodes ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                        : QFont(QStringLiteral("Arial")));
            m_terminal->setPlainText(asCodes ? TraceAsCodes(trace) : TraceAsText(trace));
        });
    });
}

} // namespace kalvo::shell::ui
