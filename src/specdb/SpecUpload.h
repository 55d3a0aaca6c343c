// Storing test specifications in the tester: the editor's record, the records of a set text and
// those of chosen set files, all with "prx!add ".
#pragma once

#include "specdb/SetFile.h"
#include "specdb/SpecRecord.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <array>

namespace kalvo::link {
class LanguageTable;
class Link;
class Prompter;
class RefusalWatch;
} // namespace kalvo::link

namespace kalvo::specdb {

inline const QString kNotLoadedText = QStringLiteral("Die Daten konnten nicht geladen werden");
inline const QString kHoldsTestRecordsText = QStringLiteral(
    "Die Datenbank enthält auch Prüfprotokolle.\r\nVor dem speichern von Prüfabläufen müssen die "
    "Protokolle gelöscht werden.");

// Whether the answer to `command` takes it by its own marks: behind as much of the command as it
// echoes (whole, cut short or in capitals) stands ".Y" and no ".N". A name such as "DR.NEU" or
// "Gut.Y" in the echo is no mark of the tester's.
bool TakenByOwnMark(const QByteArray &command, const QByteArray &answer);
// One "prx!add " or "prx!del" command. Taken by TakenByOwnMark; otherwise counted as a refusal
// (once) and false.
bool SendStoreLine(link::Link &link, const QByteArray &command);
// The three commands of one record, in order; stops at the first that is not taken, so that no
// continuation reaches a tester that did not take its beginning. True when all three were taken.
bool SendRecordCommands(link::Link &link, const std::array<QByteArray, 3> &commands);
// `text`, and on a line of its own the commands the tester did not take since `watch` began.
QString NotTakenText(const QString &text, const link::RefusalWatch &watch);

// The question after an upload whose first chunk was taken and a later one not: the tester may hold
// the beginning of the record as entry `number`.
QString PartialRecordQuestion(int number, const QByteArray &label);

enum class UploadStatus {
    Stored,           // all three chunks taken
    Cancelled,        // the user said Cancel or gave no name: nothing sent
    Invalid,          // a limit or the name cannot travel: said so, nothing sent
    HoldsTestRecords, // the store holds test records: nothing asked, nothing sent
    NotStored,        // "Die Daten konnten nicht geladen werden" shown
};

struct UploadResult {
    UploadStatus status = UploadStatus::Cancelled;
    QByteArray label;         // the running number and the name, as sent
    QList<int> replacedCodes; // code elements sent as "00" (one beep each)
    // NotStored after the first chunk was taken: the store may have changed (the partial record
    // offered for deletion, or kept).
    bool storeChanged = false;
};

// What the editor's upload needs to know of the store as last read.
struct StoreState {
    int entries = 0;
    bool holdsTestRecords = false;
};

// Stores the editor's record. A store with test records is refused at once (the caller asks the
// question of kHoldsTestRecordsText and may delete all). A limit that does not fit its box is
// "falsches Zahlenformat". When `looserBoxes` (limits looser than the regulation asks) is not
// empty, the user is asked once more, naming them. Then the name is asked for, the record built
// at `now` and sent with the running number. The chunks stop at the first that is not taken;
// when the first was taken, the user is told that the tester may hold the beginning of the record
// under the running number and asked (Cancel the default) whether to delete it.
UploadResult StoreEditorRecord(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                               SpecRecord &record, const StoreState &store, const QList<int> &looserBoxes,
                               const QDateTime &now);
// The question about looser limits, naming the boxes.
QString LooserLimitsQuestion(const QList<int> &boxes);

struct SetUploadResult {
    int records = 0; // records sent
    int stored = 0;  // of them, taken whole
    bool complete() const { return stored == records; }
};

// Every record of the groups, in order, "&1" and "&13". A record not taken whole is not reported
// here: the store read afterwards shows what arrived.
SetUploadResult StoreSetGroups(link::Link &link, const QList<SetGroup> &groups);
// The set text of the window: written to `path` first (replacing it, atomically), then every
// record stored. A text beyond kMaxSetText is refused (nullopt) before anything is written or
// sent. Throws FormatError, having sent nothing, when the file cannot be written or the text is no
// whole set of three-line records (the file then holds the text as typed).
std::optional<SetUploadResult> SaveAndStoreSetText(link::Link &link, link::Prompter &prompter,
                                                   const QString &path, const QByteArray &text);
// The first record of each chosen set file, in list order. Every file is read first: one that
// cannot be read, is too long or has fewer than three lines is reported and nothing is sent.
std::optional<SetUploadResult> StoreSetFiles(link::Link &link, link::Prompter &prompter,
                                             const QStringList &paths);

} // namespace kalvo::specdb
