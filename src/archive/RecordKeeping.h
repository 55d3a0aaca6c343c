// Records the program reads go into the archive as well as where they went before, unless the user
// switched that off.
#pragma once

#include "ArchiveTypes.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace kalvo::archive {

struct KeepOutcome {
    bool kept = false;    // imported (some may have been refused, see messages)
    bool failed = false;  // the archive could not be opened or written: nothing of these kept
    QStringList messages; // for the user: records not kept and why, or why the archive failed
};

// Imports `records` into the archive `url` names, or when it is empty into the one of the user
// settings (not at all when the settings switched the archive off); `switchedOff` (--no-archive)
// keeps them out. Never throws: a failing archive must not spoil a read that went well.
KeepOutcome KeepReadRecords(const QList<QByteArray> &records, const RecordSource &source,
                            const QString &url = QString(), bool switchedOff = false);

// Whether KeepReadRecords would keep records now: not `switchedOff`, and `url` given or the archive
// of the user settings switched on.
bool KeepingRecords(const QString &url = QString(), bool switchedOff = false);

// Keeps records that are about to be deleted from the tester: an empty text when every one of them
// is in the archive, otherwise why not. A record the archive refuses counts as not kept: deleted,
// it would be lost.
QString KeepBeforeDeleting(const QList<QByteArray> &records, const RecordSource &source,
                           const QString &url = QString());

} // namespace kalvo::archive
