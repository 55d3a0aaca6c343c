// The object on the device thread that owns transport and link and runs the queued jobs.
#pragma once

#include "DeviceThread.h"
#include "GuiPrompter.h"

#include <atomic>

class QTimer;

namespace kalvo::gui {

// What the link itself says (a refusal, a port that cannot be opened) goes to the prompter of the
// operation that runs, or to the fallback window between operations.
class RoutingPrompter final : public link::Prompter {
public:
    explicit RoutingPrompter(link::Prompter &fallback) : m_fallback(fallback) {}
    void route(link::Prompter *to) { m_current = to; }

    void message(const QString &text, Icon icon) override { target().message(text, icon); }
    bool confirm(const QString &text) override { return target().confirm(text); }
    bool confirmLoss(const QString &text) override { return target().confirmLoss(text); }
    std::optional<QString> askText(const QString &title, const QString &prompt,
                                   const QString &defaultText) override
    {
        return target().askText(title, prompt, defaultText);
    }
    QString askOpenFile(const QString &filter) override { return target().askOpenFile(filter); }
    QString askSaveFile(const QString &filter) override { return target().askSaveFile(filter); }
    void progress(int percent) override { target().progress(percent); }
    void busy(bool on) override { target().busy(on); }

private:
    link::Prompter &target() { return m_current ? *m_current : m_fallback; }
    link::Prompter &m_fallback;
    link::Prompter *m_current = nullptr;
};

class DeviceWorker : public QObject {
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

signals:
    void jobStarted(const QString &title);
    void jobDone(const QString &title);
    void progressed(int percent);
    void fatal(const QString &message);
    void failed(const QString &title, const QString &message);
    void portOpenChanged(bool open);
    void displayBytes(const QByteArray &bytes);

private:
    void PollDisplay();
    void NotePortState();

    DeviceThread::TransportFactory m_factory;
    GuiPrompter m_fallback;
    RoutingPrompter m_routing;
    std::unique_ptr<link::Transport> m_transport;
    std::unique_ptr<link::Link> m_link;
    QTimer *m_poll = nullptr;
    bool m_portOpen = false;
    std::atomic<link::Link *> m_linkForAbandon{nullptr}; // read from the window's thread
    std::atomic<bool> m_closing{false};                  // set from the window's thread
};

} // namespace kalvo::gui
