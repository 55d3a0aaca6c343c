// kalvo-cli: every device operation without a window, for scripts, service benches and tests.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliOptions.h"

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

QList<CliCommand> AllCommands()
{
    return LinkCommands() + ShellCommands() + RecordCommands() + ConfigCommands() + UpdateCommands() +
           SpecdbCommands() + ArchiveCommands();
}

void PrintHelp(QTextStream &out)
{
    out << "kalvo-cli [--port NAME] [--simulate] [--timeout SECONDS] [--yes] [--trace FILE] [--lang NAME]\n"
           "          [--archive URL] [--no-archive] <command> [arguments]\n\n";
    for (const CliCommand &command : AllCommands())
        out << "  " << command.name << ' ' << command.synopsis << "\n      " << command.summary << '\n';
    out << "  help\n      this list\n\n"
           "exit codes: 0 done, 1 refused or failed, 2 usage, 3 no answer from the tester\n";
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

} // namespace

int main(int argc, char *argv[])
{
    // Reports as PDF need the fonts of a GUI application (it never opens a window); everything
    // else runs without one, so that a machine without a display needs nothing more.
    const bool needsFonts =
        std::any_of(argv, argv + argc, [](const char *a) { return std::strcmp(a, "--pdf") == 0; });
    if (needsFonts && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
        !platform::WindowlessPlatformPlugin().isEmpty())
        qputenv("QT_QPA_PLATFORM", platform::WindowlessPlatformPlugin());
    platform::UseUtf8Console();
    std::unique_ptr<QCoreApplication> application = needsFonts
                                                        ? std::make_unique<QGuiApplication>(argc, argv)
                                                        : std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication &app = *application;
    QTextStream err(stderr);
    QString error;
    const auto options = ParseCliOptions(app.arguments().mid(1), error);
    if (!options) {
        err << "kalvo-cli: " << error << " (kalvo-cli help)" << Qt::endl;
        return kExitUsage;
    }
    const QString name = options->words.first();
    if (name == QLatin1String("help")) {
        QTextStream out(stdout);
        PrintHelp(out);
        return kExitDone;
    }
    for (const CliCommand &command : AllCommands()) {
        if (command.name != name)
            continue;
        CliContext context(*options);
        try {
            const int code = RunCommand(command, context, options->words.mid(1));
            // A refusal was reported on the way: whatever the command made of it, it was not done.
            if (code == kExitDone && context.link().refusals() > 0) {
                err << "kalvo-cli: abgelehnt: " << link::RefusalWatch(context.link(), 0).Describe()
                    << Qt::endl;
                return kExitFailed;
            }
            return code;
        } catch (const UsageError &e) {
            err << "kalvo-cli " << name << ' ' << command.synopsis << ": " << e.text << Qt::endl;
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
    err << "kalvo-cli: unbekannter Befehl " << name << " (kalvo-cli help)" << Qt::endl;
    return kExitUsage;
}
