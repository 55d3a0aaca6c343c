// A tester on the far end of a serial line: takes bytes, answers lines, paced and with faults on demand.
#include "VirtualTester.h"

#include <algorithm>

namespace kalvo::sim {

namespace {
// The display follows an answer a moment later, as the tester redraws it.
constexpr link::Duration kDisplayDelay = std::chrono::milliseconds(80);
constexpr char kCR = '\r';
constexpr char kLF = '\n';
constexpr char kEOT = '\x04';
constexpr char kDC1 = '\x11';
constexpr int kBitsPerByte = 10; // start bit, eight data bits, stop bit
// Between the bursts of an odd answer: long enough for each to reach the reader on its own.
constexpr link::Duration kBurstGap = std::chrono::milliseconds(20);
// Looks like the start of another answer, so that junk which leaks into the next one shows.
const QByteArray kJunk = "var?FF 5A.Y\r\n\x11\r\n>";
} // namespace

VirtualTester::VirtualTester(link::Clock &clock) : m_clock(clock), m_model(clock)
{}

link::Duration VirtualTester::byteTime() const
{
    if (m_baud <= 0)
        return link::Duration::zero();
    return std::chrono::duration_cast<link::Duration>(std::chrono::seconds(kBitsPerByte)) / m_baud;
}

void VirtualTester::feed(const QByteArray &bytes)
{
    link::Duration at = std::max(m_clock.now(), m_inputFree);
    for (char byte : bytes) {
        if (m_vanished)
            return;
        at += byteTime();
        Receive(byte, at);
    }
    m_inputFree = at;
}

void VirtualTester::Receive(char byte, link::Duration at)
{
    EndIdlePackage(at);
    if (m_loader) {
        m_loaderByteAt = at;
        const UpdateLoader::Step step = m_loader->Take(byte);
        Apply(step, at);
        if (!step.notMine)
            return;
    }
    if (m_restartArmed) {
        m_restartArmed = false;
        // Only the lone EOT right behind "rst!0" restarts the tester.
        if (byte == kEOT && m_line.isEmpty()) {
            m_received.append({QByteArray(1, kEOT), at, false});
            Restart(at);
            return;
        }
    }
    // A terminal program's CR LF ends a line just like CR alone.
    if (byte == kLF && m_line.isEmpty())
        return;
    if (byte != kCR) {
        m_line.append(byte);
        return;
    }
    const QByteArray line = m_line;
    m_line.clear();
    m_received.append({line + kCR, at});
    HandleLine(line, at);
}

void VirtualTester::HandleLine(const QByteArray &line, link::Duration at)
{
    ++m_exchanges;
    const link::Duration earliest = std::max(at, m_busyUntil);
    const auto fault = m_faults.Take(line, m_exchanges);
    if (fault == FaultKind::Vanish) {
        m_vanished = true;
        m_output.clear();
        return;
    }
    // A refused line is not carried out.
    if (fault == FaultKind::Refuse) {
        SendAnswer(TesterModel::Refusal(line), earliest);
        return;
    }
    if (fault == FaultKind::RefuseStore) {
        SendAnswer(TesterModel::StoreRefusal(line), earliest);
        return;
    }
    // Every other fault spoils only the answer: the tester has done what the line asked.
    const TesterModel::Reply reply = m_model.Answer(line);
    m_restartArmed = reply.restartArmed;
    if (reply.loader) {
        // What follows the announce line is the loader's: raw bytes, no command lines.
        m_loader.emplace(static_cast<UpdateLoader::Kind>(*reply.loader),
                         m_faults.TakeLoader(line, m_exchanges), m_model, m_style);
        m_loaderByteAt = at;
    }
    QByteArray answer = m_style == AnswerStyle::Odd ? OddAnswer(line, reply.answer) : reply.answer;
    if (fault) {
        switch (*fault) {
        case FaultKind::Silence: return;
        case FaultKind::NoTerminator: answer.chop(1); break;
        case FaultKind::CutOff: answer.truncate(answer.size() / 2); break;
        case FaultKind::Garbage: answer = Garbage() + kDC1; break;
        case FaultKind::TrailingJunk: {
            // Junk in the same burst as the DC1: it is there as soon as the answer is.
            const link::Duration end = SendAnswer(answer, earliest);
            for (char byte : kJunk)
                m_output.push_back({byte, end});
            return;
        }
        default: break;
        }
    }
    const link::Duration end = SendAnswer(answer, earliest);
    if (!reply.display.isEmpty())
        Send(reply.display, end + kDisplayDelay);
}

void VirtualTester::EndIdlePackage(link::Duration until)
{
    if (!m_loader || !m_loader->EndsWhenIdle())
        return;
    const link::Duration end = m_loaderByteAt + UpdateLoader::kIdleEnd;
    if (until >= end)
        Apply(m_loader->End(), end);
}

void VirtualTester::Apply(const UpdateLoader::Step &step, link::Duration at)
{
    if (!step.received.isEmpty())
        m_received.append({step.received, m_loaderByteAt, false});
    link::Duration end = std::max(at, m_busyUntil);
    for (const UpdateLoader::Piece &piece : step.send)
        end = Send(piece.bytes, std::max(at, m_busyUntil) + piece.after);
    if (step.ended)
        m_loader.reset();
    if (step.restart)
        Restart(end);
}

void VirtualTester::Restart(link::Duration at)
{
    m_model.Restart();
    ++m_restarts;
    m_busyUntil = at + m_restartDelay;
}

std::optional<UpdateLoader::Kind> VirtualTester::loader() const
{
    if (!m_loader)
        return std::nullopt;
    return m_loader->kind();
}

std::optional<link::Duration> VirtualTester::nextEventAt() const
{
    std::optional<link::Duration> next;
    if (!m_output.empty())
        next = m_output.front().at;
    if (m_loader && m_loader->EndsWhenIdle()) {
        const link::Duration end = m_loaderByteAt + UpdateLoader::kIdleEnd;
        next = next ? std::min(*next, end) : end;
    }
    return next;
}

link::Duration VirtualTester::Send(const QByteArray &bytes, link::Duration earliest)
{
    link::Duration at = std::max(earliest, m_outputFree);
    for (char byte : bytes) {
        at += byteTime();
        m_output.push_back({byte, at});
    }
    m_outputFree = at;
    return at;
}

link::Duration VirtualTester::SendAnswer(const QByteArray &answer, link::Duration earliest)
{
    if (m_style != AnswerStyle::Odd)
        return Send(answer, earliest);
    link::Duration end = earliest;
    bool first = true;
    for (const QByteArray &burst : OddBursts(answer)) {
        end = Send(burst, first ? earliest : end + kBurstGap);
        first = false;
    }
    return end;
}

QByteArray VirtualTester::takeOutput(link::Duration until)
{
    EndIdlePackage(until);
    QByteArray bytes;
    while (!m_output.empty() && m_output.front().at <= until) {
        bytes.append(m_output.front().byte);
        m_output.pop_front();
    }
    return bytes;
}

void VirtualTester::dropOutput(link::Duration until)
{
    EndIdlePackage(until);
    while (!m_output.empty() && m_output.front().at <= until)
        m_output.pop_front();
}

void VirtualTester::pushDisplay(const QByteArray &bytes)
{
    if (!m_vanished)
        Send(bytes, m_clock.now());
}

QByteArray VirtualTester::Garbage() const
{
    // The same garbage for the same exchange, run after run; never a DC1 and never a mark that an
    // answer is taken apart at (the "." of ".Y", ":", ";", "=", ",", "$"), so that no reading
    // rule can find a value in it.
    quint32 state = 0x9E3779B9u ^ static_cast<quint32>(m_exchanges * 2654435761u);
    const auto next = [&state] {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    };
    QByteArray bytes;
    const int length = 12 + static_cast<int>(next() % 20);
    while (bytes.size() < length) {
        const char byte = static_cast<char>(0x20 + next() % (0xFF - 0x20));
        if (!QByteArray(".:;=,$").contains(byte))
            bytes.append(byte);
    }
    return bytes;
}

} // namespace kalvo::sim
