// The device thread: owns the link, runs one operation at a time, reads the remote display when idle.
#pragma once

#include "link/Link.h"
#include "link/Transport.h"

#include <QObject>
#include <QPointer>
#include <QThread>
#include <QWidget>
#include <functional>
#include <memory>

namespace kalvo::gui {

class DeviceWorker;

class DeviceThread : public QObject {
    Q_OBJECT
public:
    // An operation gets the link and the prompter of the window that started it.
    using Job = std::function<void(link::Link &, link::Prompter &)>;
    using LinkJob = std::function<void(link::Link &)>;
    // Called once on the device thread: the transport must be born where it is used.
    using TransportFactory = std::function<std::unique_ptr<link::Transport>()>;

    // What the link says between operations (the remote display) is shown over `fallbackOwner`.
    explicit DeviceThread(TransportFactory factory, QWidget *fallbackOwner = nullptr);
    ~DeviceThread() override;

    // Queues an operation; operations run one after the other, in order, and count as busy. Its
    // dialogs, and the message of a failure, belong to `owner` and carry `title`: what it does.
    void Post(QWidget *owner, const QString &title, Job job);
    // Queues a change of the link's settings (texts, time-out, trace); not an operation.
    void Configure(LinkJob job);
    // Runs `job` on the device thread and waits for it (tests and shut-down).
    void RunAndWait(const LinkJob &job);
    bool busy() const { return m_pending > 0; }
    // Whether the port was open when the device thread last looked.
    bool portOpen() const { return m_portOpen; }
    // Ends the work for good: a running wait gives up, the port closes, later operations do
    // nothing. The program calls it when its main window closes.
    void Stop();
    // What an operation achieved ("Grenzwert gespeichert"), for the status bar; any thread.
    void Tell(const QString &text) { emit told(text); }
    // The title of the operation that runs, empty when none does.
    const QString &running() const { return m_running; }
    // The user gives up waiting for the tester: the wait ends at once as a time-out would. Not
    // taken up during a transfer.
    void CancelWait();
    // Whether an update transfer runs now (the tester's contents are being rewritten).
    bool transferring() const;

signals:
    void busyChanged(bool busy);
    // An operation starts or ends (the status bar shows it).
    void started(const QString &title);
    void finished(const QString &title);
    // Progress of the running operation, 0..100.
    void progressed(int percent);
    void told(const QString &text);
    // The tester did not answer, or the user gave up waiting: the message has been shown to the
    // window that asked, and the port is closed.
    void noAnswer(const QString &message);
    // The link waits for an answer, at most `msLeft` more; `cancellable`: CancelWait ends it.
    void waiting(qint64 msLeft, bool cancellable);
    // That wait is over.
    void waitOver();
    // An operation ended with an error; the message has been shown to its window.
    void failed(const QString &title, const QString &message);
    // The port opened or closed (closing on its own means the line was lost).
    void portOpenChanged(bool open);
    // Unprompted bytes from the tester (its remote display).
    void displayBytes(const QByteArray &bytes);

private:
    void Started(const QString &title);
    void Finished(const QString &title);

    QThread m_thread;
    DeviceWorker *m_worker; // lives on m_thread
    int m_pending = 0;
    QString m_running;
    bool m_portOpen = false;
    bool m_stopped = false;
};

} // namespace kalvo::gui
