// The status bar of the main window: port, connection, the operation that runs and its progress.
#include "StatusLine.h"

#include "DeviceThread.h"
#include "Phrases.h"
#include "WaitCountdown.h"

#include <QLabel>
#include <QProgressBar>

namespace kalvo::gui {

StatusLine::StatusLine(DeviceThread &device, QWidget *parent)
    : QStatusBar(parent), m_portLabel(new QLabel(this)), m_connectionLabel(new QLabel(this)),
      m_operationLabel(new QLabel(this)), m_progress(new QProgressBar(this)),
      m_countdown(new WaitCountdown(device, this))
{
    setObjectName(QStringLiteral("statusLine"));
    m_portLabel->setObjectName(QStringLiteral("statusPort"));
    m_connectionLabel->setObjectName(QStringLiteral("statusConnection"));
    m_operationLabel->setObjectName(QStringLiteral("statusOperation"));
    m_progress->setObjectName(QStringLiteral("statusProgress"));
    m_progress->setRange(0, 100);
    m_progress->setMaximumWidth(160);
    m_progress->hide();
    addWidget(m_portLabel);
    addWidget(m_connectionLabel);
    addWidget(m_operationLabel, 1);
    addPermanentWidget(m_countdown);
    addPermanentWidget(m_progress);
    connect(&device, &DeviceThread::started, this, &StatusLine::Started);
    connect(&device, &DeviceThread::finished, this, &StatusLine::Finished);
    connect(&device, &DeviceThread::failed, this, [this](const QString &title) { Failed(title); });
    connect(&device, &DeviceThread::told, this, &StatusLine::ShowDone);
    connect(&device, &DeviceThread::progressed, this, [this](int percent) {
        m_progress->setValue(std::clamp(percent, 0, 100));
        m_progress->show();
    });
    ShowConnectionText();
}

void StatusLine::SetLanguage(const QString &language)
{
    // What the last operation achieved was said in the old language: it goes rather than stay
    // in a language the user has just left. A running operation's line is renewed when it ends.
    if (language != m_language && !m_running)
        m_operationLabel->clear();
    m_language = language;
    m_countdown->SetLanguage(language);
    ShowConnectionText();
}

void StatusLine::ShowOperationsOnly()
{
    m_portLabel->hide();
    m_connectionLabel->hide();
}

void StatusLine::ShowPort(const QString &port)
{
    m_port = port;
    m_portLabel->setText(port);
}

void StatusLine::ShowConnection(Connection state, const QString &name, const QString &firmware)
{
    m_state = state;
    m_name = name;
    m_firmware = firmware;
    ShowConnectionText();
}

void StatusLine::ShowConnectionText()
{
    switch (m_state) {
    case Connection::NotConnected:
        m_connectionLabel->setText(PhraseText(Phrase::NotConnected, m_language));
        break;
    case Connection::Connecting:
        m_connectionLabel->setText(PhraseText(Phrase::Connecting, m_language));
        break;
    case Connection::Connected:
        m_connectionLabel->setText(PhraseText(Phrase::Connected, m_language).arg(m_name, m_firmware));
        break;
    case Connection::LineLost: m_connectionLabel->setText(PhraseText(Phrase::LineLost, m_language)); break;
    }
}

void StatusLine::ShowDone(const QString &text)
{
    m_operationLabel->setText(text);
    m_doneShown = true;
}

void StatusLine::Started(const QString &title)
{
    m_failed = false;
    m_doneShown = false;
    m_running = true;
    m_progress->setValue(0);
    m_progress->hide(); // shown by the first progress the operation reports
    m_operationLabel->setText(PhraseText(Phrase::Running, m_language).arg(title));
}

void StatusLine::Failed(const QString &title)
{
    m_failed = true;
    m_operationLabel->setText(PhraseText(Phrase::Failed, m_language).arg(title));
}

void StatusLine::Finished(const QString &title)
{
    m_running = false;
    m_progress->hide();
    // What the operation said about itself, or its failure, stays; otherwise just that it ended.
    if (!m_failed && !m_doneShown)
        m_operationLabel->setText(title.isEmpty() ? QString()
                                                  : PhraseText(Phrase::Done, m_language).arg(title));
}

QString StatusLine::connectionText() const
{
    return m_connectionLabel->text();
}

QString StatusLine::operationText() const
{
    return m_operationLabel->text();
}

} // namespace kalvo::gui
