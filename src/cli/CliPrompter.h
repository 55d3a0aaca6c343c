// The Prompter of kalvo-cli: messages on stderr, answers from the command line.
#pragma once

#include "ProgressLine.h"
#include "link/Prompter.h"

#include <QTextStream>
#include <cstdio>
#include <deque>

namespace kalvo::link {
class Link;
}

namespace kalvo::cli {

class CliPrompter final : public link::Prompter {
public:
    // Messages and progress go to `err`, the progress in `style`.
    CliPrompter(bool yes, ProgressStyle style, FILE *err = stderr);
    ~CliPrompter() override;

    void message(const QString &text, Icon icon) override;
    bool confirm(const QString &text) override;
    // As confirm: a command line that destroys something says so with --yes.
    bool confirmLoss(const QString &text) override { return confirm(text); }
    std::optional<QString> askText(const QString &title, const QString &prompt,
                                   const QString &defaultText) override;
    QString askOpenFile(const QString &filter) override;
    QString askSaveFile(const QString &filter) override;
    void progress(int percent) override;
    void busy(bool on) override;

    // Answers a command gives in advance, used in order: texts for askText (without one, the
    // proposed text is taken), names for the file questions.
    void PresetText(const std::optional<QString> &text) { m_texts.push_back(text); }
    void PresetFile(const QString &name) { m_files.push_back(name); }

    // A critical message was shown (a refusal by the tester, for instance).
    bool failureShown() const { return m_failureShown; }
    // Once the tester has refused anything on `link`, every question is answered Cancel, --yes or
    // not: a command line never agrees to go on after a refusal it could not read.
    void WatchRefusals(const link::Link *link) { m_link = link; }
    // True when a question now would be answered Cancel because of a refusal.
    bool RefusalSeen() const;
    // Ends an unfinished progress line, so that what follows starts on a line of its own.
    void EndProgress();

private:
    bool m_yes;
    const link::Link *m_link = nullptr;
    bool m_failureShown = false;
    ProgressLine m_progress;
    std::deque<std::optional<QString>> m_texts;
    std::deque<QString> m_files;
    QTextStream m_err;
};

} // namespace kalvo::cli
