// The generator of default limits: what the regulations ask of a device of a given protection class
// and applied-part type, written into the code elements and the limit boxes of a specification.
#pragma once

#include "specdb/SpecRecord.h"

#include <QList>
#include <QString>

namespace kalvo::specdb {

// Runs the generator for the regulation list entry (0..11, in the editor's order) and the switch
// position code ("00", "05", "01", "02", "20" or "Menue"). Reads the protection class (element 14) and
// the applied-part type (element 15); writes elements 1, 6, 17, 18, 19 and every limit box 1..22 (a box
// the combination does not use is emptied); clears the extras. Other elements are left as they are.
void ApplyDefaults(SpecRecord &record, int regulationEntry, const QByteArray &switchCode);

// One box of the generator's defaults for a regulation, class and type, and where it comes from.
struct BoxDefault {
    int box;         // 1..22
    QByteArray text; // empty: the regulation sets nothing there
    QString source;  // the regulation's clause or table, "unsere Wahl: " in front where the value is
                     // ours; empty with an empty text
};
// The 22 boxes the generator fills for the regulation list entry, protection class (element 14),
// applied-part type (element 15) and switch position.
QList<BoxDefault> DefaultsFor(int regulationEntry, const QByteArray &protectionClass,
                              const QByteArray &appliedPart, const QByteArray &switchCode);
// What a switch position stands for when the generator chooses limits ("fest angeschlossen mit
// Schutzleiter"); empty for a code the list does not hold.
QString SwitchMeaning(const QByteArray &switchCode);
// The same in `language` (the language table's names; German for a name it does not know).
QString SwitchMeaningIn(const QByteArray &switchCode, const QString &language);
// What box 1..22 measures, in a few words of `language` (the language table's names; German for
// a name it does not know): "Schutzleiterwiderstand".
QString BoxMeaning(int box, const QString &language = QStringLiteral("deutsch"));

// The boxes (1..22, ascending) whose limit in `record` is looser than the generator's default for the
// same regulation, class, type and switch position: a higher "<" limit, a lower ">" limit, or an empty
// box that the default fills.
QList<int> LooserLimits(const SpecRecord &record, int regulationEntry, const QByteArray &switchCode);

} // namespace kalvo::specdb
