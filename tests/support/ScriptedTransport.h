// A Transport for unit tests: plays a scripted conversation with the tester on a manual clock.
#pragma once

#include "link/Clock.h"
#include "link/Transport.h"

#include <QByteArray>
#include <QString>
#include <chrono>
#include <deque>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace kalvo::testing {

// Each step says which bytes the link must write next and what arrives after that write:
//
//     transport.Expect("dis?\r").Reply("dis? 01.Y\r\n\x11");
//
// Delays are measured from the write on the manual clock, so a 40-second time-out passes in no
// real time. A step without a reply is a silent tester. A write that differs from the script
// fails the running test and shows both sides escaped.
class ScriptedTransport final : public link::Transport {
public:
    class Step {
    public:
        // One burst of bytes, arriving `after` the write.
        Step &Reply(const QByteArray &bytes, link::Duration after = {});
        // One byte per burst, `spacing` apart (at 9600 baud a byte takes about 1 ms).
        Step &ReplyByteByByte(const QByteArray &bytes, link::Duration spacing = std::chrono::milliseconds(1),
                              link::Duration after = {});
        // `bytes` again and again, `times` bursts `every` apart: an answer that never ends.
        Step &Stream(const QByteArray &bytes, link::Duration every, int times, link::Duration after = {});
        // The device vanishes `after` the write: from then on every read throws PortError(Lost).
        Step &Vanish(link::Duration after = {});
        // The line stops taking bytes: this write never leaves, the drain waits out its limit.
        Step &Stall();

    private:
        friend class ScriptedTransport;
        struct Burst {
            QByteArray bytes;
            link::Duration after;
        };
        QByteArray m_expected;
        std::vector<Burst> m_bursts;
        std::optional<link::Duration> m_vanishAfter;
        bool m_stall = false;
    };

    struct Write {
        QByteArray bytes;
        link::Duration at; // clock time of the write
    };

    explicit ScriptedTransport(link::ManualClock &clock);

    // The next bytes the link must write (commands carry their own CR).
    Step &Expect(const QByteArray &bytes);
    // Bytes the tester sends of its own accord, arriving `after` now.
    void Arrive(const QByteArray &bytes, link::Duration after = {});

    // Success when every expected write has happened; otherwise names the first one missing.
    ::testing::AssertionResult allExpectationsMet() const;
    const std::vector<Write> &writes() const { return m_writes; }
    int discards() const { return m_discards; }
    const QString &portName() const { return m_portName; }

    void open(const QString &name) override;
    void close() override;
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &bytes) override;
    bool drain(std::chrono::milliseconds limit) override;
    QByteArray read(std::chrono::milliseconds wait) override;
    void discardInput() override;

private:
    struct Arrival {
        link::Duration at;
        QByteArray bytes;
    };
    void Schedule(link::Duration at, const QByteArray &bytes);
    QByteArray TakeDue();
    bool LostNow() const;

    link::ManualClock &m_clock;
    std::deque<Step> m_steps;
    std::deque<Arrival> m_arrivals; // ordered by time
    std::optional<link::Duration> m_lostAt;
    std::vector<Write> m_writes;
    int m_discards = 0;
    bool m_stalled = false;
    bool m_open = true;
    QString m_portName = QStringLiteral("COM 1");
};

} // namespace kalvo::testing
