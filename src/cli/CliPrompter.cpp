// The Prompter of kalvo-cli: messages on stderr, answers from the command line.
#include "CliPrompter.h"

#include "link/Link.h"

#include "platform/Console.h"

namespace kalvo::cli {

CliPrompter::CliPrompter(bool yes, ProgressStyle style, FILE *err) : m_yes(yes), m_progress(style), m_err(err)
{}

CliPrompter::~CliPrompter()
{
    EndProgress();
}

void CliPrompter::EndProgress()
{
    m_err << m_progress.End();
    m_err.flush();
}

void CliPrompter::message(const QString &text, Icon icon)
{
    EndProgress();
    if (icon == Icon::Critical)
        m_failureShown = true;
    m_err << text << Qt::endl;
}

bool CliPrompter::RefusalSeen() const
{
    return m_link && m_link->refusals() > 0;
}

bool CliPrompter::confirm(const QString &text)
{
    EndProgress();
    if (RefusalSeen()) {
        m_err
            << text
            << QStringLiteral(" -> Abbrechen (abgelehnt: %1)").arg(link::RefusalWatch(*m_link, 0).Describe())
            << Qt::endl;
        return false;
    }
    m_err << text << (m_yes ? QStringLiteral(" -> OK") : QStringLiteral(" -> Abbrechen (--yes für OK)"))
          << Qt::endl;
    return m_yes;
}

std::optional<QString> CliPrompter::askText(const QString &, const QString &, const QString &defaultText)
{
    // Nothing given on the command line: take what is proposed, as Enter in the dialog would.
    if (m_texts.empty())
        return defaultText;
    auto text = m_texts.front();
    m_texts.pop_front();
    return text;
}

static QString TakeFile(std::deque<QString> &files)
{
    if (files.empty())
        return {};
    QString name = files.front();
    files.pop_front();
    return name;
}

QString CliPrompter::askOpenFile(const QString &)
{
    return TakeFile(m_files);
}

QString CliPrompter::askSaveFile(const QString &)
{
    return TakeFile(m_files);
}

void CliPrompter::progress(int percent)
{
    m_err << m_progress.Show(percent);
    m_err.flush();
}

void CliPrompter::busy(bool)
{}

} // namespace kalvo::cli
