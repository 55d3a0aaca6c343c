// A serial line whose received bytes, their chunking and their silences come from a fuzzer input.
#include "FuzzTransport.h"

#include "FuzzFiles.h"

#include "link/Errors.h"

namespace kalvo::fuzz {

namespace {

constexpr unsigned char kSilence = 0;
constexpr unsigned char kVanish = 255;

// 10 bits a byte at 9600 baud.
link::Duration LineTime(qsizetype bytes)
{
    return std::chrono::microseconds(bytes * 10'000'000 / 9600);
}

} // namespace

FuzzTransport::FuzzTransport(const QByteArray &script, link::ManualClock &clock)
    : m_script(script), m_clock(clock)
{}

void FuzzTransport::open(const QString &)
{
    m_open = true;
}

void FuzzTransport::write(const QByteArray &bytes)
{
    Expect(m_open, "a write only while the port is open");
    m_unsent += bytes.size();
    m_written += bytes.size();
}

bool FuzzTransport::drain(std::chrono::milliseconds limit)
{
    Expect(m_open, "a drain only while the port is open");
    const link::Duration needed = LineTime(m_unsent);
    m_unsent = 0;
    if (needed > limit) {
        m_clock.advance(limit);
        return false;
    }
    m_clock.advance(needed);
    return true;
}

QByteArray FuzzTransport::read(std::chrono::milliseconds wait)
{
    Expect(m_open, "a read only while the port is open");
    if (exhausted()) {
        m_clock.advance(wait);
        return {};
    }
    const auto step = static_cast<unsigned char>(m_script[m_next++]);
    if (step == kVanish)
        throw link::PortError(link::PortError::Kind::Lost, QStringLiteral("fuzz: device gone"));
    if (step == kSilence) {
        m_clock.advance(wait);
        return {};
    }
    const QByteArray chunk = m_script.mid(m_next, step);
    m_next += chunk.size();
    m_clock.advance(LineTime(chunk.size()));
    return chunk;
}

} // namespace kalvo::fuzz
