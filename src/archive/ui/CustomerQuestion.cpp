// The question after a read: which customer the records that name none belong to.
#include "CustomerQuestion.h"

#include "ArchiveCaptions.h"

#include "archive/ArchiveLocation.h"
#include "archive/ArchiveTypes.h"
#include "link/Prompter.h"

#include <QInputDialog>
#include <memory>
#include <optional>

namespace kalvo::archive::ui {

namespace {

QString Offered()
{
    const QString last = ReadLastCustomer();
    return last.isEmpty() ? kNoCustomer : last;
}

// The customer as the archive takes it (empty: kNoCustomer); an answer given is remembered.
QString Chosen(const std::optional<QString> &answer)
{
    if (!answer)
        return QString();
    const QString customer = answer->trimmed();
    WriteLastCustomer(customer);
    return customer;
}

} // namespace

void AskCustomerOfRead(QWidget *owner, const QString &language,
                       const std::function<void(const QString &customer)> &answered)
{
    auto *dialog = new QInputDialog(owner);
    dialog->setObjectName(QStringLiteral("kundeDerLesung"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(CaptionText(Caption::Title, language));
    dialog->setLabelText(CaptionText(Caption::CustomerOfRead, language));
    dialog->setTextValue(Offered());
    const auto done = std::make_shared<bool>(false);
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, answered, done](int result) {
        *done = true;
        answered(Chosen(result == QDialog::Accepted ? std::optional(dialog->textValue()) : std::nullopt));
    });
    QObject::connect(dialog, &QObject::destroyed, [answered, done] {
        if (!*done)
            answered(QString());
    });
    dialog->open();
}

QString AskCustomerOfRecords(link::Prompter &prompter, const QString &language)
{
    return Chosen(prompter.askText(CaptionText(Caption::Title, language),
                                   CaptionText(Caption::CustomerOfRead, language), Offered()));
}

} // namespace kalvo::archive::ui
