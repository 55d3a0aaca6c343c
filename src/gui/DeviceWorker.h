// The object on the device thread that owns transport and link and runs the queued jobs.
#pragma once

#include "DeviceThread.h"
#include "GuiPrompter.h"

#include <atomic>

class QTimer;

namespace kalvo::gui {

// What the link and the operations say (a refusal, a port that cannot be opened) goes to the
// prompter of the operation that runs, or to the fallback window between operations. Once the
// program is closing nothing more is said or asked: a question gets Cancel, a file dialog no name.
class RoutingPrompter final : public link::Prompter {
public:
    RoutingPrompter(link::Prompter &fallback, const std::atomic<bool> &closing)
        : m_fallback(fallback), m_closing(closing)
    {}
    void route(link::Prompter *to) { m_current = to; }

    void message(const QString &text, Icon icon) override
    {
        if (!m_closing)
            target().message(text, icon);
    }
    bool confirm(const QString &text) override { return !m_closing && target().confirm(text); }
    bool confirmLoss(const QString &text) override { return !m_closing && target().confirmLoss(text); }
    std::optional<QString> askText(const QString &title, const QString &prompt,
                                   const QString &defaultText) override
    {
        if (m_closing)
            return std::nullopt;
        return target().askText(title, prompt, defaultText);
    }
    QString askOpenFile(const QString &filter) override
    {
        return m_closing ? QString() : target().askOpenFile(filter);
    }
    QString askSaveFile(const QString &filter) override
    {
        return m_closing ? QString() : target().askSaveFile(filter);
    }
    void progress(int percent) override { target().progress(percent); }
    void busy(bool on) override { target().busy(on); }

private:
    link::Prompter &target() { return m_current ? *m_current : m_fallback; }
    link::Prompter &m_fallback;
    link::Prompter *m_current = nullptr;
    const std::atomic<bool> &m_closing;
};

class DeviceWorker : public QObject, private link::WaitObserver {
    Q_OBJECT
public:
    DeviceWorker(DeviceThread::TransportFactory factory, QWidget *fallbackOwner);
    ~DeviceWorker() override;

    // Everything below runs on the device thread.
    void Start();
    // Runs an operation for `owner`; failures are shown there and become signals, nothing is
    // thrown across the event loop.
    void RunTask(const QPointer<QWidget> &owner, const QString &title, const DeviceThread::Job &job);
    // Runs a change of the link's settings or a test's look at it.
    void RunQuietly(const DeviceThread::LinkJob &job);
    void Stop();
    // From the window's thread, when the program closes: a running wait gives up at once.
    void Abandon();
    // From the window's thread: the user gives up waiting for the tester (not in a transfer).
    void CancelWait();
    // From the window's thread: whether an update transfer runs.
    bool Transferring() const;

signals:
    void jobStarted(const QString &title);
    void jobDone(const QString &title);
    void progressed(int percent);
    // The tester did not answer, or the user gave up waiting: the port is closed.
    void noAnswer(const QString &message);
    // The link waits for the tester, at most `msLeft` more; `cancellable` outside a transfer.
    void waiting(qint64 msLeft, bool cancellable);
    void waitOver();
    void failed(const QString &title, const QString &message);
    void portOpenChanged(bool open);
    void displayBytes(const QByteArray &bytes);

private:
    void WaitStarted(link::Duration left, bool cancellable) override;
    void WaitEnded() override;
    void PollDisplay();
    void NotePortState();

    DeviceThread::TransportFactory m_factory;
    std::atomic<bool> m_closing{false}; // set from the window's thread; before the prompters that read it
    GuiPrompter m_fallback;
    RoutingPrompter m_routing;
    std::unique_ptr<link::Transport> m_transport;
    std::unique_ptr<link::Link> m_link;
    QTimer *m_poll = nullptr;
    bool m_portOpen = false;
    std::atomic<link::Link *> m_linkForAbandon{nullptr}; // read from the window's thread
};

} // namespace kalvo::gui
