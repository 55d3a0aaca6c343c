// A pseudo-terminal that nobody answers on, and that can stop taking bytes altogether (Unix only).
#include "SilentPty.h"

#include <unistd.h>

namespace kalvo::testing {

SilentPty::SilentPty()
{
    QString error;
    m_terminal = platform::PseudoTerminal::Open(&error);
}

QByteArray SilentPty::Drain()
{
    QByteArray all;
    if (!m_terminal)
        return all;
    char buffer[4096];
    for (ssize_t n; (n = ::read(m_terminal->master(), buffer, sizeof buffer)) > 0;)
        all.append(buffer, n);
    return all;
}

} // namespace kalvo::testing
