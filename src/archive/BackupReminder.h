// When an archive was last backed up, kept in the user settings, and whether that is too long ago.
#pragma once

#include "ArchiveLocation.h"

#include <QDateTime>

namespace kalvo::archive {

constexpr int kBackupReminderDays = 30;

// The last backup of the archive at `target` made on this PC by this user; invalid when none.
QDateTime LastBackup(const ArchiveTarget &target);
void RememberBackup(const ArchiveTarget &target, const QDateTime &when);

// Whether to remind the user: an archive that holds records and was never backed up, or not for
// kBackupReminderDays.
bool BackupIsDue(const QDateTime &lastBackup, const QDateTime &now, bool holdsRecords);

} // namespace kalvo::archive
