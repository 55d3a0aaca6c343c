// kalvo-cli clock, name and script: the tester's clock and name, and command scripts.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"

#include "link/TextRules.h"
#include "link/UserFiles.h"
#include "shell/ClockAndName.h"
#include "shell/ServiceTerminal.h"

#include <QDateTime>

namespace kalvo::cli {

namespace {

int Clock(CliContext &context, const QStringList &words)
{
    if (words.size() > 1)
        throw Usage(UsageText::Expected, {QStringLiteral("[TEXT]")});
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
        throw Usage(UsageText::Expected, {QStringLiteral("NAME")});
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
    const Words w = SplitWords(words, {QStringLiteral("--out")});
    if (w.positional.size() > 1)
        throw Usage(UsageText::UnknownArgument, {w.positional[1]});
    if (w.positional.isEmpty())
        throw Usage(UsageText::Expected, {QStringLiteral("FILE.abl [--out FILE]")});
    const QString script = w.positional.first();
    QString result = w.options.value(QStringLiteral("--out"), shell::kScriptResultFileName);
    context.OpenPort();
    if (result == shell::kScriptResultFileName) // the current folder's, unless that is read-only
        result = link::PlaceFileAndSay(context.prompter(), {}, result);
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
