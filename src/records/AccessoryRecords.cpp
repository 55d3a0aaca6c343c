// Reading the records of the KYM accessory: its identity, its count and the "wer?" stream, taken
// apart record by record as it arrives.
#include "RecordFiles.h"
#include "RecordRetrieval.h"
#include "RecordSteps.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

namespace kalvo::records {

namespace {

const QByteArray kStreamCommand = "wer?";
constexpr char kFieldSeparator = '\x13';

// Walks the stream character by character as it arrives: a "$" and the two characters after it
// end a record, the character behind them opens the next one. A record's bytes pass the display
// conversion once it is complete; the conversion works byte by byte, so that gives the same as
// converting each character as it comes.
class AccessorySplitter {
public:
    void Feed(const QByteArray &chunk)
    {
        for (char ch : chunk) {
            if (ch == kFieldSeparator)
                ch = ';';
            if (ch == '$')
                m_ending = true;
            if (m_ending) {
                if (m_endCounter == 3) {
                    m_records << link::ConvertDisplayBytes(m_record) + "\r\n";
                    m_record.clear();
                    m_ending = false;
                    m_endCounter = 0;
                } else {
                    ++m_endCounter;
                }
            }
            m_record.append(ch);
        }
    }
    const QList<QByteArray> &records() const { return m_records; }
    // What is left of a record that never ended, as it would have been kept.
    QByteArray unfinished() const { return link::ConvertDisplayBytes(m_record); }

private:
    QList<QByteArray> m_records;
    QByteArray m_record;
    bool m_ending = false;
    int m_endCounter = 0;
};

} // namespace

QList<QByteArray> SplitAccessoryStream(const QByteArray &stream)
{
    AccessorySplitter splitter;
    splitter.Feed(stream);
    return splitter.records();
}

RetrievalResult ReadAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                     const RecordCallback &onRecord)
{
    const link::RefusalWatch watch(link);
    const std::optional<QByteArray> identity = Ask(link, "idn?");
    if (!identity)
        return RefusedRead(prompter, watch, logTmpPath);
    if (!identity->contains(kAccessoryIdentity)) {
        prompter.message(kNoAccessoryText, link::Prompter::Icon::Information);
        return {RetrievalStatus::NoAccessory, {}};
    }
    const std::optional<QByteArray> waiting = Ask(link, "esr?");
    if (!waiting)
        return RefusedRead(prompter, watch, logTmpPath);
    const int count = ReadCount("esr?", *waiting, ";");
    if (count < 1) {
        prompter.message(kNoAccessoryRecordsText, link::Prompter::Icon::Information);
        return {RetrievalStatus::NoRecords, {}};
    }

    AccessorySplitter splitter;
    // The time-out bounds each wait for more of the stream, not the whole of it.
    const QByteArray stream = link.ExchangeStream(
        kStreamCommand,
        [&](const QByteArray &chunk) {
            splitter.Feed(chunk);
            prompter.progress(
                static_cast<int>(std::min<qsizetype>(100, splitter.records().size() * 100 / count)));
        },
        AccessoryLimit(count));
    if (watch.refused())
        return RefusedRead(prompter, watch, logTmpPath);
    // A stream without a whole record, or one that stops inside a record, would replace the last
    // good log.tmp with less than the accessory holds.
    if (splitter.records().isEmpty() || !splitter.unfinished().isEmpty())
        throw link::FormatError::ForAnswer(kStreamCommand, stream,
                                           QStringLiteral("Protokolle, jedes mit \"$FF\" abgeschlossen"));

    RetrievalResult result{RetrievalStatus::Done, splitter.records()};
    for (qsizetype i = 0; i < result.records.size(); ++i)
        if (onRecord)
            onRecord(static_cast<int>(i + 1), result.records[i]);
    WriteRecordFile(logTmpPath, result.records);
    return result;
}

} // namespace kalvo::records
