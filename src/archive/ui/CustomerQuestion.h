// The question after a read: which customer the records that name none belong to.
#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace kalvo::archive::ui {

// Asks, window-modal on `owner`, offering the customer chosen last; `answered` gets the customer
// (the last choice is remembered). Cancel keeps the records as well, under "ohne Kunde": a read
// is never lost for a question.
void AskCustomerOfRead(QWidget *owner, const QString &language,
                       const std::function<void(const QString &customer)> &answered);

} // namespace kalvo::archive::ui
