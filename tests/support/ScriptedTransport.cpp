// A Transport for unit tests: plays a scripted conversation with the tester on a manual clock.
#include "ScriptedTransport.h"

#include "link/Errors.h"
#include "link/TextRules.h"

namespace kalvo::testing {

using link::Duration;

ScriptedTransport::Step &ScriptedTransport::Step::Reply(const QByteArray &bytes, Duration after)
{
    m_bursts.push_back({bytes, after});
    return *this;
}

ScriptedTransport::Step &ScriptedTransport::Step::ReplyByteByByte(const QByteArray &bytes, Duration spacing,
                                                                  Duration after)
{
    for (qsizetype i = 0; i < bytes.size(); ++i)
        m_bursts.push_back({bytes.mid(i, 1), after + i * spacing});
    return *this;
}

ScriptedTransport::Step &ScriptedTransport::Step::Stream(const QByteArray &bytes, Duration every, int times,
                                                         Duration after)
{
    for (int i = 0; i < times; ++i)
        m_bursts.push_back({bytes, after + i * every});
    return *this;
}

ScriptedTransport::Step &ScriptedTransport::Step::Vanish(Duration after)
{
    m_vanishAfter = after;
    return *this;
}

ScriptedTransport::Step &ScriptedTransport::Step::Stall()
{
    m_stall = true;
    return *this;
}

ScriptedTransport::ScriptedTransport(link::ManualClock &clock) : m_clock(clock)
{}

ScriptedTransport::Step &ScriptedTransport::Expect(const QByteArray &bytes)
{
    m_steps.emplace_back();
    m_steps.back().m_expected = bytes;
    return m_steps.back();
}

void ScriptedTransport::Arrive(const QByteArray &bytes, Duration after)
{
    Schedule(m_clock.now() + after, bytes);
}

::testing::AssertionResult ScriptedTransport::allExpectationsMet() const
{
    if (m_steps.empty())
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << m_steps.size() << " expected write(s) never happened, the first: \""
           << link::EscapeBytes(m_steps.front().m_expected).toStdString() << '"';
}

void ScriptedTransport::open(const QString &name)
{
    m_open = true;
    m_portName = name;
    m_lostAt.reset();
}

void ScriptedTransport::close()
{
    // What was on its way is gone with the port.
    m_open = false;
    m_arrivals.clear();
}

void ScriptedTransport::write(const QByteArray &bytes)
{
    const Duration now = m_clock.now();
    m_writes.push_back({bytes, now});
    if (!m_open) {
        ADD_FAILURE() << "write \"" << link::EscapeBytes(bytes).toStdString() << "\" on a closed port";
        return;
    }
    if (LostNow())
        throw link::PortError(link::PortError::Kind::Lost, QStringLiteral("scripted device vanished"));
    if (m_steps.empty()) {
        ADD_FAILURE() << "unexpected write \"" << link::EscapeBytes(bytes).toStdString()
                      << "\" after the end of the script";
        return;
    }
    const Step step = m_steps.front();
    m_steps.pop_front();
    if (bytes != step.m_expected)
        ADD_FAILURE() << "unexpected write \"" << link::EscapeBytes(bytes).toStdString() << "\", expected \""
                      << link::EscapeBytes(step.m_expected).toStdString() << '"';
    // The step's answer is played even after a mismatch, so that one wrong command fails once
    // instead of cascading into time-outs.
    for (const auto &burst : step.m_bursts)
        Schedule(now + burst.after, burst.bytes);
    if (step.m_vanishAfter)
        m_lostAt = now + *step.m_vanishAfter;
    m_stalled = step.m_stall;
}

bool ScriptedTransport::drain(std::chrono::milliseconds limit)
{
    if (!m_stalled)
        return true;
    m_clock.advance(limit);
    return false;
}

QByteArray ScriptedTransport::read(std::chrono::milliseconds wait)
{
    if (!m_open)
        return {};
    const Duration limit = m_clock.now() + wait;
    for (;;) {
        if (LostNow())
            throw link::PortError(link::PortError::Kind::Lost, QStringLiteral("scripted device vanished"));
        const QByteArray due = TakeDue();
        if (!due.isEmpty())
            return due;
        // Nothing yet: move the clock to the next event, or to the end of the wait if that is sooner.
        std::optional<Duration> next;
        if (!m_arrivals.empty())
            next = m_arrivals.front().at;
        if (m_lostAt && (!next || *m_lostAt < *next))
            next = m_lostAt;
        if (!next || *next > limit) {
            m_clock.advance(limit - m_clock.now());
            return {};
        }
        m_clock.advance(*next - m_clock.now());
    }
}

void ScriptedTransport::discardInput()
{
    ++m_discards;
    TakeDue();
}

void ScriptedTransport::Schedule(Duration at, const QByteArray &bytes)
{
    auto it = m_arrivals.begin();
    while (it != m_arrivals.end() && it->at <= at)
        ++it;
    m_arrivals.insert(it, {at, bytes});
}

QByteArray ScriptedTransport::TakeDue()
{
    QByteArray due;
    while (!m_arrivals.empty() && m_arrivals.front().at <= m_clock.now()) {
        due += m_arrivals.front().bytes;
        m_arrivals.pop_front();
    }
    return due;
}

bool ScriptedTransport::LostNow() const
{
    return m_lostAt && *m_lostAt <= m_clock.now();
}

} // namespace kalvo::testing
