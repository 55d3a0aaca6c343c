// The device thread: owns the link, runs one operation at a time, reads the remote display when idle.
#pragma once

#include "link/Link.h"
#include "link/Transport.h"

#include <QObject>
#include <QThread>
#include <functional>
#include <memory>

namespace kalvo::shell::ui {

class DeviceWorker;

class DeviceThread : public QObject {
    Q_OBJECT
public:
    using Job = std::function<void(link::Link &)>;
    // Called once on the device thread: the transport must be born where it is used.
    using TransportFactory = std::function<std::unique_ptr<link::Transport>()>;

    // `prompter` is called from the device thread; it must cross to the window itself.
    DeviceThread(TransportFactory factory, link::Prompter &prompter, QObject *parent = nullptr);
    ~DeviceThread() override;

    // Queues an operation; operations run one after the other, in order, and count as busy.
    void Post(Job job);
    // Queues a change of the link's settings (texts, time-out, trace); not an operation.
    void Configure(Job job);
    // Runs `job` on the device thread and waits for it (tests and shut-down).
    void RunAndWait(const Job &job);
    bool busy() const { return m_pending > 0; }

signals:
    void busyChanged(bool busy);
    // The tester did not answer: the window tells the user and ends the program.
    void fatal(const QString &message);
    // An operation ended with an error the user must see; the program goes on.
    void failed(const QString &message);
    // Unprompted bytes from the tester (its remote display).
    void displayBytes(const QByteArray &bytes);

private:
    void Finished();

    QThread m_thread;
    DeviceWorker *m_worker; // lives on m_thread
    int m_pending = 0;
};

} // namespace kalvo::shell::ui
