// A test record split into its numbered fields, with the verdict, regulation, class and applied part.
#pragma once

#include "link/Errors.h"

#include <QByteArray>
#include <QString>
#include <array>

namespace kalvo::records {

// A record from a tester whose firmware is older than version 3: its code string is too short.
class RecordTooOld : public link::KalvoError {
public:
    RecordTooOld();
};

constexpr int kRecordTooOldNumber = 31996;
constexpr int kMaxFields = 256;
constexpr int kMeasurementCount = 24;
constexpr int kFirstMeasurementField = 7; // fields 7..54: measured value, limit, measured value, ...
constexpr int kAccessoryDateField = 55;   // empty: the record carries no accessory data
constexpr int kMinCodeStringLength = 25;

// The labels the report gives one measurement; kept character for character, the odd ones included.
struct MeasurementLabels {
    const char *measured;
    const char *limit;
};
extern const std::array<MeasurementLabels, kMeasurementCount> kMeasurementLabels;

struct DecodedRecord {
    // Fields 1..256 as the tester's bytes; index 0 is never filled.
    std::array<QByteArray, kMaxFields + 1> fields;
    QString regulation;      // "DIN VDE 0702", ... or "Kundenspezifisch"
    QString verdict;         // " bestanden" or " nicht bestanden"
    QString protectionClass; // the code minus 4, may be 0 or negative
    QString appliedPart;     // "B", "BF", "CF" or empty

    // Field `number`; empty outside 1..256.
    QByteArray Field(int number) const;
};

// Splits one record text (as read from the tester or a record file) and decodes its code string.
// Throws FormatError beyond 256 fields and RecordTooOld when field 2 is shorter than 25 characters.
DecodedRecord DecodeRecord(const QByteArray &recordText);

// Whether `line` is a whole record text as the tester's store or the accessory gives one: fields
// separated by ";", ending in "$FF", a line end after it or not, and no NUL byte. A line cut
// short, or a line of some other file, is not.
bool IsWholeRecordText(const QByteArray &line);

// The regulation named by a code of the code string's position 13 (a hexadecimal digit).
QString RegulationName(int code);

} // namespace kalvo::records
