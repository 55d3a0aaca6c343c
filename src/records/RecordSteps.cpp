// Steps the record readers share: asking with an eye on refusals, reading counts, saying that
// nothing was written.
#include "RecordSteps.h"

#include "RecordRetrieval.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

#include <QDir>
#include <algorithm>

namespace kalvo::records {

link::StreamLimit ListingLimit(int announced)
{
    const int entries = std::max(kStoreCapacity, announced);
    return {entries * kMaxListingRowBytes,
            QStringLiteral("%1 Einträge zu höchstens %2 Bytes").arg(entries).arg(kMaxListingRowBytes)};
}

link::StreamLimit AccessoryLimit(int announced)
{
    const int records = std::max(1, announced);
    return {records * kMaxRecordTextBytes, QStringLiteral("%1 angekündigte Protokolle zu höchstens %2 Bytes")
                                               .arg(records)
                                               .arg(kMaxRecordTextBytes)};
}

QByteArray After(const QByteArray &answer, const QByteArray &mark, qsizetype skip)
{
    return answer.mid(link::PositionOf(answer, mark) + skip);
}

QByteArray PartAfter(const QByteArray &command, const QByteArray &answer, const QByteArray &mark,
                     qsizetype skip)
{
    const qsizetype at = answer.indexOf(mark);
    if (at < 0)
        throw link::FormatError::ForAnswer(
            command, answer,
            QStringLiteral("den Teil des Protokolls hinter \"%1\"").arg(QLatin1String(mark)));
    return answer.mid(at + mark.size() + skip);
}

std::optional<QByteArray> Ask(link::Link &link, const QByteArray &command)
{
    const link::RefusalWatch watch(link);
    QByteArray answer = link.Exchange(command);
    if (watch.refused())
        return std::nullopt;
    return answer;
}

int ReadCount(const QByteArray &command, const QByteArray &answer, const QByteArray &mark)
{
    const std::optional<qint64> count = link::WholeNumber(After(answer, mark), 0, kMaxRecords);
    if (!count)
        throw link::FormatError::ForAnswer(command, answer,
                                           QStringLiteral("eine Anzahl von 0 bis %1 hinter \"%2\"")
                                               .arg(kMaxRecords)
                                               .arg(QLatin1String(mark)));
    return static_cast<int>(*count);
}

void TellNothingWritten(link::Prompter &prompter, const link::RefusalWatch &watch, const QString &unwritten)
{
    const QString what =
        unwritten.isEmpty()
            ? QStringLiteral("es wurde nichts geschrieben")
            : QStringLiteral("%1 wurde nicht geschrieben").arg(QDir::toNativeSeparators(unwritten));
    prompter.message(QStringLiteral("Der Kalvomer hat %1 abgelehnt: %2.").arg(watch.Describe(), what),
                     link::Prompter::Icon::Warning);
}

RetrievalResult RefusedRead(link::Prompter &prompter, const link::RefusalWatch &watch,
                            const QString &unwritten)
{
    TellNothingWritten(prompter, watch, unwritten);
    return {RetrievalStatus::Refused, {}};
}

} // namespace kalvo::records
