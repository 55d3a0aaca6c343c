// Reading test records from the tester's store: the count, one record, the current record, and
// the operations that put them into a record file.
#include "RecordRetrieval.h"

#include "RecordFiles.h"
#include "RecordSteps.h"

#include "link/Errors.h"
#include "link/Link.h"

namespace kalvo::records {

namespace {

constexpr qsizetype kTrailerLength = 4; // "." CR LF DC1 behind every part
constexpr qsizetype kFillerLength = 8;
const QByteArray kFillerText = "XXXXXXXX";

// Appends one part and cuts the 4-character trailer off the record. A part that is shorter than
// its trailer would eat record data, so the read stops there instead.
void AppendPart(QByteArray &record, const QByteArray &part, const QByteArray &command,
                const QByteArray &answer)
{
    if (part.size() < kTrailerLength)
        throw link::FormatError::ForAnswer(
            command, answer, QStringLiteral("mindestens %1 Zeichen hinter der Marke").arg(kTrailerLength));
    record += part;
    record.chop(kTrailerLength);
}

QByteArray FillerPart(const QByteArray &command, const QByteArray &answer, FillerRule rule)
{
    if (rule == FillerRule::Position)
        return PartAfter(command, answer, ":", kFillerLength);
    return PartAfter(command, answer, kFillerText);
}

// The three parts of a record, each cut by `cut`; nullopt when any of them was refused. A refused
// part is not taken apart: its text is the tester's complaint, not record data.
template <typename Cut>
std::optional<QByteArray> ReadParts(link::Link &link, const QByteArray &prefix, Cut cut)
{
    QByteArray record;
    bool refused = false;
    for (const char part : {'x', 'y', 'z'}) {
        const QByteArray command = prefix + part;
        const std::optional<QByteArray> answer = Ask(link, command);
        if (!answer)
            refused = true;
        else if (!refused)
            AppendPart(record, cut(part, command, *answer), command, *answer);
    }
    if (refused)
        return std::nullopt;
    return record + kRecordEnd;
}

RetrievalResult NoRecords(link::Prompter &prompter)
{
    prompter.message(kNoRecordsText, link::Prompter::Icon::Information);
    return {RetrievalStatus::NoRecords, {}};
}

// Reads records 1..count and writes them to `path`. The file appears only when all have been read
// and nothing was refused on the way; a refused record does not stop the others from being asked for.
RetrievalResult ReadAllInto(link::Link &link, link::Prompter &prompter, const link::RefusalWatch &watch,
                            const QString &path, int count, FillerRule rule, const RecordCallback &onRecord)
{
    RetrievalResult result{RetrievalStatus::Done, {}};
    for (int i = 1; i <= count; ++i) {
        const std::optional<QByteArray> record = ReadRecord(link, i, rule);
        prompter.progress(i * 100 / count);
        if (!record)
            continue;
        result.records << *record;
        if (onRecord)
            onRecord(i, *record);
    }
    if (watch.refused())
        return RefusedRead(prompter, watch, path);
    WriteRecordFile(path, result.records);
    return result;
}

} // namespace

std::optional<int> CountRecords(link::Link &link)
{
    const std::optional<QByteArray> answer = Ask(link, "prx?n");
    if (!answer)
        return std::nullopt;
    return ReadCount("prx?n", *answer, "=");
}

std::optional<QByteArray> ReadRecord(link::Link &link, int index, FillerRule rule)
{
    return ReadParts(link, "prx?" + QByteArray::number(index),
                     [rule](char part, const QByteArray &command, const QByteArray &answer) {
                         return part == 'x' ? PartAfter(command, answer, ":")
                                            : FillerPart(command, answer, rule);
                     });
}

std::optional<QByteArray> ReadCurrentRecordParts(link::Link &link)
{
    return ReadParts(link, "prx?", [](char, const QByteArray &command, const QByteArray &answer) {
        return PartAfter(command, answer, "=");
    });
}

RetrievalResult StoreAllRecords(link::Link &link, link::Prompter &prompter, const RecordCallback &onRecord)
{
    const QString path = prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return {};
    const link::RefusalWatch watch(link);
    const std::optional<int> count = CountRecords(link);
    if (!count)
        return RefusedRead(prompter, watch, path);
    // Unlike the old program, an empty store leaves no empty file behind (and an old file intact).
    if (*count <= 0)
        return NoRecords(prompter);
    return ReadAllInto(link, prompter, watch, path, *count, FillerRule::Position, onRecord);
}

RetrievalResult StoreCurrentRecord(link::Link &link, link::Prompter &prompter)
{
    const link::RefusalWatch watch(link);
    const std::optional<QByteArray> present = Ask(link, "prx?");
    if (!present)
        return RefusedRead(prompter, watch, {});
    if (!present->contains(".Y"))
        return NoRecords(prompter);
    const QString path = prompter.askSaveFile(kRecordFileFilterAfterRead);
    if (path.isEmpty())
        return {};
    const std::optional<QByteArray> record = ReadCurrentRecordParts(link);
    if (!record)
        return RefusedRead(prompter, watch, path);
    WriteRecordFile(path, {*record});
    return {RetrievalStatus::Done, {*record}};
}

RetrievalResult ReadProtocols(link::Link &link, link::Prompter &prompter, const RecordCallback &onRecord)
{
    const link::RefusalWatch watch(link);
    const std::optional<int> count = CountRecords(link);
    // Without a count there is nothing to confirm; no file has been asked for yet.
    if (!count)
        return RefusedRead(prompter, watch, {});
    if (!prompter.confirm(QString::number(*count) + QStringLiteral(" Protokolle gespeichert")))
        return {};
    const QString path = prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return {};
    // The old service form wrote an empty file here; an empty store is said instead.
    if (*count <= 0)
        return NoRecords(prompter);
    return ReadAllInto(link, prompter, watch, path, *count, FillerRule::Literal, onRecord);
}

} // namespace kalvo::records
