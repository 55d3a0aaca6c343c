// Reading test records from the tester's store and the KYM accessory.
#include "RecordRetrieval.h"

#include "RecordFiles.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

#include <limits>

namespace kalvo::records {

namespace {

constexpr qsizetype kTrailerLength = 4; // "." CR LF DC1 behind every part
constexpr qsizetype kFillerLength = 8;
const QByteArray kFillerText = "XXXXXXXX";

QString AnswerTo(const QByteArray &command)
{
    return QStringLiteral("Antwort auf %1").arg(QString::fromLatin1(command));
}

// The text behind the first `mark`; a missing mark gives the whole answer, as the position
// arithmetic of the record readers always has.
QByteArray After(const QByteArray &answer, const QByteArray &mark, qsizetype skip = 0)
{
    return answer.mid(link::PositionOf(answer, mark) + skip);
}

// Appends one part and cuts the 4-character trailer off the record. A part that is shorter than
// its trailer would eat record data, so the read stops there instead.
void AppendPart(QByteArray &record, const QByteArray &part, const QByteArray &command)
{
    if (part.size() < kTrailerLength)
        throw link::FormatError(AnswerTo(command), 0,
                                QStringLiteral("mindestens %1 Zeichen hinter der Marke").arg(kTrailerLength));
    record += part;
    record.chop(kTrailerLength);
}

QByteArray FillerPart(const QByteArray &answer, FillerRule rule)
{
    if (rule == FillerRule::Position)
        return After(answer, ":", kFillerLength);
    // Without the literal filler the position counts as 0 and the 8 characters are skipped.
    const qsizetype at = answer.indexOf(kFillerText);
    return answer.mid((at < 0 ? 0 : at) + kFillerLength);
}

// The leading number of `text` as a count or record number: 0 where there is none, as the record
// readers always have read it; a number beyond an int is an answer that cannot be used.
int NumberIn(const QByteArray &text, const QByteArray &command, const QByteArray &answer)
{
    const double value = link::NumericValue(text);
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
        throw link::FormatError::ForAnswer(
            command, answer, QStringLiteral("eine Zahl bis %1").arg(std::numeric_limits<int>::max()));
    return static_cast<int>(value);
}

void Notify(const RecordCallback &onRecord, int number, const QByteArray &record)
{
    if (onRecord)
        onRecord(number, record);
}

// Reads records 1..count and writes them to `path`; the file appears only when all have been read.
RetrievalResult ReadAllInto(link::Link &link, const QString &path, int count, FillerRule rule,
                            const RecordCallback &onRecord)
{
    RetrievalResult result{RetrievalStatus::Done, {}};
    for (int i = 1; i <= count; ++i) {
        result.records << ReadRecord(link, i, rule);
        Notify(onRecord, i, result.records.last());
    }
    WriteRecordFile(path, result.records);
    return result;
}

RetrievalResult NoRecords(link::Prompter &prompter, const QString &text)
{
    prompter.message(text, link::Prompter::Icon::Information);
    return {RetrievalStatus::NoRecords, {}};
}

} // namespace

int CountRecords(link::Link &link)
{
    const QByteArray answer = link.Exchange("prx?n");
    return NumberIn(After(answer, "=").trimmed(), "prx?n", answer);
}

QByteArray ReadRecord(link::Link &link, int index, FillerRule rule)
{
    const QByteArray number = QByteArray::number(index);
    QByteArray record;
    const QByteArray x = "prx?" + number + 'x';
    AppendPart(record, After(link.Exchange(x), ":"), x);
    for (const char part : {'y', 'z'}) {
        const QByteArray command = "prx?" + number + part;
        AppendPart(record, FillerPart(link.Exchange(command), rule), command);
    }
    return record + kRecordEnd;
}

bool HasCurrentRecord(link::Link &link)
{
    return link.Exchange("prx?").contains(".Y");
}

QByteArray ReadCurrentRecordParts(link::Link &link)
{
    QByteArray record;
    for (const char *command : {"prx?x", "prx?y", "prx?z"})
        AppendPart(record, After(link.Exchange(command), "="), command);
    return record + kRecordEnd;
}

std::optional<QByteArray> ReadCurrentRecord(link::Link &link)
{
    if (!HasCurrentRecord(link))
        return std::nullopt;
    return ReadCurrentRecordParts(link);
}

RetrievalResult StoreAllRecords(link::Link &link, link::Prompter &prompter, const RecordCallback &onRecord)
{
    const QString path = prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return {};
    const int count = CountRecords(link);
    // Unlike the old program, an empty store leaves no empty file behind (and an old file intact).
    if (count <= 0)
        return NoRecords(prompter, kNoRecordsText);
    return ReadAllInto(link, path, count, FillerRule::Position, onRecord);
}

RetrievalResult StoreCurrentRecord(link::Link &link, link::Prompter &prompter)
{
    if (!HasCurrentRecord(link))
        return NoRecords(prompter, kNoRecordsText);
    const QString path = prompter.askSaveFile(kRecordFileFilterAfterRead);
    if (path.isEmpty())
        return {};
    RetrievalResult result{RetrievalStatus::Done, {ReadCurrentRecordParts(link)}};
    WriteRecordFile(path, result.records);
    return result;
}

RetrievalResult ReadProtocols(link::Link &link, link::Prompter &prompter, const RecordCallback &onRecord)
{
    const int count = CountRecords(link);
    if (!prompter.confirm(QString::number(count) + QStringLiteral(" Protokolle gespeichert")))
        return {};
    const QString path = prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return {};
    // The old service form wrote an empty file here; an empty store is said instead.
    if (count <= 0)
        return NoRecords(prompter, kNoRecordsText);
    return ReadAllInto(link, path, count, FillerRule::Literal, onRecord);
}

StoreListing ParseStoreListing(const QByteArray &listing)
{
    StoreListing result;
    const QList<QByteArray> fields = listing.split(';');
    // The text behind the last ";" is the end of the stream (line end, DC1), not a field.
    const qsizetype count = fields.size() - 1;
    for (qsizetype i = 0; i < count; ++i) {
        if (i % StoreListing::kRowFields == 0)
            result.rows.append(QList<QByteArray>());
        result.rows.last().append(link::StripControlChars(fields[i]));
    }
    // An empty store answers with a stub, not with a row of data.
    if (result.rows.isEmpty() || result.rows[0].value(0).size() <= 10)
        return result;
    for (const QList<QByteArray> &row : std::as_const(result.rows)) {
        const QByteArray &entry = row.value(0);
        if (entry.isEmpty() || entry.contains("DATABASE"))
            continue;
        const int number = NumberIn(After(entry, "="), "prx?nx", entry);
        result.records << link::ConvertDisplayText(row.value(3)) + QLatin1Char(':') + QString::number(number);
    }
    return result;
}

StoreListing ReadStoreListing(link::Link &link, const QString &protoPath)
{
    // The listing may come in several chunks; the answer is complete with the chunk holding DC1.
    const QByteArray listing = link.Exchange("prx?nx");
    WriteBytesFile(protoPath, listing);
    return ParseStoreListing(listing);
}

QList<QByteArray> SplitAccessoryStream(const QByteArray &stream)
{
    QList<QByteArray> records;
    QByteArray record;
    bool ending = false;
    int endCounter = 0;
    for (char ch : stream) {
        if (ch == '\x13')
            ch = ';';
        if (ch == '$')
            ending = true;
        if (ending) {
            if (endCounter == 3) {
                records << record + "\r\n";
                record.clear();
                ending = false;
                endCounter = 0;
            } else {
                ++endCounter;
            }
        }
        // Kept as the tester's bytes, but only those that the display would show: the record text
        // must stay one line and read the same as the old program's.
        if (!link::ConvertDisplayChar(static_cast<unsigned char>(ch)).isEmpty())
            record.append(ch);
    }
    return records;
}

RetrievalResult ReadAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                     const RecordCallback &onRecord)
{
    if (!link.Exchange("idn?").contains(kAccessoryIdentity)) {
        prompter.message(kNoAccessoryText, link::Prompter::Icon::Information);
        return {RetrievalStatus::NoAccessory, {}};
    }
    const QByteArray waiting = link.Exchange("esr?");
    if (link::NumericValue(After(waiting, ";")) < 1)
        return NoRecords(prompter, kNoAccessoryRecordsText);

    RetrievalResult result{RetrievalStatus::Done, SplitAccessoryStream(link.Exchange("wer?"))};
    for (qsizetype i = 0; i < result.records.size(); ++i)
        Notify(onRecord, static_cast<int>(i + 1), result.records[i]);
    WriteRecordFile(logTmpPath, result.records);
    return result;
}

} // namespace kalvo::records
