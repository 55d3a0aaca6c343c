// A pseudo-terminal that nobody answers on, and that can stop taking bytes altogether.
#include "SilentPty.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace kalvo::testing {

SilentPty::SilentPty()
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        return;
    m_path = QString::fromLocal8Bit(ptsname(m_master));
    m_slave = open(ptsname(m_master), O_RDWR | O_NOCTTY);
    termios raw{};
    tcgetattr(m_slave, &raw);
    cfmakeraw(&raw);
    tcsetattr(m_slave, TCSANOW, &raw);
}

SilentPty::~SilentPty()
{
    if (m_slave >= 0)
        close(m_slave);
    if (m_master >= 0)
        close(m_master);
}

QByteArray SilentPty::Drain()
{
    QByteArray all;
    char buffer[4096];
    fcntl(m_master, F_SETFL, O_NONBLOCK);
    for (ssize_t n; (n = read(m_master, buffer, sizeof buffer)) > 0;)
        all.append(buffer, n);
    return all;
}

} // namespace kalvo::testing
