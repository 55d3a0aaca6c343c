// One command out, one answer in: framing, time-outs, refusals and the development trace.
#include "Link.h"

#include "Errors.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <QStringList>
#include <utility>

namespace kalvo::link {

namespace {
const QString kDefaultPortNotOpen = QStringLiteral("Die Schnittstelle ist nicht geöffnet.");
const QString kDefaultProtocolText = QStringLiteral("Protokollfehler");
constexpr qint64 kShortestSendableFile = 101;
constexpr std::chrono::milliseconds kWaitSlice(200);
const QString kAbandonedText = QStringLiteral("Abgebrochen: das Programm wird beendet");
// A refusal is the echo of a command and " Protokoll .N": far shorter than this.
constexpr qsizetype kLongestRefusal = 80;

// The busy pointer while the link waits for the tester, when the program asked for it.
class BusyWhileWaiting {
public:
    BusyWhileWaiting(Prompter &prompter, bool on) : m_prompter(prompter), m_on(on)
    {
        if (m_on)
            m_prompter.busy(true);
    }
    ~BusyWhileWaiting()
    {
        if (m_on)
            m_prompter.busy(false);
    }
    BusyWhileWaiting(const BusyWhileWaiting &) = delete;
    BusyWhileWaiting &operator=(const BusyWhileWaiting &) = delete;

private:
    Prompter &m_prompter;
    bool m_on;
};

// Tells the observer about one wait, once it has lasted a slice, and that it ended.
class WaitNotice {
public:
    explicit WaitNotice(WaitObserver *observer) : m_observer(observer) {}
    ~WaitNotice()
    {
        if (m_told)
            m_observer->WaitEnded();
    }
    WaitNotice(const WaitNotice &) = delete;
    WaitNotice &operator=(const WaitNotice &) = delete;
    void Tell(Duration left, bool cancellable)
    {
        if (m_observer && !std::exchange(m_told, true))
            m_observer->WaitStarted(left, cancellable);
    }

private:
    WaitObserver *m_observer;
    bool m_told = false;
};
} // namespace

Link::Link(Transport &transport, Prompter &prompter, Clock &clock)
    : m_transport(transport), m_prompter(prompter), m_clock(clock), m_timeout(kAnswerTimeout),
      m_protocolNumber(kProtocolErrorNumber), m_protocolText(kDefaultProtocolText),
      m_portNotOpenText(kDefaultPortNotOpen)
{}

Link::~Link() = default;

void Link::OpenPort(const QString &portName)
{
    if (m_transport.isOpen())
        m_transport.close();
    m_transport.open(portName);
}

void Link::ClosePort()
{
    if (m_transport.isOpen())
        m_transport.close();
}

bool Link::IsOpen() const
{
    return m_transport.isOpen();
}

void Link::Lost(const PortError &error)
{
    m_transport.close();
    throw error;
}

void Link::SendCommand(const QByteArray &text)
{
    if (!m_transport.isOpen())
        return;
    m_lastCommand = text.endsWith(kCR) ? text.chopped(1) : text;
    WriteAndDrain(text, true);
}

void Link::WriteAndDrain(const QByteArray &bytes, bool discardFirst)
{
    // A program being closed stops a stream between its blocks.
    if (m_abandoned)
        Lost(PortError(PortError::Kind::Lost, kAbandonedText));
    bool sent = false;
    try {
        if (discardFirst)
            m_transport.discardInput();
        m_transport.write(bytes);
        sent = m_transport.drain(std::chrono::ceil<std::chrono::milliseconds>(m_timeout));
    } catch (const PortError &e) {
        Lost(e);
    }
    if (!sent) {
        // The line stopped taking bytes: as good as a tester that does not answer.
        m_transport.close();
        throw Timeout();
    }
}

void Link::WriteRaw(const QByteArray &bytes)
{
    if (m_transport.isOpen())
        WriteAndDrain(bytes, false);
}

void Link::QueueRaw(const QByteArray &bytes)
{
    if (!m_transport.isOpen())
        return;
    if (m_abandoned)
        Lost(PortError(PortError::Kind::Lost, kAbandonedText));
    try {
        m_transport.write(bytes);
    } catch (const PortError &e) {
        Lost(e);
    }
}

QByteArray Link::ReadRaw(std::chrono::milliseconds wait)
{
    if (!m_transport.isOpen())
        return {};
    if (m_abandoned)
        Lost(PortError(PortError::Kind::Lost, kAbandonedText));
    QByteArray chunk;
    try {
        chunk = m_transport.read(std::min(wait, kWaitSlice));
    } catch (const PortError &e) {
        Lost(e);
    }
    for (char byte : chunk)
        Trace(byte);
    if (m_trace && !chunk.isEmpty())
        m_trace->flush();
    return chunk;
}

void Link::DiscardInput()
{
    if (!m_transport.isOpen())
        return;
    try {
        m_transport.discardInput();
    } catch (const PortError &e) {
        Lost(e);
    }
}

bool Link::CancelTaken()
{
    return m_transfers == 0 && m_cancelRequested.exchange(false);
}

QByteArray Link::ReadBefore(Duration deadline)
{
    WaitNotice notice(m_observer);
    for (bool first = true;; first = false) {
        const Duration remaining = deadline - m_clock.now();
        // Given up by the user: the same end as a tester that stays silent.
        if (remaining <= Duration::zero() || CancelTaken()) {
            m_transport.close();
            throw Timeout();
        }
        if (m_abandoned)
            Lost(PortError(PortError::Kind::Lost, kAbandonedText));
        if (!first)
            notice.Tell(remaining, !transferring());
        QByteArray chunk;
        try {
            // Waiting in slices lets a program that is being closed stop waiting.
            const auto wait = std::min(std::chrono::ceil<std::chrono::milliseconds>(remaining), kWaitSlice);
            chunk = m_transport.read(wait);
        } catch (const PortError &e) {
            Lost(e);
        }
        if (!chunk.isEmpty())
            return chunk;
    }
}

bool Link::Collect(QByteArray &answer, const QByteArray &chunk, qsizetype cap, const QString &basis)
{
    qsizetype end = chunk.indexOf(kDC1);
    const bool complete = end >= 0;
    const qsizetype take = complete ? end + 1 : chunk.size();
    if (answer.size() + take > cap) {
        // Nothing that long is a real answer; the rest of it is not waited for.
        m_transport.discardInput();
        QString expected = QStringLiteral("höchstens %1 Bytes bis zum Endzeichen").arg(cap);
        if (!basis.isEmpty())
            expected += QStringLiteral(" (%1)").arg(basis);
        throw FormatError(QStringLiteral("Antwort auf %1").arg(QString::fromLatin1(m_lastCommand)), 0,
                          expected);
    }
    for (qsizetype i = 0; i < take; ++i)
        Trace(chunk[i]);
    answer.append(chunk.constData(), take);
    return complete;
}

void Link::Finish(const QByteArray &answer, bool stream)
{
    // Whatever followed the terminator is not kept for the next command.
    try {
        m_transport.discardInput();
    } catch (const PortError &e) {
        Lost(e);
    }
    if (m_trace)
        m_trace->flush();

    const qsizetype data = m_dataMark.isEmpty() ? -1 : answer.indexOf(m_dataMark);
    const QByteArray words = data < 0 ? answer : answer.left(data);
    if (!words.contains("Protokoll")) {
        // The tester echoes a configuration store; give it time to finish before the next command.
        if (answer.contains("cfg!pgm"))
            Wait(kWakePause);
    } else if (words.contains(".N") && (!stream || answer.size() <= kLongestRefusal)) {
        NoteRefusal(m_lastCommand);
        m_prompter.message(QStringLiteral("%1:  %2").arg(m_protocolNumber).arg(m_protocolText),
                           Prompter::Icon::Critical);
    }
}

QByteArray Link::ReceiveAnswer()
{
    if (!m_transport.isOpen())
        return {};
    const BusyWhileWaiting busy(m_prompter, m_busyCursor);
    QByteArray answer;
    // From the first waiting character on, the whole answer has one time-out to arrive in.
    QByteArray chunk = ReadBefore(m_clock.now() + m_timeout);
    const Duration deadline = m_clock.now() + m_timeout;
    while (!Collect(answer, chunk, kMaxAnswerBytes))
        chunk = ReadBefore(deadline);
    Finish(answer);
    return answer;
}

QByteArray Link::ReceiveStream(const ChunkSink &onChunk, const StreamLimit &limit)
{
    if (!m_transport.isOpen())
        return {};
    const BusyWhileWaiting busy(m_prompter, m_busyCursor);
    QByteArray stream;
    for (bool complete = false; !complete;) {
        const qsizetype before = stream.size();
        complete = Collect(stream, ReadBefore(m_clock.now() + m_timeout),
                           std::min(limit.bytes, kMaxStreamBytes), limit.basis);
        if (onChunk)
            onChunk(stream.mid(before));
    }
    Finish(stream, true);
    return stream;
}

QByteArray Link::Exchange(const QByteArray &command)
{
    SendCommand(command + kCR);
    return ReceiveAnswer();
}

QByteArray Link::ExchangeData(const QByteArray &command, const QByteArray &dataMark)
{
    m_dataMark = dataMark;
    const auto forget = qScopeGuard([this] { m_dataMark.clear(); });
    return Exchange(command);
}

QByteArray Link::ExchangeStream(const QByteArray &command, const ChunkSink &onChunk, const StreamLimit &limit)
{
    SendCommand(command + kCR);
    return ReceiveStream(onChunk, limit);
}

void Link::NoteRefusal(const QByteArray &command)
{
    m_refused.append(command);
    if (m_refused.size() > kKeptRefusals) {
        m_refused.removeFirst();
        ++m_refusalsForgotten;
    }
}

QList<QByteArray> Link::refusedCommands(int since) const
{
    const int skip = std::max(0, since - m_refusalsForgotten);
    return m_refused.mid(std::min<qsizetype>(skip, m_refused.size()));
}

QString QuotedCommands(const QList<QByteArray> &commands)
{
    QStringList names;
    for (const QByteArray &command : commands)
        names << QStringLiteral("\"%1\"").arg(QString::fromLatin1(command));
    return names.join(QStringLiteral(", "));
}

bool Link::PortClosed()
{
    if (m_transport.isOpen())
        return false;
    m_prompter.message(m_portNotOpenText, Prompter::Icon::Warning);
    return true;
}

void Link::Wait(double seconds)
{
    m_clock.sleepFor(FromSeconds(seconds));
}

void Link::WakeUp()
{
    const Duration start = m_clock.now();
    for (;;) {
        SendCommand(QByteArray{} + kCR + kCR);
        Wait(kWakePause);
        SendCommand(QByteArray{} + kEOT + kCR);
        Wait(kWakePause);
        SendCommand(QByteArray{} + kBEL + kCR);
        Wait(kWakePause);
        const QByteArray answer = ReceiveAnswer();
        // The prompt test: a ">" near the start, or none at all, means the tester is listening.
        const qsizetype promptPosition = answer.indexOf('>') + 1;
        if (promptPosition < 10 || m_clock.now() - start > m_timeout)
            return;
    }
}

QByteArray Link::SendFileRaw(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < kShortestSendableFile) {
        m_prompter.message(QDir::toNativeSeparators(path) + QStringLiteral(" nicht gefunden"),
                           Prompter::Icon::Warning);
        return {};
    }
    const QByteArray bytes = file.readAll();
    file.close();
    const BusyWhileWaiting busy(m_prompter, true);
    for (char byte : bytes)
        SendCommand(QByteArray(1, byte));
    return ReceiveAnswer();
}

QByteArray Link::ReadUnprompted(std::chrono::milliseconds wait)
{
    if (!m_transport.isOpen())
        return {};
    try {
        QByteArray all = m_transport.read(wait);
        // Drain whatever else is already waiting.
        for (QByteArray more; !(more = m_transport.read(std::chrono::milliseconds(0))).isEmpty();)
            all += more;
        return all;
    } catch (const PortError &e) {
        Lost(e);
    }
    return {};
}

void Link::setProtocolError(int number, const QString &text)
{
    m_protocolNumber = number;
    m_protocolText = text;
}

void Link::setProtocolErrorText(const QString &text)
{
    m_protocolText = text;
}

void Link::StartTrace(const QString &path)
{
    StopTrace();
    if (path.isEmpty())
        return;
    auto file = std::make_unique<QFile>(path);
    if (file->open(QIODevice::WriteOnly | QIODevice::Truncate))
        m_trace = std::move(file);
}

void Link::StopTrace()
{
    if (m_trace)
        m_trace->close();
    m_trace.reset();
}

void Link::Trace(char byte)
{
    // The bytes as they came, nothing added: a line end in the trace is one the tester sent.
    if (m_trace)
        m_trace->putChar(byte);
}

ProtocolErrorScope::ProtocolErrorScope(Link &link, int number, const QString &text)
    : m_link(link), m_number(link.protocolErrorNumber()), m_text(link.protocolErrorText())
{
    link.setProtocolError(number, text);
}

ProtocolErrorScope::~ProtocolErrorScope()
{
    m_link.setProtocolError(m_number, m_text);
}

} // namespace kalvo::link
