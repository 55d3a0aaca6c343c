// The object on the device thread that owns transport and link and runs the queued jobs.
#pragma once

#include "DeviceThread.h"

#include <atomic>

class QTimer;

namespace kalvo::shell::ui {

class DeviceWorker : public QObject {
    Q_OBJECT
public:
    DeviceWorker(DeviceThread::TransportFactory factory, link::Prompter &prompter);
    ~DeviceWorker() override;

    // Everything below runs on the device thread.
    void Start();
    // Runs an operation; failures become signals, nothing is thrown across the event loop.
    void Run(const DeviceThread::Job &job);
    void Stop();
    // From the window's thread, when the program closes: a running wait gives up at once.
    void Abandon();

signals:
    void jobDone();
    void fatal(const QString &message);
    void failed(const QString &message);
    void displayBytes(const QByteArray &bytes);

private:
    void PollDisplay();

    DeviceThread::TransportFactory m_factory;
    link::Prompter &m_prompter;
    std::unique_ptr<link::Transport> m_transport;
    std::unique_ptr<link::Link> m_link;
    QTimer *m_poll = nullptr;
    std::atomic<link::Link *> m_linkForAbandon{nullptr}; // read from the window's thread
};

} // namespace kalvo::shell::ui
