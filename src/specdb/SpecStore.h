// The tester's record store as the database window reads it: every record's fields, test
// specifications told from test records, and the list the window shows.
#pragma once

#include "specdb/SpecRecord.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::specdb {

// The trace of what was read, replaced at every read.
inline const QString kStoreTraceFileName = QStringLiteral("test.txt");

// Fields kept of a record: a specification has 49, a test record far more, of which only the first
// three are looked at here. Longer fields are cut: none that is read here comes near it.
constexpr int kKeptFields = 64;
constexpr qsizetype kKeptFieldBytes = 256;

struct SpecStore {
    // Fields of records 1..n (index 0 holds record 1), in the tester's bytes after the filter.
    QList<QList<QByteArray>> records;
    // The limit boxes of each record, placed by the structure the upload wrote (PlaceLimits);
    // nullopt for a test record and for a specification whose limits cannot be placed with
    // certainty.
    QList<std::optional<BoxTexts>> limits;
    // One entry a record: "i: " + its name for a specification, "i:measured: " + the device for
    // a test record.
    QStringList entries;
    // Set when any record is a test record: specifications may then not be stored.
    bool holdsTestRecords = false;
    // The answer to "prx?n" held no "PRX": nothing was read (the window shows an empty list).
    bool unanswered = false;

    int count() const { return static_cast<int>(records.size()); }
    // Record `number` (1-based) is a specification: its field 0 holds "DATABASE".
    bool IsSpecification(int number) const;
    // A specification just stored as `label`, listed as the next entry as if it had been read.
    void AppendStored(const SpecRecord &record, const QByteArray &label);
};

// Whether a character of the tester's answers is taken into a field: the blank, "+" to "?",
// "A" to "z" and the ohm sign 234; everything else, and what the display drops, is left out.
bool KeepStoreChar(unsigned char c);

// Adds the record text of one answer to `fields`: the text behind its first ";" up to ">" DC1 (or,
// in an answer without that pair, up to its 4-character trailer). Each ";" opens the next field;
// the first part of a record opens field 0. Returns the text taken, for the trace.
QByteArray AppendRecordPart(QList<QByteArray> &fields, const QByteArray &answer);

// The limit boxes of a specification from the record texts of its three parts: the first from
// behind its first ";" (the marker on), the others from behind ":" and the filler "XXXXXXXX" (or
// behind ":", or from their first ";"). Joined, a specification has the fields the upload wrote: marker,
// codes, label, date, time, then an extra field and a limit for each box. A tester may begin the second and
// third parts with a ";" of its own or continue the record as sent, and may cut anywhere: of the joins with
// and without such a ";", the limits are placed only when exactly one gives those fields. nullopt otherwise:
// no box is filled by a guess.
std::optional<BoxTexts> PlaceLimits(const QByteArray &first, const QByteArray &second,
                                    const QByteArray &third);

// Reads the store: "prx?n", then "prx?" + i + "x", "y", "z" for every record, the trace written
// to `tracePath` once everything is read. An answer to "prx?n" without "PRX" (any case) is an
// empty store marked `unanswered`, without a message. nullopt, with nothing written and the user
// told, when the tester refused a command; FormatError when the count cannot be read or a part
// holds neither ":" nor ";". A part without ";" adds no field: nothing in one test record keeps
// the others from being listed.
std::optional<SpecStore> ReadSpecStore(link::Link &link, link::Prompter &prompter, const QString &tracePath);

} // namespace kalvo::specdb
