// The object on the device thread that owns transport and link and runs the queued jobs.
#include "DeviceWorker.h"

#include "link/Errors.h"

#include <QTimer>

namespace kalvo::gui {

namespace {
// How often an idle line is looked at for remote-display bytes.
constexpr int kDisplayPollMs = 50;
} // namespace

DeviceWorker::DeviceWorker(DeviceThread::TransportFactory factory, QWidget *fallbackOwner)
    : m_factory(std::move(factory)), m_fallback(fallbackOwner, QString()), m_routing(m_fallback, m_closing)
{}

DeviceWorker::~DeviceWorker() = default;

void DeviceWorker::Start()
{
    m_transport = m_factory();
    m_link = std::make_unique<link::Link>(*m_transport, m_routing);
    m_link->setWaitObserver(this);
    m_linkForAbandon = m_link.get();
    m_poll = new QTimer(this);
    m_poll->setInterval(kDisplayPollMs);
    connect(m_poll, &QTimer::timeout, this, &DeviceWorker::PollDisplay);
    m_poll->start();
}

void DeviceWorker::RunTask(const QPointer<QWidget> &owner, const QString &title, const DeviceThread::Job &job)
{
    emit jobStarted(title);
    GuiPrompter prompter(owner, title, [this](int percent) { emit progressed(percent); });
    // The operation speaks through the router too: a program being closed hears nothing more.
    m_routing.route(&prompter);
    if (m_link) {
        // A "give up" meant for an earlier operation does not end this one.
        m_link->ForgetCancel();
        try {
            job(*m_link, m_routing);
        } catch (const link::Timeout &e) {
            // A silent tester ends the operation, not the program: the port is closed, and the
            // window goes back to choosing one.
            m_link->ClosePort();
            m_routing.message(e.message(), link::Prompter::Icon::Critical);
            emit failed(title, e.message());
            emit noAnswer(e.message());
        } catch (const link::KalvoError &e) {
            m_routing.message(e.message(), link::Prompter::Icon::Critical);
            emit failed(title, e.message());
        } catch (const std::exception &e) {
            // An unexpected failure ends the operation, not the program.
            const QString message = QString::fromLocal8Bit(e.what());
            m_routing.message(message, link::Prompter::Icon::Critical);
            emit failed(title, message);
        }
    }
    m_routing.route(nullptr);
    NotePortState();
    emit jobDone(title);
}

void DeviceWorker::RunQuietly(const DeviceThread::LinkJob &job)
{
    if (!m_link)
        return;
    try {
        job(*m_link);
    } catch (const link::KalvoError &e) {
        // A setting that cannot be applied (a trace file that cannot be opened) is told; the
        // work goes on without it.
        m_fallback.message(e.message(), link::Prompter::Icon::Warning);
    }
}

void DeviceWorker::NotePortState()
{
    const bool open = m_link && m_link->IsOpen();
    if (open != m_portOpen) {
        m_portOpen = open;
        emit portOpenChanged(open);
    }
}

void DeviceWorker::PollDisplay()
{
    if (!m_link || !m_link->IsOpen()) {
        NotePortState();
        return;
    }
    try {
        const QByteArray bytes = m_link->ReadUnprompted(std::chrono::milliseconds(0));
        if (!bytes.isEmpty())
            emit displayBytes(bytes);
    } catch (const link::KalvoError &e) {
        // A line lost while the program closes is no news to anyone.
        if (!m_closing)
            m_fallback.message(e.message(), link::Prompter::Icon::Critical);
    }
    NotePortState();
}

void DeviceWorker::Abandon()
{
    m_closing = true;
    if (link::Link *link = m_linkForAbandon.load())
        link->Abandon();
}

void DeviceWorker::CancelWait()
{
    if (link::Link *link = m_linkForAbandon.load())
        link->CancelWait();
}

bool DeviceWorker::Transferring() const
{
    const link::Link *link = m_linkForAbandon.load();
    return link && link->transferring();
}

void DeviceWorker::WaitStarted(link::Duration left, bool cancellable)
{
    emit waiting(std::chrono::ceil<std::chrono::milliseconds>(left).count(), cancellable);
}

void DeviceWorker::WaitEnded()
{
    emit waitOver();
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
    NotePortState();
}

} // namespace kalvo::gui
