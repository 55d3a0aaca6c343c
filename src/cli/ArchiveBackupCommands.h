// kalvo-cli archive backup and archive restore.
#pragma once

#include "CliWords.h"

namespace kalvo::cli {

class CliContext;

inline const QString kBackupSynopsis = QStringLiteral("backup FILE [--replace] | restore FILE");

// `archive backup FILE [--replace]`: a copy of the archive, while other programs may go on writing.
int ArchiveBackup(CliContext &context, const QStringList &words);
// `archive restore FILE`: a backup into an archive that holds no record yet.
int ArchiveRestore(CliContext &context, const QStringList &words);

} // namespace kalvo::cli
