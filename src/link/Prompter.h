// The conversation with the user, answered by dialogs, by command-line arguments or by a test script.
#pragma once

#include <QString>
#include <optional>

namespace kalvo::link {

class Prompter {
public:
    enum class Icon { Information, Warning, Critical, Question };

    virtual ~Prompter() = default;
    virtual void message(const QString &text, Icon icon = Icon::Information) = 0;
    // OK / Cancel; true for OK.
    virtual bool confirm(const QString &text) = 0;
    // OK / Cancel before something is lost (records deleted, values or a file overwritten): the
    // text says what; Cancel is the answer a bare Enter gives. true for OK.
    virtual bool confirmLoss(const QString &text) = 0;
    // nullopt when the user cancels.
    virtual std::optional<QString> askText(const QString &title, const QString &prompt,
                                           const QString &defaultText) = 0;
    // An empty answer ends the operation silently.
    virtual QString askOpenFile(const QString &filter) = 0;
    virtual QString askSaveFile(const QString &filter) = 0;
    virtual void progress(int percent) = 0;
    virtual void busy(bool on) = 0;
};

} // namespace kalvo::link
