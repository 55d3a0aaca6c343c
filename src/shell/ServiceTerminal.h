// The service terminal's operations: single commands, command scripts, help-text stepping,
// direct printing and the views of the development trace.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace kalvo::link {
class Link;
}

namespace kalvo::shell {

inline const QString kScriptFileName = QStringLiteral("beispiel.abl");
inline const QString kScriptResultFileName = QStringLiteral("beispiel.txt");
inline const QString kTraceFileName = QStringLiteral("test.log");

// Sends a typed command in the tester's character set ("ü" as its byte 129) and returns the
// answer as received; text of several lines (CR, LF or CR LF) is sent a line at a time, each after
// the answer to the one before, and the answers are returned one after the other.
QByteArray SendTerminalCommand(link::Link &link, const QString &command);

// The largest command script taken: a real one is a few hundred lines, and each line is one
// exchange of its own.
constexpr qint64 kMaxScriptBytes = 1024 * 1024;

// Runs a command script: every line (ended by CR, LF or CR LF; UTF-8 or Windows text) is sent as
// it stands, a comment behind ";" included, in the tester's character set as a typed command is,
// and its answer awaited before the next goes out;
// comments and answers holding "Wertx=" go to `resultPath`, which is replaced only when the
// whole run succeeds. `showLine` gets each script line as it is sent. Returns the lines run.
int RunCommandScript(link::Link &link, const QString &scriptPath, const QString &resultPath,
                     const std::function<void(const QString &)> &showLine = {});
// The result file, each line followed by CR LF, for the terminal panel.
QString ReadScriptResult(const QString &resultPath);

// Steps the tester's built-in help texts on its display by remote keys.
class HelpStepper {
public:
    void Begin() { m_next = 1; }
    // Closes the text shown before (not before the first), shows text `next()`, counts on.
    void Next(link::Link &link);
    void Stop(link::Link &link);
    int next() const { return m_next; }

private:
    int m_next = 1;
};

// The tester's configuration bit 4: its direct printing.
void SetDirectPrinting(link::Link &link, bool on);

// The trace as text, and as decimal character codes (" 65" for "A"; CR gives " 13 10" and a
// line break, LF nothing).
QString TraceAsText(const QByteArray &trace);
QString TraceAsCodes(const QByteArray &trace);
// Closes the trace, reads it and starts it afresh: what was read is only in the returned bytes.
QByteArray TakeTrace(link::Link &link, const QString &tracePath);

} // namespace kalvo::shell
