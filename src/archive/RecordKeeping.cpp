// Records the program reads go into the archive as well as where they went before, unless the user
// switched that off.
#include "RecordKeeping.h"

#include "Archive.h"
#include "ArchiveLocation.h"
#include "RecordImport.h"

namespace kalvo::archive {

KeepOutcome KeepReadRecords(const QList<QByteArray> &records, const RecordSource &source, const QString &url,
                            bool switchedOff)
{
    KeepOutcome outcome;
    if (records.isEmpty() || switchedOff)
        return outcome;
    if (!KeepingRecords(url))
        return outcome;
    try {
        Archive archive(ParseArchiveUrl(url.isEmpty() ? ReadArchiveSettings().url : url));
        const ImportResult result = ImportRecords(archive, records, source);
        outcome.kept = true;
        for (const QString &refused : result.refused)
            outcome.messages << QStringLiteral("Nicht ins Archiv: %1").arg(refused);
    } catch (const link::KalvoError &e) {
        outcome.failed = true;
        outcome.messages << e.message();
    }
    return outcome;
}

bool KeepingRecords(const QString &url, bool switchedOff)
{
    return !switchedOff && (!url.isEmpty() || ReadArchiveSettings().enabled);
}

QString KeepBeforeDeleting(const QList<QByteArray> &records, const RecordSource &source, const QString &url)
{
    if (records.isEmpty())
        return {};
    if (!KeepingRecords(url))
        return QStringLiteral("Das Archiv ist ausgeschaltet."); // switched off since the question
    const KeepOutcome outcome = KeepReadRecords(records, source, url);
    return outcome.failed || !outcome.messages.isEmpty() ? outcome.messages.join(QLatin1Char('\n'))
                                                         : QString();
}

} // namespace kalvo::archive
