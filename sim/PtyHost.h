// Serves the virtual tester on a pseudo-terminal, so that real serial-port code can talk to it.
#pragma once

#include "VirtualTester.h"
#include "link/Clock.h"
#include "platform/PseudoTerminal.h"

#include <QString>
#include <csignal>
#include <cstdio>
#include <optional>

namespace kalvo::sim {

class PtyHost {
public:
    enum class End { Stopped, Vanished, Failed };

    explicit PtyHost(VirtualTester &tester);
    ~PtyHost();
    PtyHost(const PtyHost &) = delete;
    PtyHost &operator=(const PtyHost &) = delete;

    // Opens the pseudo-terminal and makes its slave side raw; false with the reason in `error`.
    bool Open(QString *error);
    // The path a client opens, e.g. /dev/pts/7.
    const QString &slavePath() const { return m_slavePath; }
    // One line per received command line: milliseconds since start, TAB, the escaped bytes.
    bool OpenLog(const QString &path, QString *error);
    // While nothing else happens for this long, a display frame is pushed; zero: never.
    void setDisplayEvery(link::Duration every) { m_displayEvery = every; }

    // Serves until `stop` turns non-zero, the tester's line vanishes, or the terminal fails.
    End Run(const volatile std::sig_atomic_t &stop);
    // What went wrong when Run ended with Failed.
    const QString &failure() const { return m_failure; }

private:
    void ReadInput();
    void WriteOutput();
    void LogNewLines();
    int PollTimeoutMs() const;
    void CloseTerminal();

    VirtualTester &m_tester;
    link::Clock &m_clock;
    std::optional<platform::PseudoTerminal> m_terminal;
    QString m_slavePath;
    std::FILE *m_log = nullptr;
    qsizetype m_logged = 0;
    link::Duration m_start{};
    link::Duration m_displayEvery{};
    link::Duration m_lastActivity{};
    int m_frames = 0;
    QByteArray m_pending; // due bytes the terminal would not take yet
    QString m_failure;
};

} // namespace kalvo::sim
