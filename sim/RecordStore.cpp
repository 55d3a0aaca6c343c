// The tester's record store: test records, test specifications, the current record, and the records
// the KYM accessory holds; and the forms they travel in.
#include "RecordStore.h"

#include "RecordText.h"
#include "SampleRecords.h"

namespace kalvo::sim {

namespace {
constexpr int kListingFields = 13;
constexpr char kAccessorySeparator = '\x13';

QByteArray ListingRow(const QList<QByteArray> &fields)
{
    QByteArray row;
    for (int i = 0; i < kListingFields; ++i)
        row += fields.value(i) + ';';
    return row;
}
} // namespace

RecordStore::RecordStore()
    : m_records(SampleTestRecords()), m_specifications(SampleSpecifications()),
      m_accessory(SampleAccessoryRecords())
{
    if (!m_records.isEmpty())
        m_current = m_records.last();
}

void RecordStore::KeepFirst(int count)
{
    if (count >= 0 && count < m_records.size())
        m_records.resize(count);
}

std::optional<QByteArray> RecordStore::Record(int number) const
{
    if (number < 1 || number > m_records.size())
        return std::nullopt;
    return m_records[number - 1];
}

QByteArray RecordStore::Part(const QByteArray &record, int part)
{
    QByteArray text = record;
    if (text.endsWith(RecordText::kEndMark))
        text.chop(static_cast<qsizetype>(sizeof(RecordText::kEndMark) - 1));
    // The tester cuts where its send buffer is full, not at fields: a third each, the rest in the last.
    const qsizetype first = text.size() / kParts;
    const qsizetype second = text.size() * 2 / kParts + 1;
    const qsizetype cuts[kParts + 1] = {0, first, std::min(second, text.size()), text.size()};
    return text.mid(cuts[part], cuts[part + 1] - cuts[part]);
}

QByteArray RecordStore::Listing() const
{
    QByteArray listing;
    for (qsizetype i = 0; i < m_specifications.size(); ++i) {
        const Specification &spec = m_specifications[i];
        listing += ListingRow({"DATABASE  Nr=" + QByteArray::number(i + 1),
                               spec.date,
                               spec.time,
                               spec.name,
                               "Pr\x81"
                               "fvorschrift",
                               RecordText::RegulationName(spec.regulation),
                               {}});
    }
    for (qsizetype i = 0; i < m_records.size(); ++i) {
        const RecordText record(m_records[i]);
        listing += ListingRow({"PROTOKOLL Nr=" + QByteArray::number(i + 1), record.Field(5), record.Field(6),
                               record.Field(3), record.Field(4), record.RegulationName(), record.Verdict()});
    }
    return listing;
}

QByteArray RecordStore::AccessoryStream() const
{
    QByteArray stream;
    for (const QByteArray &stored : m_accessory) {
        QByteArray record = stored;
        record[0] = 'K';
        record.replace(';', kAccessorySeparator);
        stream += record;
    }
    return stream;
}

} // namespace kalvo::sim
