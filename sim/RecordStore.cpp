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

RecordStore::RecordStore() : m_accessory(SampleAccessoryRecords())
{
    setRecords(SampleTestRecords());
    const QList<QByteArray> stored = records();
    if (!stored.isEmpty())
        m_current = stored.last();
}

QList<QByteArray> RecordStore::records() const
{
    QList<QByteArray> list;
    for (const Entry &entry : m_entries) {
        if (!entry.specification)
            list << entry.record;
    }
    return list;
}

void RecordStore::setRecords(const QList<QByteArray> &records)
{
    m_entries.removeIf([](const Entry &entry) { return !entry.specification; });
    for (const QByteArray &record : records)
        m_entries.append({record, std::nullopt});
}

void RecordStore::KeepFirst(int count)
{
    if (count >= 0)
        setRecords(records().mid(0, count));
}

std::optional<QByteArray> RecordStore::Record(int number) const
{
    if (number < 1 || number > count() || m_entries[number - 1].specification)
        return std::nullopt;
    return m_entries[number - 1].record;
}

std::optional<QByteArray> RecordStore::EntryPart(int number, int part) const
{
    if (number < 1 || number > count() || part < 0 || part >= kParts)
        return std::nullopt;
    const Entry &entry = m_entries[number - 1];
    return entry.specification ? entry.specification->Part(number, part, !m_oddParts)
                               : Part(entry.record, part, m_oddParts);
}

QList<Specification> RecordStore::specifications() const
{
    QList<Specification> list;
    for (const Entry &entry : m_entries) {
        if (entry.specification)
            list << *entry.specification;
    }
    return list;
}

void RecordStore::setSpecifications(const QList<Specification> &specifications)
{
    m_entries.removeIf([](const Entry &entry) { return entry.specification.has_value(); });
    for (qsizetype i = 0; i < specifications.size(); ++i)
        m_entries.insert(i, {{}, specifications[i]});
}

bool RecordStore::Add(const QByteArray &argument)
{
    if (argument.startsWith('&')) {
        if (!m_pending || !m_pending->Continue(argument))
            return false;
    } else {
        m_pending = Specification::FromFirstChunk(argument);
        if (!m_pending || count() >= kCapacity) {
            m_pending.reset();
            return false;
        }
    }
    if (m_pending->complete()) {
        m_entries.append({{}, *m_pending});
        m_pending.reset();
    }
    return true;
}

bool RecordStore::Remove(int number)
{
    if (number < 1 || number > count())
        return false;
    m_entries.removeAt(number - 1);
    return true;
}

QByteArray RecordStore::Part(const QByteArray &record, int part, bool emptyLast)
{
    QByteArray text = record;
    if (text.endsWith(RecordText::kEndMark))
        text.chop(static_cast<qsizetype>(sizeof(RecordText::kEndMark) - 1));
    // The tester cuts where its send buffer is full, not at fields: a third each, the rest in the last.
    const qsizetype first = text.size() / kParts;
    const qsizetype second = emptyLast ? text.size() : text.size() * 2 / kParts + 1;
    const qsizetype cuts[kParts + 1] = {0, first, std::min(second, text.size()), text.size()};
    return text.mid(cuts[part], cuts[part + 1] - cuts[part]);
}

QByteArray RecordStore::Listing() const
{
    QByteArray listing;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        const QByteArray number = QByteArray::number(i + 1);
        if (const auto &spec = m_entries[i].specification) {
            listing += ListingRow({"DATABASE  Nr=" + number,
                                   spec->date,
                                   spec->time,
                                   spec->label,
                                   "Pr\x81"
                                   "fvorschrift",
                                   RecordText::RegulationName(spec->regulation()),
                                   {}});
            continue;
        }
        const RecordText record(m_entries[i].record);
        listing += ListingRow({"PROTOKOLL Nr=" + number, record.Field(5), record.Field(6), record.Field(3),
                               record.Field(4), record.RegulationName(), record.Verdict()});
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
