// The tester's record store: test records, test specifications, the current record, and the records
// the KYM accessory holds; and the forms they travel in.
#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

namespace kalvo::sim {

class RecordStore {
public:
    static constexpr int kParts = 3; // a record goes out in three answers: x, y, z

    // A test specification as the listing shows it; it is no test record.
    struct Specification {
        QByteArray name;
        int regulation = 0;
        QByteArray date; // dd.mm.yy
        QByteArray time; // hh:mm
    };

    // Filled with the sample records; the current record is the last test record.
    RecordStore();

    // Stored form: "P" + fields 1..74, each closed by ";", then "$FF" (no line end).
    const QList<QByteArray> &records() const { return m_records; }
    void setRecords(const QList<QByteArray> &records) { m_records = records; }
    // Keeps the first `count` test records (0 empties the store); the current record stays.
    void KeepFirst(int count);
    // Record 1..count, nullopt outside.
    std::optional<QByteArray> Record(int number) const;

    const QList<Specification> &specifications() const { return m_specifications; }
    void setSpecifications(const QList<Specification> &specifications) { m_specifications = specifications; }

    // The last test made: what "prx?x" and "prn!t" without a number read.
    const std::optional<QByteArray> &current() const { return m_current; }
    void setCurrent(const std::optional<QByteArray> &record) { m_current = record; }

    // The accessory's records, in the stored form of a tester record.
    const QList<QByteArray> &accessoryRecords() const { return m_accessory; }
    void setAccessoryRecords(const QList<QByteArray> &records) { m_accessory = records; }

    // Part 0..2 of a record's text in front of "$FF"; the three joined give that text back.
    static QByteArray Part(const QByteArray &record, int part);
    // 13 fields a row, each closed by ";": the specifications, then the test records.
    QByteArray Listing() const;
    // The accessory's records back to back: "K", the fields separated by character 19, "$FF".
    QByteArray AccessoryStream() const;

private:
    QList<QByteArray> m_records;
    QList<Specification> m_specifications;
    std::optional<QByteArray> m_current;
    QList<QByteArray> m_accessory;
};

} // namespace kalvo::sim
