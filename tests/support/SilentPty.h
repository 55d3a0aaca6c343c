// A pseudo-terminal that nobody answers on, and that can stop taking bytes altogether (Unix only).
#pragma once

#include "platform/PseudoTerminal.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::testing {

class SilentPty {
public:
    SilentPty();

    // The slave's path, to open as a serial port; empty when no terminal could be made.
    QString path() const { return m_terminal ? m_terminal->slavePath() : QString(); }
    // Everything written to the port so far.
    QByteArray Drain();

private:
    std::optional<platform::PseudoTerminal> m_terminal;
};

} // namespace kalvo::testing
