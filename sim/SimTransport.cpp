// The virtual tester as a Transport, in-process: what `--simulate` and the operation tests talk to.
#include "SimTransport.h"

#include "link/Errors.h"

#include <algorithm>

namespace kalvo::sim {

using link::PortError;

SimTransport::SimTransport(VirtualTester &tester, link::Clock &clock) : m_tester(tester), m_clock(clock)
{}

void SimTransport::ThrowIfVanished() const
{
    if (m_tester.vanished())
        throw PortError(PortError::Kind::Lost,
                        QStringLiteral("Verbindung zum simulierten Kalvomer unterbrochen"));
}

void SimTransport::open(const QString &name)
{
    if (m_tester.vanished())
        throw PortError(PortError::Kind::CannotOpen,
                        QStringLiteral("%1: der simulierte Kalvomer ist nicht mehr erreichbar").arg(name));
    m_open = true;
}

void SimTransport::write(const QByteArray &bytes)
{
    if (!m_open)
        return;
    ThrowIfVanished();
    m_tester.feed(bytes);
}

bool SimTransport::drain(std::chrono::milliseconds limit)
{
    if (!m_open)
        return true;
    const link::Duration now = m_clock.now();
    link::Duration sent = std::max(m_tester.inputDoneAt(), now);
    if (m_adapterPoll > link::Duration::zero()) {
        const auto polls = (sent.count() + m_adapterPoll.count() - 1) / m_adapterPoll.count();
        sent = m_adapterPoll * polls;
    }
    if (sent - now > limit) {
        m_clock.sleepFor(limit);
        return false;
    }
    if (sent > now)
        m_clock.sleepFor(sent - now);
    return true;
}

QByteArray SimTransport::read(std::chrono::milliseconds wait)
{
    if (!m_open)
        return {};
    ThrowIfVanished();
    const link::Duration deadline = m_clock.now() + wait;
    for (;;) {
        const link::Duration now = m_clock.now();
        QByteArray bytes = m_tester.takeOutput(now);
        if (!bytes.isEmpty())
            return bytes;
        if (now >= deadline)
            return {};
        // Nothing but the tester puts bytes on this line, so sleeping to its next event is exact.
        const auto event = m_tester.nextEventAt();
        const link::Duration next = event ? std::clamp(*event, now, deadline) : deadline;
        m_clock.sleepFor(next - now);
    }
}

void SimTransport::discardInput()
{
    if (m_open)
        m_tester.dropOutput(m_clock.now());
}

} // namespace kalvo::sim
