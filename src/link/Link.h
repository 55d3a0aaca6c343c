// The only owner of the transport: one command out, one answer in, with the tester's time-out rules.
#pragma once

#include "Clock.h"
#include "Prompter.h"
#include "Transport.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <atomic>
#include <memory>

namespace kalvo::link {

constexpr char kCR = '\r';
constexpr char kDC1 = '\x11'; // answer terminator
constexpr char kEOT = '\x04';
constexpr char kBEL = '\x07';
constexpr char kENQ = '\x05'; // clears the remote display

class PortError;

class Link {
public:
    Link(Transport &transport, Prompter &prompter, Clock &clock = SteadyClock::instance());
    ~Link();
    Link(const Link &) = delete;
    Link &operator=(const Link &) = delete;

    // Closes the port if it is open, then opens it on `portName` (see SerialPortName).
    void OpenPort(const QString &portName);
    void ClosePort();
    bool IsOpen() const;

    // Writes `text` (which carries its own CR) and waits until it has left; silent when closed.
    void SendCommand(const QByteArray &text);
    // The next answer up to and including DC1. Throws Timeout; reports a refusal and returns it.
    QByteArray ReceiveAnswer();
    // SendCommand(command + CR), then ReceiveAnswer.
    QByteArray Exchange(const QByteArray &command);
    // True, after telling the user, when the port is not open.
    bool PortClosed();
    // Sleeps (never spins) for the given seconds.
    void Wait(double seconds);
    // CR CR, EOT CR, BEL CR 0.1 s apart until the tester shows its prompt or the time-out passes.
    void WakeUp();
    // Sends a file byte by byte and collects one answer; a file of 100 bytes or less counts as missing.
    // Returns the answer, or an empty array when nothing was sent.
    QByteArray SendFileRaw(const QString &path);
    // Bytes the tester sent of its own accord (the remote display), read while no exchange runs.
    QByteArray ReadUnprompted(std::chrono::milliseconds wait);

    Duration timeout() const { return m_timeout; }
    void setTimeout(Duration timeout) { m_timeout = timeout; }
    Clock &clock() { return m_clock; }
    Prompter &prompter() { return m_prompter; }

    // The number and text that a refusal ("Protokoll" with ".N") is reported with.
    void setProtocolError(int number, const QString &text);
    int protocolErrorNumber() const { return m_protocolNumber; }
    const QString &protocolErrorText() const { return m_protocolText; }
    // Language texts the link shows itself.
    void setPortNotOpenText(const QString &text) { m_portNotOpenText = text; }
    void setProtocolErrorText(const QString &text);
    // Show the busy pointer while waiting for answers.
    void setBusyCursor(bool on) { m_busyCursor = on; }

    // Makes a running or later wait give up at once (the program is being closed); safe to call
    // from another thread.
    void Abandon() { m_abandoned = true; }

    // Development trace: every received byte goes to `path` (replaced). Empty path stops it.
    void StartTrace(const QString &path);
    void StopTrace();
    bool tracing() const { return m_trace != nullptr; }
    // While set (the last typed command was "wer?"), the byte behind each "$" ends a trace line.
    void setTraceRecordEnds(bool on) { m_traceRecordEnds = on; }

private:
    void Trace(char byte);
    [[noreturn]] void Lost(const PortError &error);

    Transport &m_transport;
    Prompter &m_prompter;
    Clock &m_clock;
    Duration m_timeout;
    int m_protocolNumber;
    QString m_protocolText;
    QString m_portNotOpenText;
    bool m_busyCursor = false;
    std::unique_ptr<QFile> m_trace;
    bool m_traceRecordEnds = false;
    bool m_traceAfterDollar = false;
    std::atomic<bool> m_abandoned{false};
};

// Sets the protocol-error number and text for one operation and restores the old ones after it.
class ProtocolErrorScope {
public:
    ProtocolErrorScope(Link &link, int number, const QString &text);
    ~ProtocolErrorScope();
    ProtocolErrorScope(const ProtocolErrorScope &) = delete;
    ProtocolErrorScope &operator=(const ProtocolErrorScope &) = delete;

private:
    Link &m_link;
    int m_number;
    QString m_text;
};

constexpr Duration kAnswerTimeout = std::chrono::seconds(40);
constexpr double kWakePause = 0.1;

} // namespace kalvo::link
