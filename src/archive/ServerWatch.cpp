// A deadline for every wait on a database server: a server that stops answering in the middle of an
// exchange must not keep the program waiting for good.
#include "ServerWatch.h"

#include "platform/Sockets.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>

#ifdef KALVO_HAVE_LIBPQ
#include <libpq-fe.h>
#endif

namespace kalvo::archive {

namespace {

// The socket of a PostgreSQL connection, or -1.
qintptr ConnectionSocket(const QSqlDatabase &db)
{
#ifdef KALVO_HAVE_LIBPQ
    if (!db.driver())
        return -1;
    const QVariant handle = db.driver()->handle();
    // Qt names the type by the structure behind libpq's typedef.
    if (!handle.isValid() ||
        (qstrcmp(handle.typeName(), "pg_conn*") != 0 && qstrcmp(handle.typeName(), "PGconn*") != 0))
        return -1;
    PGconn *connection = *static_cast<PGconn *const *>(handle.constData());
    return connection ? PQsocket(connection) : -1;
#else
    Q_UNUSED(db);
    return -1;
#endif
}

} // namespace

ServerWatch::ServerWatch(const QSqlDatabase &db, std::chrono::milliseconds limit)
    : m_socket(ConnectionSocket(db)), m_limit(limit)
{
    if (active())
        m_thread = std::thread([this] { Run(); });
}

ServerWatch::~ServerWatch()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void ServerWatch::Arm()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_depth++ > 0)
            return;
        m_deadline = std::chrono::steady_clock::now() + m_limit;
    }
    m_changed.notify_all();
}

void ServerWatch::Disarm()
{
    {
        const std::lock_guard lock(m_mutex);
        if (--m_depth > 0)
            return;
        m_deadline.reset();
    }
    m_changed.notify_all();
}

void ServerWatch::Run()
{
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        if (!m_deadline) {
            m_changed.wait(lock);
            continue;
        }
        const auto deadline = *m_deadline;
        if (m_changed.wait_until(lock, deadline) == std::cv_status::timeout && m_deadline == deadline) {
            m_cut = true;
            m_deadline.reset();
            platform::CutSocket(m_socket);
        }
    }
}

ServerWatch::Wait::Wait(ServerWatch *watch) : m_watch(watch && watch->active() ? watch : nullptr)
{
    if (m_watch)
        m_watch->Arm();
}

ServerWatch::Wait::~Wait()
{
    if (m_watch)
        m_watch->Disarm();
}

} // namespace kalvo::archive
