// The progress of kalvo-cli on stderr: a bar on a terminal, percentage lines otherwise.
#include "ProgressLine.h"

#include <algorithm>
#include <utility>

namespace kalvo::cli {

namespace {

constexpr int kBarCells = 20; // one cell for every 5 %

} // namespace

QString ProgressLine::Bar(int percent) const
{
    const int filled = percent * kBarCells / 100;
    return QStringLiteral("\r[%1%2] %3 %")
        .arg(QString(filled, QLatin1Char('#')), QString(kBarCells - filled, QLatin1Char(' ')))
        .arg(percent, 3);
}

QString ProgressLine::Show(int percent)
{
    percent = std::clamp(percent, 0, 100);
    if (m_style == ProgressStyle::Percentages) {
        const int tenth = percent / 10 * 10;
        if (tenth < m_shown)
            m_shown = -1; // a new operation
        if (tenth == m_shown)
            return {};
        m_shown = tenth;
        return QStringLiteral("%1 %\n").arg(tenth);
    }
    if (percent == m_shown)
        return {};
    QString text = percent < m_shown ? End() : QString();
    text += Bar(percent);
    m_shown = percent;
    m_open = percent < 100;
    if (!m_open)
        text += QLatin1Char('\n');
    return text;
}

QString ProgressLine::End()
{
    m_shown = -1;
    if (!std::exchange(m_open, false))
        return {};
    return QStringLiteral("\n");
}

} // namespace kalvo::cli
