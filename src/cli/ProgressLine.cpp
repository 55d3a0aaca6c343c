// The progress of kalvo-cli on a terminal: one line, rewritten in place as the percentage changes.
#include "ProgressLine.h"

#include <algorithm>
#include <utility>

namespace kalvo::cli {

QString ProgressLine::Show(int percent)
{
    percent = std::clamp(percent, 0, 100);
    if (percent == m_shown)
        return {};
    QString text = percent < m_shown ? End() : QString();
    text += QStringLiteral("\r%1 %").arg(percent, 3);
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
