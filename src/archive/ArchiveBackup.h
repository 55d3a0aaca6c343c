// A backup of a running archive into a portable SQLite file, and the way back into an empty archive.
#pragma once

#include <QString>
#include <functional>

namespace kalvo::archive {

class Archive;

// Percent done, 0 to 100.
using BackupProgress = std::function<void(int)>;

struct BackupResult {
    qint64 records = 0;
    qint64 bytes = 0; // of the file written
};

// Writes a consistent copy of `archive` to `file`, an ordinary SQLite archive of the same schema
// version that kalvo opens, checks and restores like any other. Programs may go on writing the
// archive meanwhile: the copy is the archive as it was at one moment. It is made under a temporary
// name beside `file` and renamed at the end, so a failed backup leaves nothing behind; an existing
// `file` is replaced only when `replace` says so, and never the archive itself. Throws ArchiveError.
BackupResult BackupArchive(Archive &archive, const QString &file, const BackupProgress &progress = {},
                           bool replace = false);

struct RestoreResult {
    qint64 records = 0;
    qint64 rows = 0; // of all tables
};

// Puts the content of the backup `file` into `target`, which must hold no record and no device. The
// file is only read; a backup of an older schema is brought up to date in a temporary copy. A file
// that is damaged, or holds a record whose bytes no longer match their hash, is refused before
// anything is written. All of it is written in one transaction. Throws ArchiveError.
RestoreResult RestoreArchive(Archive &target, const QString &file, const BackupProgress &progress = {});

} // namespace kalvo::archive
