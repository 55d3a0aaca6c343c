// The windows' Prompter: dialogs that belong to the window that asked, callable from any thread.
#pragma once

#include "link/Prompter.h"

#include <QPointer>
#include <QWidget>
#include <functional>

namespace kalvo::gui {

class GuiPrompter final : public link::Prompter {
public:
    // Dialogs are parented to `owner` and carry `title` (what the operation does; the owner's
    // own title when empty). `onProgress` hears the progress of the operation.
    GuiPrompter(QWidget *owner, const QString &title, std::function<void(int)> onProgress = {});

    void message(const QString &text, Icon icon) override;
    bool confirm(const QString &text) override;
    // A warning box whose default button is Cancel: Enter destroys nothing.
    bool confirmLoss(const QString &text) override;
    std::optional<QString> askText(const QString &title, const QString &prompt,
                                   const QString &defaultText) override;
    QString askOpenFile(const QString &filter) override;
    // The suffix of the chosen filter is added when the name typed has none.
    QString askSaveFile(const QString &filter) override;
    void progress(int percent) override;
    void busy(bool on) override;

private:
    // Runs `call` on the window's thread and waits for it: the device thread blocks meanwhile.
    template <typename F> auto OnWindowThread(F call) -> decltype(call());
    QString title() const;

    QPointer<QWidget> m_owner; // dereferenced on the window's thread only
    QString m_title;
    std::function<void(int)> m_onProgress;
};

} // namespace kalvo::gui
