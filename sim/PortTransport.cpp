// A transport that opens the built-in virtual tester for the simulator's name and a serial port otherwise.
#include "PortTransport.h"

#include "link/PortNames.h"

namespace kalvo::sim {

PortTransport::PortTransport(link::Clock &clock)
    : m_clock(clock), m_tester(clock), m_simulator(m_tester, clock)
{}

PortTransport::~PortTransport()
{
    close();
}

void PortTransport::open(const QString &name)
{
    close();
    link::Transport &chosen = name.trimmed().compare(link::kSimulatorPortName, Qt::CaseInsensitive) == 0
                                  ? static_cast<link::Transport &>(m_simulator)
                                  : static_cast<link::Transport &>(m_serial);
    chosen.open(name);
    m_current = &chosen;
}

void PortTransport::close()
{
    if (m_current)
        m_current->close();
    m_current = nullptr;
}

bool PortTransport::isOpen() const
{
    return m_current && m_current->isOpen();
}

void PortTransport::write(const QByteArray &bytes)
{
    if (m_current)
        m_current->write(bytes);
}

bool PortTransport::drain(std::chrono::milliseconds limit)
{
    return m_current ? m_current->drain(limit) : true;
}

QByteArray PortTransport::read(std::chrono::milliseconds wait)
{
    return m_current ? m_current->read(wait) : QByteArray();
}

void PortTransport::discardInput()
{
    if (m_current)
        m_current->discardInput();
}

} // namespace kalvo::sim
