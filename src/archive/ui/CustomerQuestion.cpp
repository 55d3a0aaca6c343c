// The question after a read: which customer the records that name none belong to.
#include "CustomerQuestion.h"

#include "ArchiveCaptions.h"

#include "archive/ArchiveLocation.h"
#include "archive/ArchiveTypes.h"

#include <QInputDialog>

namespace kalvo::archive::ui {

void AskCustomerOfRead(QWidget *owner, const QString &language,
                       const std::function<void(const QString &customer)> &answered)
{
    auto *dialog = new QInputDialog(owner);
    dialog->setObjectName(QStringLiteral("kundeDerLesung"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(CaptionText(Caption::Title, language));
    dialog->setLabelText(CaptionText(Caption::CustomerOfRead, language));
    const QString last = ReadLastCustomer();
    dialog->setTextValue(last.isEmpty() ? kNoCustomer : last);
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, answered](int result) {
        QString customer;
        if (result == QDialog::Accepted) {
            customer = dialog->textValue().trimmed();
            WriteLastCustomer(customer);
        }
        answered(customer);
    });
    dialog->open();
}

} // namespace kalvo::archive::ui
