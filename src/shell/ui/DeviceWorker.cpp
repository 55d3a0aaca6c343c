// The object on the device thread that owns transport and link and runs the queued jobs.
#include "DeviceWorker.h"

#include "link/Errors.h"

#include <QTimer>

namespace kalvo::shell::ui {

namespace {
// How often an idle line is looked at for remote-display bytes.
constexpr int kDisplayPollMs = 50;
} // namespace

DeviceWorker::DeviceWorker(DeviceThread::TransportFactory factory, link::Prompter &prompter)
    : m_factory(std::move(factory)), m_prompter(prompter)
{}

DeviceWorker::~DeviceWorker() = default;

void DeviceWorker::Start()
{
    m_transport = m_factory();
    m_link = std::make_unique<link::Link>(*m_transport, m_prompter);
    m_linkForAbandon = m_link.get();
    m_poll = new QTimer(this);
    m_poll->setInterval(kDisplayPollMs);
    connect(m_poll, &QTimer::timeout, this, &DeviceWorker::PollDisplay);
    m_poll->start();
}

void DeviceWorker::Run(const DeviceThread::Job &job)
{
    if (!m_link)
        return;
    try {
        job(*m_link);
    } catch (const link::Timeout &e) {
        m_link->ClosePort();
        emit fatal(e.message());
    } catch (const link::KalvoError &e) {
        emit failed(e.message());
    } catch (const std::exception &e) {
        // An unexpected failure ends the operation, not the program.
        emit failed(QString::fromLocal8Bit(e.what()));
    }
}

void DeviceWorker::PollDisplay()
{
    if (!m_link || !m_link->IsOpen())
        return;
    try {
        const QByteArray bytes = m_link->ReadUnprompted(std::chrono::milliseconds(0));
        if (!bytes.isEmpty())
            emit displayBytes(bytes);
    } catch (const link::KalvoError &e) {
        emit failed(e.message());
    }
}

void DeviceWorker::Abandon()
{
    if (link::Link *link = m_linkForAbandon.load())
        link->Abandon();
}

void DeviceWorker::Stop()
{
    if (m_poll)
        m_poll->stop();
    if (m_link)
        m_link->ClosePort();
    m_linkForAbandon = nullptr;
    m_link.reset();
    m_transport.reset();
}

} // namespace kalvo::shell::ui
