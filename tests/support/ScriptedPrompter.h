// A Prompter for tests: answers from a script and records every call.
#pragma once

#include "link/Prompter.h"

#include <QString>
#include <QStringList>
#include <deque>
#include <gtest/gtest.h>
#include <vector>

namespace kalvo::testing {

class ScriptedPrompter final : public link::Prompter {
public:
    struct Message {
        QString text;
        Icon icon;
    };

    void message(const QString &text, Icon icon) override;
    bool confirm(const QString &text) override;
    // Takes its answer from confirmAnswers too; recorded as "confirmLoss:…".
    bool confirmLoss(const QString &text) override;
    std::optional<QString> askText(const QString &title, const QString &prompt,
                                   const QString &defaultText) override;
    QString askOpenFile(const QString &filter) override;
    QString askSaveFile(const QString &filter) override;
    void progress(int percent) override;
    void busy(bool on) override;

    // Answers, used in order; when they run out confirm() says Cancel, askText() cancels
    // and the file questions answer empty.
    std::deque<bool> confirmAnswers;
    std::deque<std::optional<QString>> textAnswers;
    std::deque<QString> fileAnswers;

    // What was asked and shown, in order.
    std::vector<Message> messages;
    QStringList calls; // "message:…", "confirm:…", "confirmLoss:…", "askText:…", "askOpenFile:…", ...
    std::vector<int> progressValues;
    int busyDepth = 0;

private:
    bool NextAnswer();
};

// Success when the percentages only rise, stay within 100 and end at 100; otherwise shows them.
::testing::AssertionResult RisesTo100(const std::vector<int> &values);

} // namespace kalvo::testing
