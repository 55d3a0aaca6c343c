// One command out, one answer in: framing, time-outs, refusals and the development trace.
#include "Link.h"

#include "Errors.h"

#include <QDir>
#include <QFileInfo>

namespace kalvo::link {

namespace {
const QString kDefaultPortNotOpen = QStringLiteral("Die Schnittstelle ist nicht geöffnet.");
const QString kDefaultProtocolText = QStringLiteral("Protokollfehler");
constexpr qint64 kShortestSendableFile = 101;
constexpr std::chrono::milliseconds kWaitSlice(200);
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
    try {
        m_transport.discardInput();
        m_transport.write(text);
        m_transport.drain();
    } catch (const PortError &e) {
        Lost(e);
    }
}

QByteArray Link::ReceiveAnswer()
{
    if (!m_transport.isOpen())
        return {};
    if (m_busyCursor)
        m_prompter.busy(true);
    struct BusyOff {
        Link &link;
        ~BusyOff()
        {
            if (link.m_busyCursor)
                link.m_prompter.busy(false);
        }
    } busyOff{*this};

    QByteArray answer;
    Duration deadline = m_clock.now() + m_timeout;
    bool started = false;
    bool complete = false;
    while (!complete) {
        const Duration remaining = deadline - m_clock.now();
        if (remaining <= Duration::zero()) {
            m_transport.close();
            throw Timeout();
        }
        if (m_abandoned)
            Lost(PortError(PortError::Kind::Lost, QStringLiteral("Abgebrochen: das Programm wird beendet")));
        QByteArray chunk;
        try {
            // Waiting in slices lets a program that is being closed stop waiting.
            const auto wait = std::min(std::chrono::ceil<std::chrono::milliseconds>(remaining), kWaitSlice);
            chunk = m_transport.read(wait);
        } catch (const PortError &e) {
            Lost(e);
        }
        if (chunk.isEmpty())
            continue;
        if (!started) {
            // From the first waiting character on, the whole answer has one time-out to arrive in.
            started = true;
            deadline = m_clock.now() + m_timeout;
        }
        for (char byte : std::as_const(chunk)) {
            Trace(byte);
            answer.append(byte);
            if (byte == kDC1) {
                complete = true;
                break;
            }
        }
    }
    // Whatever followed the terminator is not kept for the next command.
    m_transport.discardInput();
    if (m_trace)
        m_trace->flush();

    if (!answer.contains("Protokoll")) {
        // The tester echoes a configuration store; give it time to finish before the next command.
        if (answer.contains("cfg!pgm"))
            Wait(kWakePause);
    } else if (answer.contains(".N")) {
        m_prompter.message(QStringLiteral("%1:  %2").arg(m_protocolNumber).arg(m_protocolText),
                           Prompter::Icon::Critical);
    }
    return answer;
}

QByteArray Link::Exchange(const QByteArray &command)
{
    SendCommand(command + kCR);
    return ReceiveAnswer();
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
    m_prompter.busy(true);
    struct BusyOff {
        Prompter &p;
        ~BusyOff() { p.busy(false); }
    } busyOff{m_prompter};
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
    m_traceAfterDollar = false;
}

void Link::Trace(char byte)
{
    if (!m_trace)
        return;
    m_trace->putChar(byte);
    if (m_traceAfterDollar) {
        // The character behind "$" closes a record of a "wer?" stream: one record per trace line.
        m_trace->write("\r\n");
        m_traceAfterDollar = false;
    } else if (m_traceRecordEnds && byte == '$') {
        m_traceAfterDollar = true;
    }
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
