// A test specification cut into the three chunks that "prx!add " carries, and the commands for them.
#pragma once

#include "specdb/SpecRecord.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <array>

namespace kalvo::specdb {

struct RecordChunks {
    QByteArray part1;         // " ;" codes ";" date ";" time, then items 1..8
    QByteArray part2;         // items 9..16
    QByteArray part3;         // items 17..22
    QList<int> replacedCodes; // code elements that were not two characters and went out as "00"
};

// Builds the chunks from `record` at the moment `now`. A code element 0..19 that is not exactly
// two characters long becomes "00" in `record` too (the caller beeps once for each); the extras
// are cleared. Every item keeps both separators, so an empty limit is an empty field.
RecordChunks BuildRecord(SpecRecord &record, const QDateTime &now);

// The running-number label of a new record when the store lists `entries` entries: the number
// entries + 1, two digits below 10, then one blank and the name ("05 Werkstatt").
QByteArray RunningLabel(int entries, const QByteArray &name);

// The three "prx!add " commands (without CR) of the editor's own upload: the label and part1,
// then "&9" + part2, then "&17" + part3.
std::array<QByteArray, 3> EditorCommands(const QByteArray &label, const RecordChunks &chunks);

// Whether a name can travel in a record: not empty, and no ";" (the field separator) nor control
// characters, which would shift every field behind it in the tester.
bool UsableName(const QByteArray &name);

// Whether `text` may stand in limit box `box` (1..22): empty (the measurement is off), or as wide
// as the box's limits are (6 characters for the test voltage of box 4, 7 for the high voltage of
// box 22, 8 for the others, and the narrower texts the boxes of resistance and voltage take:
// "<0.300" + ohm, "0120V"), without a ";" or control character.
bool LimitFits(int box, const QByteArray &text);
// Text typed on the PC (a name) in the tester's bytes: the nine characters the display conversion
// shows ("µ", in either of its Unicode forms, is 230; "Ä" 142 ...) by the tester's own codes,
// whatever the text converter of the platform knows, the rest through the tester's character set.
QByteArray TesterText(const QString &typed);
// A limit typed on the PC in the tester's bytes: "Ohm" and the ohm sign (either Unicode form) become
// the tester's ohm byte 234, the rest goes through the tester's character set. The way back for
// showing it is the display conversion, which writes 234 as "Ohm".
QByteArray LimitFromText(const QString &text);
// The boxes 1..22 whose text does not fit, ascending.
QList<int> MisfitLimits(const SpecRecord &record);

inline const QString kWrongNumberFormatText = QStringLiteral("falsches Zahlenformat");

} // namespace kalvo::specdb
