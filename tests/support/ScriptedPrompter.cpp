// A Prompter for tests: answers from a script and records every call.
#include "ScriptedPrompter.h"

namespace kalvo::testing {

void ScriptedPrompter::message(const QString &text, Icon icon)
{
    messages.push_back({text, icon});
    calls << QStringLiteral("message:") + text;
}

bool ScriptedPrompter::confirm(const QString &text)
{
    calls << QStringLiteral("confirm:") + text;
    return NextAnswer();
}

bool ScriptedPrompter::confirmLoss(const QString &text)
{
    calls << QStringLiteral("confirmLoss:") + text;
    return NextAnswer();
}

bool ScriptedPrompter::NextAnswer()
{
    if (confirmAnswers.empty())
        return false;
    const bool answer = confirmAnswers.front();
    confirmAnswers.pop_front();
    return answer;
}

std::optional<QString> ScriptedPrompter::askText(const QString &title, const QString &prompt,
                                                 const QString &defaultText)
{
    calls << QStringLiteral("askText:%1|%2|%3").arg(title, prompt, defaultText);
    if (textAnswers.empty())
        return std::nullopt;
    auto answer = textAnswers.front();
    textAnswers.pop_front();
    return answer;
}

static QString NextFile(std::deque<QString> &answers)
{
    if (answers.empty())
        return {};
    QString answer = answers.front();
    answers.pop_front();
    return answer;
}

QString ScriptedPrompter::askOpenFile(const QString &filter)
{
    calls << QStringLiteral("askOpenFile:") + filter;
    return NextFile(fileAnswers);
}

QString ScriptedPrompter::askSaveFile(const QString &filter)
{
    calls << QStringLiteral("askSaveFile:") + filter;
    return NextFile(fileAnswers);
}

void ScriptedPrompter::progress(int percent)
{
    progressValues.push_back(percent);
}

void ScriptedPrompter::busy(bool on)
{
    busyDepth += on ? 1 : -1;
}

::testing::AssertionResult RisesTo100(const std::vector<int> &values)
{
    bool rising = !values.empty() && values.back() == 100;
    for (size_t i = 1; rising && i < values.size(); ++i)
        rising = values[i] >= values[i - 1] && values[i] <= 100;
    if (rising)
        return ::testing::AssertionSuccess();
    ::testing::AssertionResult failure = ::testing::AssertionFailure() << "progress:";
    for (const int value : values)
        failure << ' ' << value;
    return failure;
}

} // namespace kalvo::testing
