// A deadline for every wait on a database server: a server that stops answering in the middle of an
// exchange must not keep the program waiting for good.
#pragma once

#include <QtGlobal>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

class QSqlDatabase;

namespace kalvo::archive {

// The driver blocks in the socket with no time-out of its own, and the server's time-outs only hold
// while the server still runs; TCP keep-alives are answered by the server's machine even when the
// server itself hangs. So a thread of our own keeps the time of each wait and, when one passes its
// limit, cuts the connection's socket: the blocked call then returns with an error.
class ServerWatch {
public:
    // Watches the connection of `db`. Where its socket cannot be had (another driver, a build without
    // the client library) it does nothing, and the server's and TCP's own time-outs are all there is.
    ServerWatch(const QSqlDatabase &db, std::chrono::milliseconds limit);
    ~ServerWatch();
    ServerWatch(const ServerWatch &) = delete;
    ServerWatch &operator=(const ServerWatch &) = delete;

    // Whether the watch can cut this connection.
    bool active() const { return m_socket >= 0; }
    // True once a wait passed its limit and the connection was cut; the connection is useless then.
    bool cut() const { return m_cut.load(); }
    std::chrono::milliseconds limit() const { return m_limit; }

    // One wait on the server, timed while the object lives; waits inside it count as part of it.
    class Wait {
    public:
        explicit Wait(ServerWatch *watch);
        ~Wait();
        Wait(const Wait &) = delete;
        Wait &operator=(const Wait &) = delete;

    private:
        ServerWatch *m_watch;
    };

private:
    void Arm();
    void Disarm();
    void Run();

    qintptr m_socket = -1;
    std::chrono::milliseconds m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<std::chrono::steady_clock::time_point> m_deadline;
    int m_depth = 0;
    bool m_stopping = false;
    std::atomic<bool> m_cut{false};
    std::thread m_thread;
};

} // namespace kalvo::archive
