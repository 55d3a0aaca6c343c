// When an archive was last backed up, kept in the user settings, and whether that is too long ago.
#include "BackupReminder.h"

#include <QCryptographicHash>
#include <QSettings>

namespace kalvo::archive {

namespace {

// One key per archive: its address without the password, hashed, since a path or a server's
// address holds characters that QSettings would take for groups.
QString KeyOf(const ArchiveTarget &target)
{
    const QByteArray address = target.Describe().toUtf8();
    return QStringLiteral("archive/backups/") +
           QString::fromLatin1(QCryptographicHash::hash(address, QCryptographicHash::Sha1).toHex().left(16));
}

} // namespace

QDateTime LastBackup(const ArchiveTarget &target)
{
    QDateTime when = QDateTime::fromString(UserSettings().value(KeyOf(target)).toString(), Qt::ISODate);
    return when.isValid() ? when.toUTC() : QDateTime();
}

void RememberBackup(const ArchiveTarget &target, const QDateTime &when)
{
    QSettings settings = UserSettings();
    settings.setValue(KeyOf(target), when.toUTC().toString(Qt::ISODate));
    settings.sync();
}

bool BackupIsDue(const QDateTime &lastBackup, const QDateTime &now, bool holdsRecords)
{
    if (!holdsRecords)
        return false;
    return !lastBackup.isValid() || lastBackup.addDays(kBackupReminderDays) < now;
}

} // namespace kalvo::archive
