// The tester's modem settings: two telephone numbers and the initialisation string.
#include "ModemSettings.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

namespace kalvo::modem {

namespace {

QByteArray StringRegister(int entry)
{
    return QByteArray::number(kFirstStringRegister - 1 + entry);
}

} // namespace

QList<QByteArray> ModemCommands(const ModemSettings &settings)
{
    // Nothing on the modem form fills entries 1 and 4; they are sent empty.
    const QString entries[kStringRegisters] = {QString(), settings.tel1, settings.tel2, QString(),
                                               settings.init};
    QList<QByteArray> commands;
    for (int i = 1; i <= kStringRegisters; ++i)
        commands << "str!" + StringRegister(i) + ',' + link::EncodeTesterText(entries[i - 1]);
    return commands;
}

QList<QByteArray> WriteModemSettings(link::Link &link, const ModemSettings &settings)
{
    const link::RefusalWatch watch(link);
    for (const QByteArray &command : ModemCommands(settings))
        link::SendSetting(link, command);
    return watch.commands();
}

bool StoreModemSettings(link::Link &link, link::Prompter &prompter, const QString &confirmationText,
                        const QList<QByteArray> &refusedBefore)
{
    if (!refusedBefore.isEmpty() &&
        !prompter.confirmLoss(
            QStringLiteral("Abgelehnt: %1\nTrotzdem speichern?").arg(link::QuotedCommands(refusedBefore))))
        return false;
    if (!link::StoreChanges(link, prompter, link::StoreCommand::Configuration))
        return false;
    prompter.message(confirmationText, link::Prompter::Icon::Information);
    return true;
}

} // namespace kalvo::modem
