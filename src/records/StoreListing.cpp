// The store listing ("prx?nx"): taken apart row by row as it streams in, test records told from
// test specifications.
#include "RecordFiles.h"
#include "RecordRetrieval.h"
#include "RecordSteps.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

namespace kalvo::records {

namespace {

const QByteArray kListingCommand = "prx?nx";
// An entry of field 0 longer than this in the first row means the listing holds data; an empty
// store answers with a stub.
constexpr qsizetype kStubLength = 10;

// Takes the listing apart chunk by chunk, so that progress can be told while it streams in.
class ListingParser {
public:
    explicit ListingParser(ListingEntrySink onEntry = {}) : m_onEntry(std::move(onEntry)) {}

    void Feed(const QByteArray &chunk)
    {
        for (const char ch : chunk) {
            if (ch == ';')
                EndField();
            // Control characters (line ends, DC1) are part of no field.
            else if (static_cast<unsigned char>(ch) >= 30)
                m_field.append(ch);
        }
    }
    // Rows begun so far whose field 0 marks a test record.
    int testRecords() const { return m_testRecords; }

    // The text behind the last ";" is the end of the stream (line end, DC1), not a field.
    StoreListing Finish()
    {
        // Text without a single ";" is no listing at all, not an empty one (an empty store sends
        // nothing or a stub of fields).
        if (m_rows.isEmpty() && !m_field.trimmed().isEmpty())
            throw link::FormatError::ForAnswer(kListingCommand, m_field,
                                               QStringLiteral("Felder, jedes mit \";\" abgeschlossen"));
        StoreListing result;
        result.rows = std::move(m_rows);
        if (result.rows.isEmpty() || result.rows[0].value(0).size() <= kStubLength)
            return result;
        for (const QList<QByteArray> &row : std::as_const(result.rows)) {
            if (!IsTestRecord(row.value(0)))
                continue;
            const std::optional<qint64> number = RecordNumber(row);
            if (!number)
                throw link::FormatError::ForAnswer(
                    kListingCommand, row.value(0),
                    QStringLiteral("eine Protokollnummer von 1 bis %1 hinter \"=\"").arg(kMaxRecords));
            result.records << EntryText(row, *number);
            result.numbers << static_cast<int>(*number);
        }
        return result;
    }

private:
    static std::optional<qint64> RecordNumber(const QList<QByteArray> &row)
    {
        return link::WholeNumber(After(row.value(0), "="), 1, kMaxRecords);
    }
    static QString EntryText(const QList<QByteArray> &row, qint64 number)
    {
        // The device's id as it stands: "#" and "@" are part of it, as they are of a record's fields.
        return link::DecodeRecordText(row.value(3)) + QLatin1Char(':') + QString::number(number);
    }
    // A test record is passed on once its name (field 3) is complete; Finish() has the last word.
    void TellEntry()
    {
        const QList<QByteArray> &row = m_rows.last();
        if (!m_onEntry || m_rows[0].value(0).size() <= kStubLength || !IsTestRecord(row.value(0)))
            return;
        if (const std::optional<qint64> number = RecordNumber(row))
            m_onEntry(EntryText(row, *number), static_cast<int>(*number));
    }

    // Only field 0 says what a row is; a device called "DATABASE-X" is still a test record.
    static bool IsTestRecord(const QByteArray &entry)
    {
        return !entry.isEmpty() && !entry.toUpper().contains("DATABASE");
    }

    void EndField()
    {
        if (m_fieldNumber % StoreListing::kRowFields == 0) {
            m_rows.append(QList<QByteArray>());
            if (IsTestRecord(m_field))
                ++m_testRecords;
        }
        m_rows.last().append(std::exchange(m_field, {}));
        if (m_fieldNumber % StoreListing::kRowFields == 3)
            TellEntry();
        ++m_fieldNumber;
    }

    ListingEntrySink m_onEntry;

    QList<QList<QByteArray>> m_rows;
    QByteArray m_field;
    qsizetype m_fieldNumber = 0;
    int m_testRecords = 0;
};

} // namespace

StoreListing ParseStoreListing(const QByteArray &listing)
{
    ListingParser parser;
    parser.Feed(listing);
    return parser.Finish();
}

std::optional<StoreListing> ReadStoreListing(link::Link &link, link::Prompter &prompter,
                                             const QString &protoPath, int expectedRecords,
                                             const ListingEntrySink &onEntry)
{
    const link::RefusalWatch watch(link);
    ListingParser parser(onEntry);
    // The listing comes in chunks; the time-out bounds each wait for more, not the whole listing.
    const QByteArray listing = link.ExchangeStream(
        kListingCommand,
        [&](const QByteArray &chunk) {
            parser.Feed(chunk);
            // The count of "prx?n" is what the listing is known to hold; specifications are not counted,
            // and the last percent waits for the end of the stream.
            if (expectedRecords > 0)
                prompter.progress(std::min(99, parser.testRecords() * 100 / expectedRecords));
        },
        ListingLimit(expectedRecords));
    if (watch.refused()) {
        TellNothingWritten(prompter, watch, protoPath);
        return std::nullopt;
    }
    StoreListing result = parser.Finish();
    WriteBytesFile(protoPath, listing);
    prompter.progress(100);
    return result;
}

ListingResult ListStoreRecords(link::Link &link, link::Prompter &prompter, const QString &protoPath,
                               const ListingEntrySink &onEntry)
{
    const link::RefusalWatch watch(link);
    const std::optional<int> count = CountRecords(link);
    if (!count) {
        TellNothingWritten(prompter, watch, protoPath);
        return {RetrievalStatus::Refused, {}};
    }
    if (*count < 1) {
        prompter.message(kNoRecordsText, link::Prompter::Icon::Information);
        return {RetrievalStatus::NoRecords, {}};
    }
    std::optional<StoreListing> listing = ReadStoreListing(link, prompter, protoPath, *count, onEntry);
    if (!listing)
        return {RetrievalStatus::Refused, {}};
    return {RetrievalStatus::Done, std::move(*listing)};
}

} // namespace kalvo::records
