// Pseudo-terminals on Unix: posix_openpt, a raw slave side, a non-blocking master.
#include "PseudoTerminal.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace kalvo::platform {

namespace {

QString SystemError(const char *what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace

std::optional<PseudoTerminal> PseudoTerminal::Open(QString *error)
{
    PseudoTerminal pty;
    pty.m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (pty.m_master < 0) {
        *error = SystemError("posix_openpt");
        return std::nullopt;
    }
    if (::grantpt(pty.m_master) != 0 || ::unlockpt(pty.m_master) != 0) {
        *error = SystemError("grantpt/unlockpt");
        return std::nullopt;
    }
    char name[256];
    if (::ptsname_r(pty.m_master, name, sizeof name) != 0) {
        *error = SystemError("ptsname");
        return std::nullopt;
    }
    pty.m_slavePath = QString::fromLocal8Bit(name);
    pty.m_slave = ::open(name, O_RDWR | O_NOCTTY);
    if (pty.m_slave < 0) {
        *error = SystemError("open slave");
        return std::nullopt;
    }
    // Raw from what the kernel set up: a zeroed termios would leave undefined speeds and flags.
    termios raw{};
    if (::tcgetattr(pty.m_slave, &raw) != 0) {
        *error = SystemError("tcgetattr");
        return std::nullopt;
    }
    ::cfmakeraw(&raw);
    if (::tcsetattr(pty.m_slave, TCSANOW, &raw) != 0) {
        *error = SystemError("tcsetattr");
        return std::nullopt;
    }
    if (::fcntl(pty.m_master, F_SETFL, ::fcntl(pty.m_master, F_GETFL) | O_NONBLOCK) != 0) {
        *error = SystemError("fcntl");
        return std::nullopt;
    }
    return pty;
}

PseudoTerminal::PseudoTerminal(PseudoTerminal &&other) noexcept
    : m_master(std::exchange(other.m_master, -1)), m_slave(std::exchange(other.m_slave, -1)),
      m_slavePath(std::move(other.m_slavePath))
{}

PseudoTerminal &PseudoTerminal::operator=(PseudoTerminal &&other) noexcept
{
    std::swap(m_master, other.m_master);
    std::swap(m_slave, other.m_slave);
    std::swap(m_slavePath, other.m_slavePath);
    return *this;
}

PseudoTerminal::~PseudoTerminal()
{
    if (m_master >= 0)
        ::close(m_master);
    if (m_slave >= 0)
        ::close(m_slave);
}

} // namespace kalvo::platform
