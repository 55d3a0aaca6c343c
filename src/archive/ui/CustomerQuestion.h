// The question after a read: which customer the records that name none belong to.
#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace kalvo::link {
class Prompter;
}

namespace kalvo::archive::ui {

// Asks, window-modal on `owner` (the window that read), offering the customer chosen last;
// `answered` gets the customer (the last choice is remembered). Cancel keeps the records as well,
// under "ohne Kunde", and so does a window closed while it asks: a read is never lost for a question.
void AskCustomerOfRead(QWidget *owner, const QString &language,
                       const std::function<void(const QString &customer)> &answered);

// The same question through a device job's `prompter`, for records read to be kept before they are
// deleted from the tester: the job waits for the answer.
QString AskCustomerOfRecords(link::Prompter &prompter, const QString &language);

} // namespace kalvo::archive::ui
