// kalvo-cli archive backup and archive restore.
#include "ArchiveBackupCommands.h"

#include "CliContext.h"
#include "CliPrompter.h"

#include "archive/Archive.h"
#include "archive/ArchiveBackup.h"

#include <QDir>

namespace kalvo::cli {

int ArchiveBackup(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {}, {QStringLiteral("--replace")});
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {QStringLiteral("backup FILE [--replace]")});
    const QString file = w.positional[1];
    // Reading is enough: the copy is a file of its own, and an archive on a share can be saved too.
    archive::Archive &archive = context.archive(archive::ArchiveAccess::Read);
    const archive::BackupResult result = archive::BackupArchive(
        archive, file, [&context](int percent) { context.prompter().progress(percent); },
        w.flags.contains(QStringLiteral("--replace")));
    context.prompter().EndProgress();
    context.out() << QStringLiteral("Sicherung %1 geschrieben: %2 Protokolle, %3 Bytes\n")
                         .arg(QDir::toNativeSeparators(file))
                         .arg(result.records)
                         .arg(result.bytes);
    return kExitDone;
}

int ArchiveRestore(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {});
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {QStringLiteral("restore FILE")});
    const QString file = w.positional[1];
    const archive::RestoreResult result = archive::RestoreArchive(
        context.archive(), file, [&context](int percent) { context.prompter().progress(percent); });
    context.prompter().EndProgress();
    context.out() << QStringLiteral("Sicherung %1 wiederhergestellt: %2 Protokolle\n")
                         .arg(QDir::toNativeSeparators(file))
                         .arg(result.records);
    return kExitDone;
}

} // namespace kalvo::cli
