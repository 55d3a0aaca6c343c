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
    const ArchiveSettings settings = ReadArchiveSettings();
    if (url.isEmpty() && !settings.enabled)
        return outcome;
    try {
        Archive archive(ParseArchiveUrl(url.isEmpty() ? settings.url : url));
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

} // namespace kalvo::archive
