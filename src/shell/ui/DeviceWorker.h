// The object on the device thread that owns transport and link and runs the queued jobs.
#pragma once

#include "DeviceThread.h"

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
};

} // namespace kalvo::shell::ui
