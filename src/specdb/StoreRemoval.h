// Deleting records from the tester's store with "prx!del": all of them, or one; test records among
// them are read and kept (in the archive) before they go.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>

namespace kalvo::link {
class LanguageTable;
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::specdb {

struct SpecStore;

inline const QString kDeleteAllQuestion = QStringLiteral("Alle Protokolle und Abläufe löschen?");
QString DeleteOneQuestion(int number);
// "prx!del" and the number with the blank in front that the tester's number form has ("prx!del 3").
QByteArray DeleteCommand(int number);

enum class RemovalStatus {
    Deleted,   // every deletion taken: the caller shows the language table's "delete done"
    Cancelled, // the user said Cancel: nothing sent
    Failed,    // a deletion was not taken: the error message has been shown
    NotKept,   // the test records could not be read or kept: nothing deleted, the user told
};

// Keeps test records that are about to be deleted (the archive); returns an empty text when they
// are kept, otherwise why not. Runs where the deletion runs (the device thread); `prompter` is the
// deletion's, for what keeping must ask (the customer of records that name none).
using RecordKeeper = std::function<QString(const QList<QByteArray> &records, link::Prompter &prompter)>;

// What the store holds among the records to be deleted, as it was read.
struct Removal {
    int entries = 0;        // records 1..entries in the store when it was read
    QList<int> testRecords; // the numbers of the test records among them
    RecordKeeper keep;      // empty: test records are not kept (the archive is off)
};

// The store as read: all its entries, and which of them are test records; nothing kept.
Removal RemovalOf(const SpecStore &store);

// Asks (Cancel the default, naming what is lost), then deletes records `removal.entries` down to 1:
// from the top, so that the numbers of the records still to go do not move. Test records are read
// and kept first when `removal.keep` is set; the store must still hold as many entries as it was
// read with. Every deletion is sent; one that is not taken makes it Failed.
RemovalStatus DeleteAllRecords(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                               const Removal &removal);
// Asks `question` (DeleteOneQuestion and what is lost, by default), then deletes record `number`,
// a test record first kept as above; the records behind it move up one number.
RemovalStatus DeleteRecord(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                           int number, const Removal &removal, const QString &question = {});

} // namespace kalvo::specdb
