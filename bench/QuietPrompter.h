// A Prompter that says nothing and declines every question: messages are not part of a benchmark's figures.
#pragma once

#include "link/Prompter.h"

namespace kalvo::bench {

class QuietPrompter final : public link::Prompter {
public:
    void message(const QString &, Icon) override {}
    bool confirm(const QString &) override { return false; }
    bool confirmLoss(const QString &) override { return false; }
    std::optional<QString> askText(const QString &, const QString &, const QString &) override { return {}; }
    QString askOpenFile(const QString &) override { return {}; }
    QString askSaveFile(const QString &) override { return {}; }
    void progress(int) override {}
    void busy(bool) override {}
};

} // namespace kalvo::bench
