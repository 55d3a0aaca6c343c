// The device thread: owns the link, runs one operation at a time, reads the remote display when idle.
#include "DeviceThread.h"

#include "DeviceWorker.h"

namespace kalvo::shell::ui {

DeviceThread::DeviceThread(TransportFactory factory, link::Prompter &prompter, QObject *parent)
    : QObject(parent), m_worker(new DeviceWorker(std::move(factory), prompter))
{
    m_thread.setObjectName(QStringLiteral("device"));
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(m_worker, &DeviceWorker::jobDone, this, &DeviceThread::Finished);
    connect(m_worker, &DeviceWorker::fatal, this, &DeviceThread::fatal);
    connect(m_worker, &DeviceWorker::failed, this, &DeviceThread::failed);
    connect(m_worker, &DeviceWorker::displayBytes, this, &DeviceThread::displayBytes);
    m_thread.start();
    QMetaObject::invokeMethod(m_worker, [w = m_worker] { w->Start(); });
}

DeviceThread::~DeviceThread()
{
    // Closing the program ends at once, even while an operation waits for the tester.
    m_worker->Abandon();
    QMetaObject::invokeMethod(
        m_worker, [w = m_worker] { w->Stop(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void DeviceThread::Post(Job job)
{
    if (++m_pending == 1)
        emit busyChanged(true);
    QMetaObject::invokeMethod(m_worker, [w = m_worker, job = std::move(job)] {
        w->Run(job);
        emit w->jobDone();
    });
}

void DeviceThread::Configure(Job job)
{
    QMetaObject::invokeMethod(m_worker, [w = m_worker, job = std::move(job)] { w->Run(job); });
}

void DeviceThread::RunAndWait(const Job &job)
{
    QMetaObject::invokeMethod(
        m_worker, [w = m_worker, &job] { w->Run(job); }, Qt::BlockingQueuedConnection);
}

void DeviceThread::Finished()
{
    if (--m_pending == 0)
        emit busyChanged(false);
}

} // namespace kalvo::shell::ui
