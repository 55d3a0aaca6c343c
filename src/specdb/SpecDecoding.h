// What the code elements of a specification mean to the editor, and a record of the store read
// back into the editor's record.
#pragma once

#include "specdb/SpecRecord.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::specdb {

// The editor's regulation list, in its order; the last entry, "custom", has no digit of its own.
const QStringList &RegulationList();
constexpr int kCustomRegulation = 11;
// The regulation shown for element 6: its first hexadecimal digit 1..C ("MENUE" for 8); empty
// for any other digit.
QString RegulationName(const QByteArray &element6);
// The entry of the regulation list for element 6, -1 for "MENUE" and digits without an entry.
int RegulationEntry(const QByteArray &element6);

// Protection class (element 14): entries 0 and 1 are "05", 2 "06", 3 "07".
QByteArray ClassCode(int entry);
int ClassEntry(const QByteArray &element14); // -1 for other codes
// Applied-part type (element 15): entry n is "0n".
QByteArray TypeCode(int entry);
int TypeEntry(const QByteArray &element15); // -1 for other codes
// Number of applied parts (element 16): two decimal digits, entries 0..10.
constexpr int kMaxAppliedParts = 10;
QByteArray AppliedPartsCode(int count);
int AppliedPartsEntry(const QByteArray &element16); // -1 for other codes
// Single-fault conditions (element 8): box 0 is worth 1, boxes 1..3 32, 64 and 128.
QByteArray SingleFaultCode(const std::array<bool, 4> &boxes);
std::array<bool, 4> SingleFaultBoxes(const QByteArray &element8);

// Field of a read-back specification that holds limit box `box` (1..22): behind the marker, the
// code string, the name, the date and the time, each box is an extra field and its limit.
constexpr int LimitField(int box)
{
    return 4 + 2 * box;
}

// Takes record `number` of the store into `record`: code elements 0..19 from field 1 (40
// hexadecimal characters, either case) and the limit boxes as the store placed them. Without
// placed limits every box is emptied, never filled by a guess, and false returned. Elements 20..25
// stay as they were. Throws FormatError naming the record when field 1 is no code string.
bool DecodeSpecRecord(const QList<QByteArray> &fields, const std::optional<BoxTexts> &limits, int number,
                      SpecRecord &record);
// Told when a specification is opened whose limits could not be placed.
QString LimitsNotReadText(int number);

// The fields a specification just stored as `label` will read back with, so that a list entry
// added for it decodes like one read from the store: the marker, codes 0..19, the label, an empty
// date and time, and each box's extra field and limit.
QList<QByteArray> StoredFields(const SpecRecord &record, const QByteArray &label);

} // namespace kalvo::specdb
