// The device thread: owns the link, runs one operation at a time, reads the remote display when idle.
#include "DeviceThread.h"

#include "DeviceWorker.h"

#include <QCoreApplication>
#include <QSemaphore>

namespace kalvo::gui {

namespace {

constexpr int kServeMs = 10; // how often a stopping window looks for a call from the worker

} // namespace

DeviceThread::DeviceThread(TransportFactory factory, QWidget *fallbackOwner)
    : QObject(nullptr), m_worker(new DeviceWorker(std::move(factory), fallbackOwner))
{
    m_thread.setObjectName(QStringLiteral("device"));
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(m_worker, &DeviceWorker::jobStarted, this, &DeviceThread::Started);
    connect(m_worker, &DeviceWorker::jobDone, this, &DeviceThread::Finished);
    connect(m_worker, &DeviceWorker::progressed, this, &DeviceThread::progressed);
    connect(m_worker, &DeviceWorker::noAnswer, this, &DeviceThread::noAnswer);
    connect(m_worker, &DeviceWorker::waiting, this, &DeviceThread::waiting);
    connect(m_worker, &DeviceWorker::waitOver, this, &DeviceThread::waitOver);
    connect(m_worker, &DeviceWorker::failed, this, &DeviceThread::failed);
    connect(m_worker, &DeviceWorker::portOpenChanged, this, [this](bool open) {
        m_portOpen = open;
        emit portOpenChanged(open);
    });
    connect(m_worker, &DeviceWorker::displayBytes, this, &DeviceThread::displayBytes);
    m_thread.start();
    QMetaObject::invokeMethod(m_worker, [w = m_worker] { w->Start(); });
}

DeviceThread::~DeviceThread()
{
    Stop();
    m_thread.quit();
    m_thread.wait();
}

void DeviceThread::Stop()
{
    if (std::exchange(m_stopped, true))
        return;
    // Closing the program ends at once, even while an operation waits for the tester.
    m_worker->Abandon();
    // The worker may itself be waiting for this thread, for a message it shows: while it stops,
    // calls it makes to the window's thread are served, or neither could go on.
    QSemaphore stopped;
    QMetaObject::invokeMethod(m_worker, [w = m_worker, &stopped] {
        w->Stop();
        stopped.release();
    });
    while (!stopped.tryAcquire(1, kServeMs))
        QCoreApplication::sendPostedEvents(QCoreApplication::instance(), QEvent::MetaCall);
    m_portOpen = false; // the worker's word on it is still on its way
}

void DeviceThread::CancelWait()
{
    m_worker->CancelWait();
}

bool DeviceThread::transferring() const
{
    return !m_stopped && m_worker->Transferring();
}

void DeviceThread::Post(QWidget *owner, const QString &title, Job job)
{
    if (++m_pending == 1)
        emit busyChanged(true);
    QMetaObject::invokeMethod(m_worker, [w = m_worker, owner = QPointer<QWidget>(owner), title,
                                         job = std::move(job)] { w->RunTask(owner, title, job); });
}

void DeviceThread::Configure(LinkJob job)
{
    QMetaObject::invokeMethod(m_worker, [w = m_worker, job = std::move(job)] { w->RunQuietly(job); });
}

void DeviceThread::RunAndWait(const LinkJob &job)
{
    QMetaObject::invokeMethod(
        m_worker, [w = m_worker, &job] { w->RunQuietly(job); }, Qt::BlockingQueuedConnection);
}

void DeviceThread::Started(const QString &title)
{
    m_running = title;
    emit started(title);
}

void DeviceThread::Finished(const QString &title)
{
    m_running.clear();
    emit finished(title);
    if (--m_pending == 0)
        emit busyChanged(false);
}

} // namespace kalvo::gui
