// A pseudo-terminal that nobody answers on, and that can stop taking bytes altogether.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::testing {

class SilentPty {
public:
    SilentPty();
    ~SilentPty();
    SilentPty(const SilentPty &) = delete;
    SilentPty &operator=(const SilentPty &) = delete;

    // The slave's path, to open as a serial port; empty when no terminal could be made.
    const QString &path() const { return m_path; }
    // Everything written to the port so far.
    QByteArray Drain();

private:
    int m_master = -1;
    int m_slave = -1; // held open so that a client's close does not hang up the line
    QString m_path;
};

} // namespace kalvo::testing
