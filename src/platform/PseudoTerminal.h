// A pseudo-terminal whose slave side is raw, as a serial port to a virtual tester (Unix only:
// Windows has no pseudo-terminals that a serial-port library opens).
#pragma once

#include <QString>
#include <optional>

namespace kalvo::platform {

class PseudoTerminal {
public:
    // Opens one; nullopt with the reason in `error` when that fails.
    static std::optional<PseudoTerminal> Open(QString *error);
    PseudoTerminal(PseudoTerminal &&other) noexcept;
    PseudoTerminal &operator=(PseudoTerminal &&other) noexcept;
    PseudoTerminal(const PseudoTerminal &) = delete;
    ~PseudoTerminal();

    int master() const { return m_master; }
    // The path a client opens, e.g. /dev/pts/7.
    const QString &slavePath() const { return m_slavePath; }

private:
    PseudoTerminal() = default;

    int m_master = -1;
    // Held open, so that a client's close does not hang up the line.
    int m_slave = -1;
    QString m_slavePath;
};

} // namespace kalvo::platform
