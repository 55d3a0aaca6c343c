// The tester's record store: test records, test specifications, the current record, and the records
// the KYM accessory holds; and the forms they travel in.
#pragma once

#include "Specification.h"

#include <QByteArray>
#include <QList>
#include <optional>

namespace kalvo::sim {

class RecordStore {
public:
    static constexpr int kParts = 3; // a record goes out in three answers: x, y, z
    // The most records the store holds, test records and specifications together.
    static constexpr int kCapacity = 130;

    // Filled with the sample test records; the current record is the last of them.
    RecordStore();

    // One numbering for test records and specifications, in the order they were stored.
    int count() const { return static_cast<int>(m_entries.size()); }

    // The test records in store order. Stored form: "P" + fields 1..74, each closed by ";", then
    // "$FF" (no line end).
    QList<QByteArray> records() const;
    // Replaces the test records; the specifications stay in front of them.
    void setRecords(const QList<QByteArray> &records);
    // Keeps the first `count` test records (0: none); specifications and the current record stay.
    void KeepFirst(int count);
    // Entry 1..count when it is a test record, nullopt otherwise.
    std::optional<QByteArray> Record(int number) const;
    // Part 0..2 of entry `number`, whichever kind it is; nullopt outside 1..count.
    std::optional<QByteArray> EntryPart(int number, int part) const;
    // The odd answer style's cuts: a test record's last part empty (the rest in the second), a
    // specification's second and third parts without a ";" of their own in front.
    void setOddParts(bool on) { m_oddParts = on; }

    QList<Specification> specifications() const;
    // Replaces the specifications; they come in front of the test records.
    void setSpecifications(const QList<Specification> &specifications);
    // "prx!add " + `argument`: a first chunk begins a specification (forgetting one not finished),
    // a continuation adds to it; the 22nd item stores it behind the last entry. False, changing
    // nothing, for a malformed chunk, a continuation without its beginning, or a full store.
    bool Add(const QByteArray &argument);
    // Deletes entry `number`; the entries behind it move up one number. False outside 1..count.
    bool Remove(int number);

    // The last test made: what "prx?x" and "prn!t" without a number read.
    const std::optional<QByteArray> &current() const { return m_current; }
    void setCurrent(const std::optional<QByteArray> &record) { m_current = record; }

    // The accessory's records, in the stored form of a tester record.
    const QList<QByteArray> &accessoryRecords() const { return m_accessory; }
    void setAccessoryRecords(const QList<QByteArray> &records) { m_accessory = records; }

    // Part 0..2 of a record's text in front of "$FF"; the three joined give that text back. With
    // `emptyLast` the third part is empty and the second holds the rest.
    static QByteArray Part(const QByteArray &record, int part, bool emptyLast = false);
    // 13 fields a row, each closed by ";", one row an entry in store order.
    QByteArray Listing() const;
    // The accessory's records back to back: "K", the fields separated by character 19, "$FF".
    QByteArray AccessoryStream() const;

private:
    struct Entry {
        QByteArray record; // a test record, unless it is a specification
        std::optional<Specification> specification;
    };
    QList<Entry> m_entries;
    std::optional<Specification> m_pending; // begun by a first chunk, not yet complete
    std::optional<QByteArray> m_current;
    QList<QByteArray> m_accessory;
    bool m_oddParts = false;
};

} // namespace kalvo::sim
