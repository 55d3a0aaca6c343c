// What an update loader reports after a file, collected from the line with a deadline per phase.
#include "LoaderReport.h"

#include "link/Link.h"
#include "link/TextRules.h"

namespace kalvo::update {

QString RepeatUpdateText()
{
    return QStringLiteral("Das Update ist nicht vollständig: bitte das Update wiederholen.");
}

void LoaderReport::DropThrough(const QByteArray &mark)
{
    const qsizetype at = m_bytes.indexOf(mark);
    m_bytes.remove(0, at < 0 ? m_bytes.size() : at + mark.size());
}

QString LoaderReport::Shown() const
{
    constexpr qsizetype kShown = 80;
    QString shown = link::EscapeBytes(m_bytes.left(kShown));
    if (m_bytes.size() > kShown)
        shown += QStringLiteral("... (%1 Bytes)").arg(m_bytes.size());
    return shown;
}

bool LoaderReport::Ended(qsizetype from) const
{
    return m_bytes.indexOf(link::kDC1, std::max<qsizetype>(from, 1)) >= 0;
}

bool LoaderReport::Refusal() const
{
    const qsizetype refusal = m_bytes.indexOf("Protokoll");
    return refusal >= 0 && m_bytes.indexOf(".N", refusal) >= 0 && Ended(refusal);
}

link::Timeout LoaderReport::TimedOut(const QString &waitingFor) const
{
    return link::Timeout(QStringLiteral("Der Kalvomer hat %1 s lang nicht geantwortet (erwartet: %2). %3")
                             .arg(link::ToSeconds(m_link.timeout()))
                             .arg(waitingFor, RepeatUpdateText()));
}

bool LoaderReport::ReadMore(link::Duration deadline, const QString &waitingFor)
{
    const auto remaining = deadline - m_link.clock().now();
    if (remaining <= link::Duration::zero())
        return false;
    const QByteArray chunk = m_link.ReadRaw(std::chrono::ceil<std::chrono::milliseconds>(remaining));
    if (m_bytes.size() + chunk.size() > kMaxReportBytes) {
        m_link.DiscardInput();
        throw link::FormatError(
            QStringLiteral("Bericht des Kalvomer beim Warten auf %1").arg(waitingFor), 0,
            QStringLiteral("höchstens %1 Bytes. %2").arg(kMaxReportBytes).arg(RepeatUpdateText()));
    }
    m_bytes += chunk;
    return true;
}

LoaderReport::Outcome LoaderReport::WaitFor(const QByteArray &mark, const QString &waitingFor)
{
    const auto deadline = m_link.clock().now() + m_link.timeout();
    for (;;) {
        if (m_bytes.contains(mark))
            return Outcome::Found;
        if (Ended())
            return Outcome::Ended;
        if (!ReadMore(deadline, waitingFor))
            throw TimedOut(waitingFor);
    }
}

LoaderReport::Outcome LoaderReport::WaitForWord(const QByteArray &mark)
{
    const auto deadline = m_link.clock().now() + m_link.timeout();
    for (;;) {
        if (m_bytes.contains(mark))
            return Outcome::Found;
        if (Refusal())
            return Outcome::Refused;
        if (!ReadMore(deadline, QString::fromLatin1(mark)))
            return Outcome::TimedOut;
    }
}

void LoaderReport::WaitForEnd(qsizetype from, const QString &waitingFor)
{
    const auto deadline = m_link.clock().now() + m_link.timeout();
    while (!Ended(from)) {
        if (!ReadMore(deadline, waitingFor))
            throw TimedOut(waitingFor);
    }
}

} // namespace kalvo::update
