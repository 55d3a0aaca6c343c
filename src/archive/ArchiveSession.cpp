// The archive on a thread of its own: jobs run there in order, results come back to who asked.
#include "ArchiveSession.h"

#include "Archive.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <exception>

namespace kalvo::archive {

namespace {

// How long closing a window waits for the job that runs before leaving it to finish alone.
constexpr unsigned long kStopWaitMs = 500;

} // namespace

// What lives on the session's thread: the open archive, or why it could not be opened.
struct ArchiveSession::Worker {
    std::unique_ptr<Archive> archive;
    QString openError = QStringLiteral("Das Archiv ist nicht geöffnet.");
};

ArchiveSession::ArchiveSession(QObject *parent)
    : QObject(parent), m_thread(new QThread), m_worker(std::make_shared<Worker>()), m_context(new QObject)
{
    m_thread->setObjectName(QStringLiteral("archive"));
    m_context->moveToThread(m_thread);
    // The thread and its context go when the thread has ended, whoever ended it.
    connect(m_thread, &QThread::finished, m_context, &QObject::deleteLater);
    connect(m_thread, &QThread::finished, m_thread, &QObject::deleteLater);
    m_thread->start();
}

ArchiveSession::~ArchiveSession()
{
    // The connection closes on the thread that opened it, after every job before it.
    QMetaObject::invokeMethod(
        m_context, [worker = m_worker] { worker->archive.reset(); }, Qt::QueuedConnection);
    m_thread->quit();
    if (m_thread->wait(kStopWaitMs))
        delete m_thread; // finished already: its deleteLater would find no event loop to run in
    // Otherwise the thread deletes itself and its context when the job that holds it returns.
}

void ArchiveSession::Open(const ArchiveTarget &target)
{
    QMetaObject::invokeMethod(
        m_context,
        [worker = m_worker, target] {
            worker->archive.reset();
            try {
                worker->archive = std::make_unique<Archive>(target);
            } catch (const link::KalvoError &e) {
                worker->openError = e.message();
            }
        },
        Qt::QueuedConnection);
}

void ArchiveSession::Post(QObject *receiver, Work work, Failed failed, bool needsArchive)
{
    if (m_pending++ == 0)
        emit busyChanged(true);
    // Answers go by way of the application object, which outlives both the session and the
    // receiver, and look at those two only on the main thread, where they are deleted.
    QMetaObject::invokeMethod(
        m_context,
        [worker = m_worker, receiver = QPointer<QObject>(receiver), session = QPointer<ArchiveSession>(this),
         work = std::move(work), failed = std::move(failed), needsArchive] {
            std::function<void()> answer;
            const auto fail = [&failed](const QString &message) {
                return [failed, message] { failed(message); };
            };
            if (needsArchive && !worker->archive) {
                answer = fail(worker->openError);
            } else {
                try {
                    answer = work(worker->archive.get());
                } catch (const link::KalvoError &e) {
                    answer = fail(e.message());
                } catch (const std::exception &e) {
                    answer = fail(QString::fromLocal8Bit(e.what()));
                }
            }
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [receiver, session, answer = std::move(answer)] {
                    if (receiver)
                        answer();
                    if (session)
                        session->Answered();
                },
                Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
}

void ArchiveSession::Answered()
{
    if (--m_pending == 0)
        emit busyChanged(false);
}

} // namespace kalvo::archive
