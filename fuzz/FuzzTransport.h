// A serial line whose received bytes, their chunking and their silences come from a fuzzer input.
#pragma once

#include "link/Clock.h"
#include "link/Transport.h"

#include <QByteArray>

namespace kalvo::fuzz {

// The script is a sequence of steps, each a length byte followed by that many bytes:
//   0         a read that waits its whole wait and gets nothing;
//   1..254    a read that gets the next that many bytes (fewer where the script ends);
//   255       the device vanishes: the read throws PortError(Lost).
// Past the script's end every read waits and gets nothing, so each wait of the link runs into its
// time-out. Time passes only on the manual clock: a read or a drain takes the line time of its
// bytes at 9600 baud, a read that gets nothing takes its whole wait. Reading or writing a closed
// port is a finding: the link must never do it.
class FuzzTransport final : public link::Transport {
public:
    FuzzTransport(const QByteArray &script, link::ManualClock &clock);

    void open(const QString &name) override;
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &bytes) override;
    bool drain(std::chrono::milliseconds limit) override;
    QByteArray read(std::chrono::milliseconds wait) override;
    // Bytes not yet read are still to come on the wire: nothing has arrived to be forgotten.
    void discardInput() override {}

    bool exhausted() const { return m_next >= m_script.size(); }
    qsizetype bytesWritten() const { return m_written; }

private:
    QByteArray m_script;
    qsizetype m_next = 0;
    link::ManualClock &m_clock;
    bool m_open = false;
    qsizetype m_unsent = 0;
    qsizetype m_written = 0;
};

} // namespace kalvo::fuzz
