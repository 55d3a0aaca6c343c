// Runs kalvo-sim on a pseudo-terminal for a test and reads back what reached the tester.
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace kalvo::testing {

struct ReceivedLine {
    double ms;
    QString bytes;        // escaped as kalvo-sim logs them, e.g. "dis?\r"
    bool exchange = true; // a command line that was answered, not bytes a loader or a restart took
};

class SimProcess {
public:
    explicit SimProcess(const QStringList &arguments = {});
    ~SimProcess();

    // kalvo-sim serves a pseudo-terminal, so it is built on Unix only.
    static bool Available();
    bool started() const { return !m_pty.isEmpty(); }
    const QString &pty() const { return m_pty; }
    // Stops the virtual tester. It takes what is still in its terminal first, so that the lines it
    // received are then all that the client sent.
    void Stop();
    // The command lines the virtual tester received, in order.
    QList<ReceivedLine> ReceivedLines() const;
    QProcess &process() { return m_process; }
    // The received lines' bytes only, escaped ("dis?\\r").
    QStringList ReceivedBytes() const;

private:
    QTemporaryDir m_dir;
    QProcess m_process;
    QString m_pty;
};

// Path of a program built next to the tests (KALVO_BIN_DIR).
QString BuiltProgram(const QString &name);

struct RunResult {
    int exitCode = -1;
    QString out;
    QString err;
    bool hung = false;    // killed after its time was up
    bool crashed = false; // ended by a signal
};

// Runs a built program to its end (at most `seconds`). With `stderrFile` (a terminal, for
// instance) its stderr goes there instead of into RunResult::err.
RunResult RunProgram(const QString &name, const QStringList &arguments, int seconds = 60,
                     const QString &workingDir = QString(), const QString &stderrFile = QString());
// Runs kalvo-cli against the simulator's terminal ("--port" and its path go first), at most `seconds`.
RunResult RunCli(const SimProcess &sim, const QStringList &arguments, const QString &workingDir = QString(),
                 int seconds = 60);

} // namespace kalvo::testing
