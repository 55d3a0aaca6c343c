// Answers the message boxes and input dialogs a window opens, and remembers what they said.
#include "DialogAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

namespace kalvo::testing {

DialogAnswerer::DialogAnswerer()
{
    connect(&m_timer, &QTimer::timeout, this, &DialogAnswerer::Look);
    m_timer.start(20);
}

void DialogAnswerer::Note(QWidget *dialog)
{
    QWidget *parent = dialog->parentWidget();
    seen << Seen{dialog->windowTitle(), parent ? parent->window() : nullptr};
}

void DialogAnswerer::Look()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        Note(box);
        messages << box->text();
        defaultButtons << (box->defaultButton() ? int(box->standardButton(box->defaultButton()))
                                                : int(QMessageBox::NoButton));
        if (pressEnter) {
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
            QApplication::sendEvent(box, &enter);
            return;
        }
        QAbstractButton *cancel = box->button(QMessageBox::Cancel);
        bool ok = true;
        if (cancel && !confirmations.empty()) {
            ok = confirmations.front();
            confirmations.pop_front();
        }
        if (!ok && cancel)
            cancel->click();
        else if (QAbstractButton *okButton = box->button(QMessageBox::Ok))
            okButton->click();
        else if (QAbstractButton *yes = box->button(QMessageBox::Yes)) // "replace the file?"
            yes->click();
        else
            box->accept();
    } else if (auto *dialog = qobject_cast<QFileDialog *>(modal)) {
        // A file dialog fills its views after it is shown: answer it on the tick after it appeared.
        if (m_seenFileDialog != dialog) {
            m_seenFileDialog = dialog;
            return;
        }
        m_seenFileDialog = nullptr;
        Note(dialog);
        const QString path = files.empty() ? QString() : files.front();
        if (!files.empty())
            files.pop_front();
        if (path.isEmpty()) {
            dialog->reject();
        } else {
            // As a user would: type the name, then press the dialog's accept button.
            if (auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                edit->setText(path);
            else
                dialog->selectFile(path);
            // Queued: a question the dialog asks on accepting (replace an existing file?) must come
            // up outside this slot, or the timer that would answer it never fires again.
            QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
        }
    } else if (auto *input = qobject_cast<QInputDialog *>(modal)) {
        Note(input);
        prompts << input->labelText();
        proposals << input->textValue();
        std::optional<QString> answer;
        if (!inputs.empty()) {
            answer = inputs.front();
            inputs.pop_front();
        }
        if (answer) {
            input->setTextValue(*answer);
            input->accept();
        } else {
            input->reject();
        }
    }
}

bool WaitUntil(const std::function<bool()> &done, int ms)
{
    QDeadlineTimer deadline(ms);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(2);
    }
    return true;
}

} // namespace kalvo::testing
