// kalvo-cli: every device operation without a window, for scripts, service benches and tests.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliOptions.h"
#include "CliWords.h"

#include "link/Errors.h"
#include "platform/Console.h"

#include <QGuiApplication>

#include <QTextStream>
#include <algorithm>
#include <cstring>
#include <memory>

using namespace kalvo;
using namespace kalvo::cli;

namespace {

const QString kHelpWord = QStringLiteral("help");

QList<CliCommand> AllCommands()
{
    return LinkCommands() + ShellCommands() + RecordCommands() + ConfigCommands() + UpdateCommands() +
           SpecdbCommands() + ArchiveCommands();
}

const char kExitCodes[] = "exit codes: 0 done, 1 refused or failed, 2 usage, 3 no answer from the tester\n";

void PrintHelp(QTextStream &out)
{
    out << "kalvo-cli [global options] <command> [arguments]\n\n" << GlobalOptionsHelp() << "\ncommands:\n";
    for (const CliCommand &command : AllCommands())
        out << "  " << command.name << ' ' << command.synopsis << "\n      " << command.summary << '\n';
    out << "  help [COMMAND]\n      this list, or the help of one command (also: COMMAND --help)\n\n"
        << "Options take their value as \"--name VALUE\" or \"--name=VALUE\".\n"
        << kExitCodes;
}

void PrintCommandHelp(QTextStream &out, const CliCommand &command)
{
    out << "kalvo-cli [global options] " << command.name << ' ' << command.synopsis << "\n\n  "
        << command.summary << "\n\n"
        << GlobalOptionsHelp() << '\n'
        << kExitCodes;
}

bool AsksForHelp(const QStringList &words)
{
    return words.contains(QStringLiteral("--help")) || words.contains(QStringLiteral("-h"));
}

const CliCommand *FindCommand(const QList<CliCommand> &commands, const QString &name)
{
    const auto it = std::find_if(commands.begin(), commands.end(),
                                 [&name](const CliCommand &command) { return command.name == name; });
    return it == commands.end() ? nullptr : &*it;
}

// "unbekannter Befehl recods – meinten Sie records?"
QString UnknownCommand(const QString &name, const QList<CliCommand> &commands, const QString &language)
{
    QStringList known{kHelpWord};
    for (const CliCommand &command : commands)
        known << command.name;
    QString text = UsageTextIn(language, UsageText::UnknownCommand).arg(name);
    const QStringList nearest = NearestWords(name, known);
    if (!nearest.isEmpty())
        text += QStringLiteral(" – ") + UsageTextIn(language, UsageText::DidYouMean)
                                            .arg(nearest.join(UsageTextIn(language, UsageText::Or)));
    return text;
}

// Runs `command`; an unfinished progress line is ended before anything else reaches stderr,
// whether the command returns or throws.
int RunCommand(const CliCommand &command, CliContext &context, const QStringList &words)
{
    struct ProgressLineEnd {
        CliPrompter &prompter;
        ~ProgressLineEnd() { prompter.EndProgress(); }
    } end{context.prompter()};
    return command.run(context, words);
}

int Run(const CliCommand &command, const CliOptions &options, QTextStream &err)
{
    CliContext context(options);
    try {
        const int code = RunCommand(command, context, options.words.mid(1));
        // A refusal was reported on the way: whatever the command made of it, it was not done.
        if (code == kExitDone && context.link().refusals() > 0) {
            err << "kalvo-cli: abgelehnt: " << link::RefusalWatch(context.link(), 0).Describe() << Qt::endl;
            return kExitFailed;
        }
        return code;
    } catch (const UsageError &e) {
        err << "kalvo-cli " << command.name << ' ' << command.synopsis << ": " << e.In(context.language())
            << Qt::endl;
        return kExitUsage;
    } catch (const link::Timeout &e) {
        err << e.message() << Qt::endl;
        return kExitNoAnswer;
    } catch (const link::PortError &e) {
        err << e.message() << Qt::endl;
        return e.kind() == link::PortError::Kind::Lost ? kExitNoAnswer : kExitFailed;
    } catch (const link::KalvoError &e) {
        err << e.message() << Qt::endl;
        return kExitFailed;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    // Reports as PDF need the fonts of a GUI application (it never opens a window); everything
    // else runs without one, so that a machine without a display needs nothing more.
    const bool needsFonts =
        std::any_of(argv, argv + argc, [](const char *a) { return std::strncmp(a, "--pdf", 5) == 0; }) ||
        std::adjacent_find(argv, argv + argc, [](const char *a, const char *b) {
            return std::strcmp(a, "archive") == 0 &&
                   (std::strcmp(b, "labels") == 0 || std::strcmp(b, "signed") == 0);
        }) != argv + argc;
    if (needsFonts && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
        !platform::WindowlessPlatformPlugin().isEmpty())
        qputenv("QT_QPA_PLATFORM", platform::WindowlessPlatformPlugin());
    platform::UseUtf8Console();
    std::unique_ptr<QCoreApplication> application = needsFonts
                                                        ? std::make_unique<QGuiApplication>(argc, argv)
                                                        : std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication &app = *application;
    QCoreApplication::setApplicationName(QStringLiteral("kalvo-cli"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KALVO_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);
    const CliOptions options = ParseCliOptions(app.arguments().mid(1));
    const QList<CliCommand> commands = AllCommands();
    if (options.error) {
        err << "kalvo-cli: " << options.error->In(UsageLanguage(options.language)) << " (kalvo-cli help)"
            << Qt::endl;
        return kExitUsage;
    }
    if (options.version) {
        out << "kalvo-cli " << QCoreApplication::applicationVersion() << Qt::endl;
        return kExitDone;
    }
    const QString name = options.words.value(0);
    if (options.help || (name == kHelpWord && options.words.size() == 1)) {
        PrintHelp(out);
        return kExitDone;
    }
    // "help records" is "records --help".
    const QString commandName = name == kHelpWord ? options.words[1] : name;
    const CliCommand *command = FindCommand(commands, commandName);
    if (!command) {
        err << "kalvo-cli: " << UnknownCommand(commandName, commands, UsageLanguage(options.language))
            << " (kalvo-cli help)" << Qt::endl;
        return kExitUsage;
    }
    if (name == kHelpWord || AsksForHelp(options.words.mid(1))) {
        PrintCommandHelp(out, *command);
        return kExitDone;
    }
    return Run(*command, options, err);
}
