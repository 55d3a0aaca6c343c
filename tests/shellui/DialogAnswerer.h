// Answers the message boxes and input dialogs a window opens, and remembers what they said.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <deque>

namespace kalvo::testing {

class DialogAnswerer : public QObject {
    Q_OBJECT
public:
    DialogAnswerer();

    // Texts to type into input dialogs, in order; an empty optional cancels the dialog.
    std::deque<std::optional<QString>> inputs;
    // Whether to press OK (true) or Cancel (false) on question boxes, in order; OK when none is left.
    std::deque<bool> confirmations;
    // Message boxes are answered with Enter, as a hurried user does: their default button decides.
    bool pressEnter = false;
    // Paths to choose in file dialogs, in order; an empty one cancels.
    std::deque<QString> files;

    struct Seen {
        QString title;
        QPointer<QWidget> owner; // the window the dialog belongs to
    };
    QList<Seen> seen; // every dialog answered, in order

    QStringList messages; // the text of every message box, in order
    // The default button of every message box, in order (NoButton when it has none).
    QList<int> defaultButtons;
    QStringList prompts;   // the label of every input dialog, in order
    QStringList proposals; // the default text every input dialog offered

private:
    void Look();
    void Note(QWidget *dialog);
    QTimer m_timer;
    QObject *m_seenFileDialog = nullptr;
};

// Waits until `done` holds, letting the event loop run; false after `ms`.
bool WaitUntil(const std::function<bool()> &done, int ms = 10000);

} // namespace kalvo::testing
