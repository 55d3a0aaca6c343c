// The virtual tester as a Transport, in-process: what `--simulate` and the operation tests talk to.
#pragma once

#include "VirtualTester.h"
#include "link/Clock.h"
#include "link/Transport.h"

namespace kalvo::sim {

class SimTransport final : public link::Transport {
public:
    // `clock` should be the tester's own; tests pass a ManualClock so that nothing really sleeps.
    explicit SimTransport(VirtualTester &tester, link::Clock &clock = link::SteadyClock::instance());

    // Any name opens the line to the tester; a vanished tester cannot be opened again.
    void open(const QString &name) override;
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &bytes) override;
    // With pacing on, waits until the written bytes have reached the tester; with an adapter poll,
    // until the adapter's next poll after that.
    bool drain(std::chrono::milliseconds limit) override;
    // Bytes whose time has come; otherwise sleeps until the next one arrives or `wait` runs out.
    QByteArray read(std::chrono::milliseconds wait) override;
    // Drops what has arrived; bytes still on the wire keep coming, as on a real line.
    void discardInput() override;

    // A USB serial adapter between the PC and the line: it reports that its bytes have left only
    // when the host polls it, every `interval` of the clock (polls at 0, interval, 2 interval ...),
    // so a drain returns at the first poll at or after the last byte has left. Zero (the
    // default): a drain returns as soon as the bytes have left, as on a built-in port.
    void setAdapterPoll(link::Duration interval) { m_adapterPoll = interval; }
    link::Duration adapterPoll() const { return m_adapterPoll; }

private:
    void ThrowIfVanished() const;

    VirtualTester &m_tester;
    link::Clock &m_clock;
    bool m_open = false;
    link::Duration m_adapterPoll{};
};

} // namespace kalvo::sim
