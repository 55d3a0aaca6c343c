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

QString ReadString(link::Link &link, int entry)
{
    const QByteArray command = "str?" + StringRegister(entry);
    const QByteArray answer = link::StripControlChars(link.Exchange(command));
    const qsizetype comma = answer.indexOf(',');
    const qsizetype yes = answer.lastIndexOf(".Y");
    if (comma < 0 || yes < comma)
        throw link::FormatError(QStringLiteral("Antwort auf %1").arg(QString::fromLatin1(command)), 0,
                                QStringLiteral("\",\", den Text und \".Y\""));
    return link::DecodeTesterText(answer.mid(comma + 1, yes - comma - 1));
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

void WriteModemSettings(link::Link &link, const ModemSettings &settings)
{
    for (const QByteArray &command : ModemCommands(settings))
        link.Exchange(command);
}

ModemSettings ReadModemSettings(link::Link &link)
{
    ModemSettings settings;
    settings.tel1 = ReadString(link, 2);
    settings.tel2 = ReadString(link, 3);
    settings.init = ReadString(link, 5);
    return settings;
}

bool StoreModemSettings(link::Link &link, link::Prompter &prompter, const QString &confirmationText)
{
    if (!link::StoreChanges(link, prompter, link::StoreCommand::Configuration))
        return false;
    prompter.message(confirmationText, link::Prompter::Icon::Information);
    return true;
}

} // namespace kalvo::modem
