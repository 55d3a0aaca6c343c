// Answers the message boxes and input dialogs a window opens, and remembers what they said.
#include "DialogAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QTest>

namespace kalvo::testing {

DialogAnswerer::DialogAnswerer()
{
    connect(&m_timer, &QTimer::timeout, this, &DialogAnswerer::Look);
    m_timer.start(20);
}

void DialogAnswerer::Look()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        messages << box->text();
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
        else
            box->accept();
    } else if (auto *input = qobject_cast<QInputDialog *>(modal)) {
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
    return QTest::qWaitFor(done, ms);
}

} // namespace kalvo::testing
