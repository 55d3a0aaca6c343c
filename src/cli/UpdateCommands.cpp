// kalvo-cli update, pfile and templates: firmware and packages into the tester, print templates.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"

#include "link/Errors.h"
#include "link/Identification.h"
#include "link/Link.h"
#include "link/PackageFiles.h"
#include "link/UserFiles.h"
#include "update/PFile.h"
#include "update/PFileLoad.h"
#include "update/Templates.h"
#include "update/UpdateRun.h"

#include <QDir>
#include <QFileInfo>

namespace kalvo::cli {

namespace {

// Starts as every command that talks to the tester, and as the window on connecting: the tester
// woken, its state read, then identified (a package run's fix-up goes by the firmware it reports).
// After a refusal the command neither writes a file nor sends anything more; one that goes on to
// change the tester does not after an unconfirmed answer either, not even to "mes!0" or
// "kal!aus", which connecting alone does not look at.
void ConnectAndIdentify(CliContext &context, bool changes, const QString &updateDir = {})
{
    link::Link &link = context.link();
    const link::RefusalWatch command(link);
    const link::ConnectionState state = link::ConnectTester(link, context.portName());
    link::IdentifyTester(link, {updateDir});
    for (const QByteArray &unconfirmed : changes ? state.unconfirmed : QList<QByteArray>())
        link.NoteRefusal(unconfirmed);
    if (command.refused())
        throw link::ProtocolError(link.protocolErrorNumber(),
                                  QStringLiteral("Der Kalvomer hat %1 abgelehnt; es wurde nichts gesendet.")
                                      .arg(command.Describe()));
}

void PrintOutcome(QTextStream &out, const update::UpdateOutcome &outcome)
{
    for (const QString &name : outcome.sent)
        out << name << ": sent\n";
    for (const QString &name : outcome.missing)
        out << name << ": not found\n";
    static const char *const kKinds[] = {"firmware", "pictures", "sequences", "help"};
    for (const update::ContentKind kind : outcome.notPermitted)
        out << kKinds[static_cast<int>(kind)] << ": not permitted\n";
    if (outcome.identity)
        out << "firmware: " << QString::number(outcome.identity->firmwareVersion, 'g', 6) << '\n';
    if (outcome.fixUp)
        out << "calibration fix-up: 29 " << (outcome.fixUp->changed29 ? "changed" : "kept") << ", 50 "
            << (outcome.fixUp->changed50 ? "changed" : "kept") << ", "
            << (outcome.fixUp->stored ? "stored" : "nothing stored") << '\n';
}

int Update(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--lang")});
    const QString action = w.positional.value(0);
    update::UpdateContext setup{{}, context.texts(), {}};
    // A command line starts as the program does: with the update permitted.
    update::UpdatePermission permission;
    update::UpdateOutcome outcome;
    if (action == QLatin1String("file") && w.positional.size() == 2 && w.options.isEmpty()) {
        const QFileInfo file(w.positional[1]);
        const auto kind = update::KindForFileName(file.fileName());
        if (!kind)
            throw Usage(UsageText::NoFileMask, {file.fileName()});
        setup.directory = file.absolutePath();
        // A bad file ends the command before the tester is woken.
        update::CheckBeforeSending(*kind, file.absoluteFilePath());
        ConnectAndIdentify(context, true, setup.directory);
        outcome = update::UpdateSingleFile(context.link(), context.prompter(), permission, *kind,
                                           file.absoluteFilePath(), setup);
    } else if (action == QLatin1String("package") && w.positional.size() == 2 &&
               w.options.contains(QStringLiteral("--lang"))) {
        const QString code = w.options.value(QStringLiteral("--lang"));
        if (!update::PackageLanguageCodes().contains(code))
            throw Usage(UsageText::OneOf, {QStringLiteral("--lang"),
                                           update::PackageLanguageCodes().join(QLatin1Char(' ')), code});
        setup.directory = w.positional[1];
        if (!QFileInfo(setup.directory).isDir())
            throw Usage(UsageText::NotADirectory, {QDir::toNativeSeparators(setup.directory)});
        update::CheckPackageBeforeSending(setup.directory, code);
        ConnectAndIdentify(context, true, setup.directory);
        outcome = update::UpdatePackage(context.link(), context.prompter(), permission, code, setup);
    } else {
        throw Usage(UsageText::Expected,
                    {QStringLiteral("file PATH | package DIR --lang ge|gb|fr|it|nl|es|ts|pl")});
    }
    if (outcome.identity)
        context.TesterIdentified(*outcome.identity);
    PrintOutcome(context.out(), outcome);
    return outcome.Complete() ? kExitDone : kExitFailed;
}

int SlotArgument(const Words &w)
{
    const int slot = NumberArgument(w.options.value(QStringLiteral("--slot")), QStringLiteral("--slot"));
    if (!update::SlotByte(slot))
        throw Usage(UsageText::Between, {QStringLiteral("--slot"), QStringLiteral("1"), QStringLiteral("4"),
                                         QString::number(slot)});
    return slot;
}

int PFile(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--slot"), QStringLiteral("--out")});
    const QString action = w.positional.value(0);
    if (w.positional.size() != 2 || !w.options.contains(QStringLiteral("--slot")) ||
        (action == QLatin1String("load") && w.options.contains(QStringLiteral("--out"))))
        throw Usage(
            UsageText::Expected,
            {QStringLiteral("build TEMPLATE.pr --slot 1-4 [--out FILE] | load TEMPLATE.pr --slot 1-4")});
    const int slot = SlotArgument(w);
    if (action == QLatin1String("build")) {
        const auto made = update::MakePFile(context.prompter(), w.positional[1], slot,
                                            w.options.value(QStringLiteral("--out")));
        if (!made)
            return kExitFailed;
        context.out() << QDir::toNativeSeparators(made->path) << ": " << made->bytes.size() << " bytes, slot "
                      << slot << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("load")) {
        // Read the template before the port is opened: a bad file ends the command untouched.
        update::ReadTemplateLines(w.positional[1]);
        ConnectAndIdentify(context, true);
        if (!update::BuildAndLoadPFile(context.link(), context.prompter(), w.positional[1], slot))
            return kExitFailed;
        const QString made = link::PlaceFile(update::PFileName(w.positional[1])).path;
        context.out() << QDir::toNativeSeparators(made) << " -> slot " << slot << '\n';
        return kExitDone;
    }
    throw Usage(UsageText::Expected, {QStringLiteral("build | load")});
}

int Templates(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {});
    if (w.positional.value(0) != QLatin1String("read") || w.positional.size() < 2 || w.positional.size() > 3)
        throw Usage(UsageText::Expected, {QStringLiteral("read K [OUT.pr]")});
    const int k = NumberArgument(w.positional[1], QStringLiteral("K"));
    if (k < update::kFirstTemplate || k > update::kLastTemplate)
        throw Usage(UsageText::Between, {QStringLiteral("K"), QString::number(update::kFirstTemplate),
                                         QString::number(update::kLastTemplate), QString::number(k)});
    ConnectAndIdentify(context, false);
    const QString path = w.positional.size() > 2
                             ? w.positional[2]
                             : link::PlaceFileAndSay(context.prompter(), {}, update::TemplateFileName(k));
    if (!update::SaveTemplateFromTester(context.link(), k, path))
        return kExitFailed;
    context.out() << "template " << k << " -> " << QDir::toNativeSeparators(path) << '\n';
    return kExitDone;
}

} // namespace

QList<CliCommand> UpdateCommands()
{
    return {
        {QStringLiteral("update"), QStringLiteral("file PATH | package DIR --lang ge|gb|fr|it|nl|es|ts|pl"),
         QStringLiteral(
             "load one firmware (*.hex) or package file (b*.p, a*.p, h*.p) by its name, or all four "
             "files of a language from DIR, into the tester"),
         Update},
        {QStringLiteral("pfile"),
         QStringLiteral("build TEMPLATE.pr --slot 1-4 [--out FILE] | load TEMPLATE.pr --slot 1-4"),
         QStringLiteral(
             "pack a print template into its P-file (beside it, or FILE), or pack and load it into a slot"),
         PFile},
        {QStringLiteral("templates"), QStringLiteral("read K [OUT.pr]"),
         QStringLiteral("read print template K (0 to 4) from the tester into OUT.pr (default K.pr)"),
         Templates},
    };
}

} // namespace kalvo::cli
