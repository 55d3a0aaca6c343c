// A transport that opens the built-in virtual tester for the simulator's name and a serial port otherwise.
#pragma once

#include "SimTransport.h"
#include "VirtualTester.h"
#include "link/SerialTransport.h"

#include <memory>

namespace kalvo::sim {

class PortTransport final : public link::Transport {
public:
    explicit PortTransport(link::Clock &clock = link::SteadyClock::instance());
    ~PortTransport() override;

    void open(const QString &name) override;
    void close() override;
    bool isOpen() const override;
    void write(const QByteArray &bytes) override;
    bool drain(std::chrono::milliseconds limit) override;
    QByteArray read(std::chrono::milliseconds wait) override;
    void discardInput() override;

    // The virtual tester behind the simulator's name (one for the life of the transport, so that
    // what was stored in it survives a reconnect).
    VirtualTester &tester() { return m_tester; }
    // The transport to it, for its pacing (setAdapterPoll).
    SimTransport &simulator() { return m_simulator; }

private:
    link::Clock &m_clock;
    VirtualTester m_tester;
    SimTransport m_simulator;
    link::SerialTransport m_serial;
    link::Transport *m_current = nullptr;
};

} // namespace kalvo::sim
