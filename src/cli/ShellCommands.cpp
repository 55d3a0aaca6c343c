// kalvo-cli clock, name and script: the tester's clock and name, and command scripts.
#include "CliCommand.h"
#include "CliContext.h"

#include "link/TextRules.h"
#include "shell/ClockAndName.h"
#include "shell/ServiceTerminal.h"

#include <QDateTime>

namespace kalvo::cli {

namespace {

int Clock(CliContext &context, const QStringList &words)
{
    if (words.size() > 1)
        throw UsageError{QStringLiteral("höchstens ein Text")};
    if (!words.isEmpty())
        context.prompter().PresetText(words.first());
    context.OpenPort();
    const shell::ClockSetting setting =
        shell::SetTesterClock(context.link(), context.prompter(), QDateTime::currentDateTime());
    QTextStream &out = context.out();
    out << "tester: " << link::DecodeTesterText(setting.before.date) << ' '
        << link::DecodeTesterText(setting.before.time) << '\n';
    out << "sent: " << (setting.sent ? QStringLiteral("dat!") + *setting.sent : QStringLiteral("-")) << '\n';
    return kExitDone;
}

int Name(CliContext &context, const QStringList &words)
{
    if (words.size() != 1)
        throw UsageError{QStringLiteral("genau ein Name")};
    context.OpenPort();
    QTextStream &out = context.out();
    // The window's sequence: identify, then name; the name shown last is the one the tester holds.
    const shell::Naming naming =
        shell::NameTester(context.link(), context.prompter(), context.texts(), {QString()}, words.first(),
                          [&context, &out](const link::TesterIdentity &identity) {
                              context.TesterIdentified(identity);
                              out << "before: " << link::DecodeTesterText(identity.shortDesignation) << '\n';
                          });
    if (naming.result == shell::NamingResult::TooLong)
        return kExitFailed;
    out << "name: " << link::DecodeTesterText(naming.identity.shortDesignation) << '\n';
    return naming.result == shell::NamingResult::Sent ? kExitDone : kExitFailed;
}

int Script(CliContext &context, const QStringList &words)
{
    QString script, result = shell::kScriptResultFileName;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (words[i] == QLatin1String("--out") && i + 1 < words.size())
            result = words[++i];
        else if (script.isEmpty() && !words[i].startsWith(QLatin1String("--")))
            script = words[i];
        else
            throw UsageError{QStringLiteral("unbekanntes Argument %1").arg(words[i])};
    }
    if (script.isEmpty())
        throw UsageError{QStringLiteral("die Ablaufdatei fehlt")};
    context.OpenPort();
    QTextStream &out = context.out();
    shell::RunCommandScript(context.link(), script, result,
                            [&out](const QString &line) { out << line << Qt::endl; });
    return context.prompter().failureShown() ? kExitFailed : kExitDone;
}

} // namespace

QList<CliCommand> ShellCommands()
{
    return {
        {QStringLiteral("clock"), QStringLiteral("[TEXT]"),
         QStringLiteral("print the tester's date and time and set it to TEXT or the PC's \"dd.mm.yy;hh:mm\""),
         Clock},
        {QStringLiteral("name"), QStringLiteral("NAME"),
         QStringLiteral("identify the tester, then give it a name of at most 8 characters"), Name},
        {QStringLiteral("script"), QStringLiteral("FILE.abl [--out FILE]"),
         QStringLiteral("send every line of a command script; comments and \"Wertx=\" answers go to FILE "
                        "(beispiel.txt)"),
         Script},
    };
}

} // namespace kalvo::cli
