// Setting the tester's clock from the PC and giving the tester a name.
#include "ClockAndName.h"

#include "link/Errors.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

namespace kalvo::shell {

TesterClock ReadTesterClock(link::Link &link)
{
    const QByteArray answer = link.Exchange("dat?");
    const qsizetype equals = answer.indexOf('=');
    const qsizetype semicolon = answer.indexOf(';');
    // Eight characters each, two behind their marks: an answer without them holds no clock.
    if (equals < 0 || semicolon < 0 || answer.size() < std::max(equals, semicolon) + 10)
        throw link::FormatError::ForAnswer(
            "dat?", answer, QStringLiteral("\"=\" und \";\", je zwei Stellen dahinter Datum und Uhrzeit"));
    return {answer.mid(equals + 2, 8), answer.mid(semicolon + 2, 8)};
}

QString ClockProposal(const QDateTime &now)
{
    return now.toString(QStringLiteral("dd.MM.yy")) + QLatin1Char(';') +
           now.toString(QStringLiteral("hh:mm"));
}

ClockSetting SetTesterClock(link::Link &link, link::Prompter &prompter, const QDateTime &now)
{
    ClockSetting setting{ReadTesterClock(link), std::nullopt};
    const TesterClock &clock = setting.before;
    const QString prompt = QStringLiteral("Kalvomer:\nDatum %1\nUhrzeit %2")
                               .arg(link::DecodeTesterText(clock.date), link::DecodeTesterText(clock.time));
    const auto text =
        prompter.askText(QStringLiteral("Datum und Uhrzeit ändern"), prompt, ClockProposal(now));
    if (!text || text->isEmpty())
        return setting;
    link::SendSetting(link, "dat!" + link::EncodeTesterText(*text));
    setting.sent = *text;
    return setting;
}

NamingResult SendTesterName(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                            const QString &name)
{
    if (name.size() > kMaxNameLength) {
        prompter.message(texts.text(link::TxtNameTooLong), link::Prompter::Icon::Warning);
        return NamingResult::TooLong;
    }
    if (name.isEmpty())
        return NamingResult::Cancelled;
    const link::RefusalWatch watch(link);
    link::SendSetting(link, "kal!aus");
    link::SendSetting(link, "idn!1," + link::EncodeTesterText(name));
    if (watch.refused() &&
        !prompter.confirmLoss(
            QStringLiteral("Der Kalvomer hat %1 abgelehnt. Trotzdem speichern?").arg(watch.Describe())))
        return NamingResult::NotStored;
    const bool stored = link::StoreChanges(link, prompter, link::StoreCommand::Configuration);
    return stored && !watch.refused() ? NamingResult::Sent : NamingResult::NotStored;
}

Naming NameTester(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                  const link::IdentifyOptions &options, const std::optional<QString> &given,
                  const std::function<void(const link::TesterIdentity &)> &identified)
{
    Naming naming;
    if (given && given->size() > kMaxNameLength) {
        naming.result = SendTesterName(link, prompter, texts, *given);
        return naming;
    }
    naming.identity = link::IdentifyTester(link, options);
    if (identified)
        identified(naming.identity);
    std::optional<QString> name = given;
    if (!name) {
        const QString prompt = texts.text(link::TxtNamePrompt) + QStringLiteral("\n\n(") +
                               texts.text(link::TxtNameLimit) + QLatin1Char(')');
        name = prompter.askText(texts.text(link::TxtMenuName), prompt, QString());
        if (!name)
            return naming;
    }
    naming.result = SendTesterName(link, prompter, texts, *name);
    if (naming.result == NamingResult::Sent)
        naming.identity = link::WithNewName(naming.identity, link::EncodeTesterText(*name));
    return naming;
}

} // namespace kalvo::shell
