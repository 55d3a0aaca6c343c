// One record of the tester's store split into its numbered fields, and what its code string says.
#pragma once

#include <QByteArray>
#include <QList>

namespace kalvo::sim {

class RecordText {
public:
    static constexpr int kFieldCount = 74;
    static constexpr int kFirstMeasurement = 7; // fields 7..54: 24 pairs of value and limit
    static constexpr int kMeasurements = 24;
    static constexpr int kFirstAccessoryField = 55;
    static constexpr char kEndMark[] = "$FF";

    // `text` is the record as stored: one lead character, the fields separated by ";", ";$FF".
    explicit RecordText(const QByteArray &text);

    // Field 1..74; empty where the record has none.
    QByteArray Field(int number) const;
    // Lead character + fields 1..n each followed by ";" + "$FF": the stored form.
    static QByteArray Compose(char lead, const QList<QByteArray> &fields);

    // Decoded from field 2: position 7 result, 13 regulation, 29-30 class + 4, 31-32 applied part.
    int ResultCode() const;
    bool Passed() const { return ResultCode() < 7; }
    int RegulationCode() const;
    int ProtectionClass() const;
    // "B", "BF", "CF" or empty.
    QByteArray AppliedPart() const;
    QByteArray RegulationName() const { return RegulationName(RegulationCode()); }
    static QByteArray RegulationName(int code);
    // "bestanden" or "nicht bestanden".
    QByteArray Verdict() const;

private:
    // Characters `count` from 1-based `position` of field 2.
    QByteArray CodeAt(int position, int count) const;

    QList<QByteArray> m_fields; // index 0 is field 1
};

} // namespace kalvo::sim
