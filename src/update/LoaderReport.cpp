// What an update loader reports after a file, collected from the line with a deadline per phase.
#include "LoaderReport.h"

#include "link/Errors.h"
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

bool LoaderReport::Ended() const
{
    return m_bytes.indexOf(link::kDC1, 1) >= 0;
}

void LoaderReport::ReadMore(link::Duration deadline, const QString &waitingFor)
{
    const auto remaining = deadline - m_link.clock().now();
    if (remaining <= link::Duration::zero()) {
        m_link.ClosePort();
        throw link::Timeout(QStringLiteral("Der Kalvomer hat %1 s lang nicht geantwortet (erwartet: %2). %3")
                                .arg(link::ToSeconds(m_link.timeout()))
                                .arg(waitingFor, RepeatUpdateText()));
    }
    const QByteArray chunk = m_link.ReadRaw(std::chrono::ceil<std::chrono::milliseconds>(remaining));
    if (m_bytes.size() + chunk.size() > kMaxReportBytes) {
        m_link.DiscardInput();
        throw link::FormatError(
            QStringLiteral("Bericht des Kalvomer beim Warten auf %1").arg(waitingFor), 0,
            QStringLiteral("höchstens %1 Bytes. %2").arg(kMaxReportBytes).arg(RepeatUpdateText()));
    }
    m_bytes += chunk;
}

LoaderReport::Outcome LoaderReport::WaitFor(const QByteArray &mark, const QString &waitingFor)
{
    const auto deadline = m_link.clock().now() + m_link.timeout();
    for (;;) {
        if (m_bytes.contains(mark))
            return Outcome::Found;
        if (Ended())
            return Outcome::Ended;
        ReadMore(deadline, waitingFor);
    }
}

void LoaderReport::WaitForEnd(const QString &waitingFor)
{
    const auto deadline = m_link.clock().now() + m_link.timeout();
    while (!Ended())
        ReadMore(deadline, waitingFor);
}

} // namespace kalvo::update
