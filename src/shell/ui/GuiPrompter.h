// The window's Prompter: dialogs on the window's thread, callable from the device thread.
#pragma once

#include "link/Prompter.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace kalvo::shell::ui {

class GuiPrompter final : public QObject, public link::Prompter {
    Q_OBJECT
public:
    // Dialogs are parented to `window` and carry `title`; the prompter is a child of `window`.
    GuiPrompter(QWidget *window, const QString &title);

    void message(const QString &text, Icon icon) override;
    bool confirm(const QString &text) override;
    std::optional<QString> askText(const QString &title, const QString &prompt,
                                   const QString &defaultText) override;
    QString askOpenFile(const QString &filter) override;
    QString askSaveFile(const QString &filter) override;
    void progress(int percent) override;
    void busy(bool on) override;

    // Directory the file dialogs start in.
    void setDirectory(const QString &dir) { m_directory = dir; }

signals:
    void progressChanged(int percent);

private:
    // Runs `call` on the window's thread and waits for it: the device thread blocks meanwhile.
    template <typename F> auto OnWindowThread(F call) -> decltype(call());

    QPointer<QWidget> m_window;
    QString m_title;
    QString m_directory;
};

// Qt's file filter form from the pipe-separated one ("Ascii file (*.cal)|*.cal|(*.*)|*.*").
QString QtFileFilter(const QString &filter);

} // namespace kalvo::shell::ui
