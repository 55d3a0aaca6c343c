// Serves the virtual tester on a pseudo-terminal, so that real serial-port code can talk to it.
#include "PtyHost.h"

#include "DisplayFrame.h"
#include "link/TextRules.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace kalvo::sim {

namespace {
// Upper bound of one poll, so that a signal that slips in just before poll() is seen soon.
constexpr int kLongestPollMs = 250;

QString SystemError(const char *what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

int CeilMs(link::Duration d)
{
    if (d <= link::Duration::zero())
        return 0;
    return static_cast<int>(
        std::min<long long>(std::chrono::ceil<std::chrono::milliseconds>(d).count(), kLongestPollMs));
}
} // namespace

PtyHost::PtyHost(VirtualTester &tester) : m_tester(tester), m_clock(tester.clock())
{}

PtyHost::~PtyHost()
{
    CloseTerminal();
    if (m_log)
        std::fclose(m_log);
}

bool PtyHost::Open(QString *error)
{
    m_terminal = platform::PseudoTerminal::Open(error);
    if (!m_terminal)
        return false;
    m_slavePath = m_terminal->slavePath();
    m_start = m_clock.now();
    m_lastActivity = m_start;
    return true;
}

bool PtyHost::OpenLog(const QString &path, QString *error)
{
    m_log = std::fopen(path.toLocal8Bit().constData(), "w");
    if (!m_log) {
        *error = SystemError(path.toLocal8Bit().constData());
        return false;
    }
    return true;
}

PtyHost::End PtyHost::Run(const volatile std::sig_atomic_t &stop)
{
    while (!stop) {
        WriteOutput();
        if (m_tester.vanished()) {
            // Closing the master is what a pulled cable looks like to the client: reads fail.
            CloseTerminal();
            return End::Vanished;
        }
        if (!m_failure.isEmpty()) {
            CloseTerminal();
            return End::Failed;
        }
        const link::Duration now = m_clock.now();
        // The display stays quiet while a loader takes an update: its reports are all the PC reads.
        if (m_displayEvery > link::Duration::zero() && !m_tester.hasOutput() && m_pending.isEmpty() &&
            !m_tester.loader() && now - m_lastActivity >= m_displayEvery) {
            m_tester.pushDisplay(DisplayFrame(m_frames++));
            m_lastActivity = now;
            continue;
        }
        pollfd fd{m_terminal->master(), static_cast<short>(POLLIN | (m_pending.isEmpty() ? 0 : POLLOUT)), 0};
        if (poll(&fd, 1, PollTimeoutMs()) < 0) {
            if (errno == EINTR)
                continue;
            m_failure = SystemError("poll");
            continue;
        }
        if (fd.revents & (POLLERR | POLLNVAL))
            m_failure = QStringLiteral("the pseudo-terminal failed");
        else if (fd.revents & POLLIN)
            ReadInput();
    }
    // What reached the terminal before the stop is still taken and logged: the last bytes of a
    // client that has just ended may not have been read yet.
    ReadInput();
    CloseTerminal();
    return End::Stopped;
}

int PtyHost::PollTimeoutMs() const
{
    const link::Duration now = m_clock.now();
    int timeout = kLongestPollMs;
    if (const auto event = m_tester.nextEventAt())
        timeout = std::min(timeout, CeilMs(*event - now));
    if (m_displayEvery > link::Duration::zero())
        timeout = std::min(timeout, CeilMs(m_lastActivity + m_displayEvery - now));
    return timeout;
}

void PtyHost::ReadInput()
{
    QByteArray bytes;
    char buffer[512];
    for (;;) {
        const ssize_t n = ::read(m_terminal->master(), buffer, sizeof buffer);
        if (n > 0) {
            bytes.append(buffer, n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK)
            m_failure = SystemError("read");
        break;
    }
    if (bytes.isEmpty())
        return;
    m_tester.feed(bytes);
    m_lastActivity = m_clock.now();
    LogNewLines();
}

void PtyHost::WriteOutput()
{
    m_pending += m_tester.takeOutput(m_clock.now());
    // A package stream is recorded when it ends, which the line's falling idle decides.
    LogNewLines();
    while (!m_pending.isEmpty()) {
        const ssize_t n =
            ::write(m_terminal->master(), m_pending.constData(), static_cast<size_t>(m_pending.size()));
        if (n > 0) {
            m_pending.remove(0, n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        // A full terminal (nobody reading) keeps the rest for later; nothing new is queued meanwhile.
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK)
            m_pending.clear();
        break;
    }
}

void PtyHost::LogNewLines()
{
    const auto &lines = m_tester.receivedLines();
    for (; m_logged < lines.size(); ++m_logged) {
        if (!m_log)
            continue;
        const auto &line = lines[m_logged];
        const double ms = link::ToSeconds(line.at - m_start) * 1000.0;
        std::fprintf(m_log, "%.1f\t%s%s\n", ms, link::EscapeBytes(line.bytes).toLatin1().constData(),
                     line.exchange ? "" : "\t-");
        std::fflush(m_log);
    }
}

void PtyHost::CloseTerminal()
{
    m_terminal.reset();
}

} // namespace kalvo::sim
