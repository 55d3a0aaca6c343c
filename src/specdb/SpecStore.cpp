// The tester's record store as the database window reads it: every record's fields, test
// specifications told from test records, and the list the window shows.
#include "SpecStore.h"

#include "SpecDecoding.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "records/RecordFiles.h"
#include "records/RecordSteps.h"

namespace kalvo::specdb {

namespace {

constexpr char kPartLetters[] = {'x', 'y', 'z'};
const QByteArray kAnswerEnd = QByteArray(">") + link::kDC1;
constexpr qsizetype kTrailer = 4;
const QByteArray kFiller = ":XXXXXXXX";
// Marker, codes, label, date and time, then an extra field and a limit for each box.
constexpr qsizetype kSpecificationFields = LimitField(kLimitBoxes) + 1;

// The text of an answer from `from` up to ">" DC1, or, without that pair, up to its 4-character
// trailer; line ends in front of it are no record text.
QByteArray PartText(const QByteArray &answer, qsizetype from)
{
    const qsizetype end = answer.indexOf(kAnswerEnd, from);
    QByteArray text = end >= 0 ? answer.mid(from, end - from) : answer.mid(from);
    if (end < 0)
        text.chop(std::min(kTrailer, text.size()));
    while (text.endsWith('\r') || text.endsWith('\n'))
        text.chop(1);
    return text;
}

// The record text of a second or third part: behind ":" and the filler; without the filler behind
// ":"; without either from its first ";".
QByteArray ContinuationText(const QByteArray &answer)
{
    const qsizetype filler = answer.indexOf(kFiller);
    if (filler >= 0)
        return PartText(answer, filler + kFiller.size());
    const qsizetype colon = answer.indexOf(':');
    if (colon >= 0)
        return PartText(answer, colon + 1);
    const qsizetype separator = answer.indexOf(';');
    return separator < 0 ? QByteArray() : PartText(answer, separator);
}

QByteArray Kept(const QByteArray &field)
{
    QByteArray kept;
    for (const char c : field) {
        if (KeepStoreChar(static_cast<unsigned char>(c)) && kept.size() < kKeptFieldBytes)
            kept += c;
    }
    return kept;
}

bool IsSpecificationFields(const QList<QByteArray> &fields)
{
    // Exactly as the tester marks them: a test record's text may well hold "Database".
    return !fields.isEmpty() && fields[0].contains("DATABASE");
}

QString EntryFor(int number, const QList<QByteArray> &fields)
{
    const QString name = link::ConvertDisplayText(fields.value(2));
    return IsSpecificationFields(fields) ? QStringLiteral("%1: %2").arg(number).arg(name)
                                         : QStringLiteral("%1:measured: %2").arg(number).arg(name);
}

} // namespace

bool SpecStore::IsSpecification(int number) const
{
    return number >= 1 && number <= count() && IsSpecificationFields(records[number - 1]);
}

bool KeepStoreChar(unsigned char c)
{
    const bool kept = c == ' ' || (c >= 43 && c <= 63) || (c >= 65 && c <= 122) || c == 234;
    return kept && !link::ConvertDisplayChar(c).isEmpty();
}

void SpecStore::AppendStored(const SpecRecord &record, const QByteArray &label)
{
    records << StoredFields(record, label);
    limits << record.limits;
    entries << QStringLiteral("%1: %2").arg(count()).arg(QString::fromLatin1(label));
}

std::optional<BoxTexts> PlaceLimits(const QByteArray &first, const QByteArray &second,
                                    const QByteArray &third)
{
    std::optional<QList<QByteArray>> placed;
    int joins = 0;
    for (const bool ownSecond : {false, true}) {
        for (const bool ownThird : {false, true}) {
            if ((ownSecond && !second.startsWith(';')) || (ownThird && !third.startsWith(';')))
                continue;
            const QByteArray joined = first + second.mid(ownSecond ? 1 : 0) + third.mid(ownThird ? 1 : 0);
            if (joined.count(';') + 1 != kSpecificationFields)
                continue;
            ++joins;
            placed = joined.split(';');
        }
    }
    if (joins != 1)
        return std::nullopt;
    BoxTexts limits;
    for (int box = 1; box <= kLimitBoxes; ++box)
        limits[static_cast<size_t>(box)] = Kept(placed->at(LimitField(box)));
    return limits;
}

QByteArray AppendRecordPart(QList<QByteArray> &fields, const QByteArray &answer)
{
    const qsizetype start = answer.indexOf(';');
    if (start < 0)
        return {};
    const QByteArray text = PartText(answer, start + 1);
    if (fields.isEmpty())
        fields.append(QByteArray());
    for (const char c : std::as_const(text)) {
        if (c == ';') {
            if (fields.size() < kKeptFields)
                fields.append(QByteArray());
            else
                break; // nothing behind the kept fields is read
            continue;
        }
        QByteArray &field = fields.last();
        if (KeepStoreChar(static_cast<unsigned char>(c)) && field.size() < kKeptFieldBytes)
            field += c;
    }
    return text;
}

std::optional<SpecStore> ReadSpecStore(link::Link &link, link::Prompter &prompter, const QString &tracePath)
{
    const link::RefusalWatch watch(link);
    SpecStore store;
    const QByteArray countCommand = "prx?n";
    const QByteArray countAnswer = link.Exchange(countCommand);
    if (watch.refused()) {
        records::TellNothingWritten(prompter, watch, tracePath);
        return std::nullopt;
    }
    if (!countAnswer.toUpper().contains("PRX")) {
        store.unanswered = true;
        return store;
    }
    const int count = records::ReadCount(countCommand, countAnswer, "=");
    QByteArray trace;
    for (int i = 1; i <= count; ++i) {
        QList<QByteArray> fields;
        std::array<QByteArray, 3> texts; // the record text of each part, for placing the limits
        for (const char letter : kPartLetters) {
            const QByteArray command = "prx?" + QByteArray::number(i) + letter;
            // A test record's text may hold "Protokoll" and ".N": only the words in front of ":"
            // can be the tester's refusal.
            const link::RefusalWatch partWatch(link);
            const QByteArray answer = link.ExchangeData(command, ":");
            if (partWatch.refused())
                continue; // refused: said so, and nothing is written or listed at the end
            // A part's fields stand behind a ";", its record text behind ":". A part without ";"
            // (the empty last part of a record) adds nothing; one with neither mark is no part.
            if (!answer.contains(';') && !answer.contains(':'))
                throw link::FormatError::ForAnswer(command, answer,
                                                   QStringLiteral("einen Teil des Datensatzes hinter \":\""));
            const QByteArray text = AppendRecordPart(fields, answer);
            // Held while this record is read, and no more of it than a record's kept fields.
            const QByteArray record = letter == 'x' ? text : ContinuationText(answer);
            texts[static_cast<size_t>(letter - 'x')] = record.left(kKeptFields * kKeptFieldBytes);
            // As much of the text as a record can hold in its kept fields: the trace stays bounded.
            trace += QByteArray::number(i) + ' ' + char(letter - 'a' + 'A') + ' ' +
                     text.left(kKeptFields * kKeptFieldBytes) + "\r\n";
        }
        prompter.progress(i * 100 / count);
        store.records << fields;
        store.entries << EntryFor(i, fields);
        const bool specification = IsSpecificationFields(fields);
        store.limits << (specification ? PlaceLimits(texts[0], texts[1], texts[2]) : std::nullopt);
        if (!specification)
            store.holdsTestRecords = true;
    }
    if (watch.refused()) {
        records::TellNothingWritten(prompter, watch, tracePath);
        return std::nullopt;
    }
    // The trace is for looking into afterwards: a folder that takes no file costs the list nothing.
    try {
        records::WriteBytesFile(tracePath, trace);
    } catch (const link::FormatError &error) {
        prompter.message(error.message(), link::Prompter::Icon::Warning);
    }
    return store;
}

} // namespace kalvo::specdb
