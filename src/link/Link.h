// The only owner of the transport: one command out, one answer in, with the tester's time-out rules.
#pragma once

#include "Clock.h"
#include "Prompter.h"
#include "Transport.h"
#include "WaitObserver.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>

namespace kalvo::link {

constexpr char kCR = '\r';
constexpr char kDC1 = '\x11'; // answer terminator
constexpr char kEOT = '\x04';
constexpr char kBEL = '\x07';
constexpr char kENQ = '\x05'; // clears the remote display

class PortError;

// The longest stream taken when a reader knows no better bound: far beyond a full store listing or
// accessory.
constexpr qsizetype kMaxStreamBytes = 64 * 1024 * 1024;

// What a streamed answer may hold at most, with what that rests on for the message (the records a
// store can hold, the records a count announced). A line that sends junk without an end is cut off
// there, so readers bound it by what the tester can really send rather than by memory.
struct StreamLimit {
    qsizetype bytes = kMaxStreamBytes;
    QString basis;
};

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
    // A line that does not take the bytes within the time-out ends in Timeout.
    void SendCommand(const QByteArray &text);
    // The next answer up to and including DC1: the whole answer must arrive within one time-out
    // of its first byte. Throws Timeout; a refusal is reported, counted and returned; an answer
    // longer than kMaxAnswerBytes is a FormatError.
    QByteArray ReceiveAnswer();
    // SendCommand(command + CR), then ReceiveAnswer.
    QByteArray Exchange(const QByteArray &command);
    // Exchange for an answer that carries record data behind `dataMark` (a record part behind ":"):
    // only the tester's own words in front of the mark can be a refusal, so that a record whose
    // text holds "Protokoll" and ".N" (a device "Protokoll 3.Nachpruefung") is no refusal.
    QByteArray ExchangeData(const QByteArray &command, const QByteArray &dataMark);
    // A streamed answer (the store listing, the accessory's records): chunks up to and including
    // the one with DC1. The time-out bounds each wait for more, not the whole stream; `onChunk`
    // sees every chunk as it arrives. Longer than `limit` is a FormatError.
    using ChunkSink = std::function<void(const QByteArray &chunk)>;
    QByteArray ReceiveStream(const ChunkSink &onChunk = {}, const StreamLimit &limit = {});
    QByteArray ExchangeStream(const QByteArray &command, const ChunkSink &onChunk = {},
                              const StreamLimit &limit = {});
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
    // For the update loaders, which answer in reports of their own rather than one answer per
    // command. WriteRaw writes the bytes as they stand (nothing added, nothing discarded) and
    // waits until they have left, the time-out being the deadline as for SendCommand.
    void WriteRaw(const QByteArray &bytes);
    // Writes the bytes as they stand without waiting until they have left: for a line the tester
    // acknowledges, whose acknowledgement (awaited with a deadline) shows that it arrived. A drain
    // per line would cost a USB adapter a poll interval each time.
    void QueueRaw(const QByteArray &bytes);
    // What has arrived, waiting at most `wait` for the first byte (empty when nothing came): one
    // read of the transport, so bounded by what the line brings in that time. A wait is cut into
    // short slices, so that a program being closed stops waiting: callers loop to their deadline.
    QByteArray ReadRaw(std::chrono::milliseconds wait);
    // Forgets what has arrived and not been read.
    void DiscardInput();

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

    // Refusals met so far: answers with "Protokoll" and ".N" (counted by ReceiveAnswer) and those
    // that an operation judged itself (NoteRefusal), e.g. ".Nx" to a store command.
    int refusals() const { return m_refusalsForgotten + static_cast<int>(m_refused.size()); }
    // The commands that were refused, oldest first (only the last kKeptRefusals are kept).
    QList<QByteArray> refusedCommands(int since = 0) const;
    void NoteRefusal(const QByteArray &command);
    // The last command sent, without its CR: names an answer in messages.
    const QByteArray &lastCommand() const { return m_lastCommand; }

    // Makes a running or later wait give up at once (the program is being closed); safe to call
    // from another thread.
    void Abandon() { m_abandoned = true; }
    // The user gives up waiting: the wait for an answer that runs now, or the next one, ends as a
    // time-out would (port closed, Timeout). Safe to call from another thread. Inside a transfer
    // it is not taken up: a half-sent package leaves the tester without complete contents.
    void CancelWait() { m_cancelRequested = true; }
    // Forgets a cancel that no wait took up, so that it cannot end the next operation.
    void ForgetCancel() { m_cancelRequested = false; }
    // Hears the waits for an answer that take longer than a moment; none: nobody is told.
    void setWaitObserver(WaitObserver *observer) { m_observer = observer; }
    // Whether a TransferScope is open; safe to read from another thread.
    bool transferring() const { return m_transfers > 0; }

    // Development trace: every received byte goes to `path` (replaced). Empty path stops it.
    void StartTrace(const QString &path);
    void StopTrace();
    bool tracing() const { return m_trace != nullptr; }

private:
    friend class TransferScope;
    void Trace(char byte);
    // True once when the user gave up waiting and no transfer runs.
    bool CancelTaken();
    [[noreturn]] void Lost(const PortError &error);
    // Writes and waits until sent; a stalled line closes the port and throws Timeout.
    void WriteAndDrain(const QByteArray &bytes, bool discardFirst);
    // Waits for the next bytes until `deadline`; throws Timeout (closing the port) after it.
    QByteArray ReadBefore(Duration deadline);
    // Appends `chunk` up to and including DC1 to `answer`; true when DC1 was in it.
    bool Collect(QByteArray &answer, const QByteArray &chunk, qsizetype cap, const QString &basis = {});
    // What follows a complete answer: input discarded, the refusal rule, the "cfg!pgm" pause. A
    // stream is a refusal only when it is as short as one: records may well hold both words.
    void Finish(const QByteArray &answer, bool stream = false);
    // Where the record data of the answer being received begins; empty: the whole answer is words.
    QByteArray m_dataMark;

    Transport &m_transport;
    Prompter &m_prompter;
    Clock &m_clock;
    Duration m_timeout;
    int m_protocolNumber;
    QString m_protocolText;
    QString m_portNotOpenText;
    bool m_busyCursor = false;
    std::unique_ptr<QFile> m_trace;
    std::atomic<bool> m_abandoned{false};
    std::atomic<bool> m_cancelRequested{false};
    std::atomic<int> m_transfers{0};
    WaitObserver *m_observer = nullptr;
    QByteArray m_lastCommand;
    QList<QByteArray> m_refused;
    int m_refusalsForgotten = 0;
};

// Commands for a message: "wer! 5,1.0", "kal!pgm".
QString QuotedCommands(const QList<QByteArray> &commands);

// Counts the refusals from its construction on: an operation asks it whether anything it sent
// was refused before it writes a file or stores anything.
class RefusalWatch {
public:
    explicit RefusalWatch(const Link &link) : m_link(link), m_start(link.refusals()) {}
    // Counting from the `start`-th refusal on (0: all of them).
    RefusalWatch(const Link &link, int start) : m_link(link), m_start(start) {}
    bool refused() const { return m_link.refusals() > m_start; }
    QList<QByteArray> commands() const { return m_link.refusedCommands(m_start); }
    // The refused commands for a message.
    QString Describe() const { return QuotedCommands(commands()); }

private:
    const Link &m_link;
    int m_start;
};

// An update transfer runs while it lives: the tester's memory is being rewritten, so the user's
// "give up waiting" is not taken up, and a program being closed asks first.
class TransferScope {
public:
    explicit TransferScope(Link &link) : m_link(link) { ++m_link.m_transfers; }
    ~TransferScope() { --m_link.m_transfers; }
    TransferScope(const TransferScope &) = delete;
    TransferScope &operator=(const TransferScope &) = delete;

private:
    Link &m_link;
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
// The longest answer taken: far beyond any real one (a print text is a few KB), so that a line
// that streams without end cannot fill the memory.
constexpr qsizetype kMaxAnswerBytes = 4 * 1024 * 1024;
constexpr int kKeptRefusals = 64;
constexpr double kWakePause = 0.1;

} // namespace kalvo::link
