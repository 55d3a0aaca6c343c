// Deleting records from the tester's store with "prx!del": all of them, or one.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::link {
class LanguageTable;
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::specdb {

inline const QString kDeleteAllQuestion = QStringLiteral("Alle Protokolle und Abläufe löschen?");
QString DeleteOneQuestion(int number);
// "prx!del" and the number with the blank in front that the tester's number form has ("prx!del 3").
QByteArray DeleteCommand(int number);

enum class RemovalStatus {
    Deleted,   // every deletion taken: the caller shows the language table's "delete done"
    Cancelled, // the user said Cancel: nothing sent
    Failed,    // a deletion was not taken: the error message has been shown
};

// Asks, then deletes records `entries` down to 1: from the top, so that the numbers of the
// records still to go do not move. Every deletion is sent; one that is not taken makes it Failed.
RemovalStatus DeleteAllRecords(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                               int entries);
// Asks `question` (DeleteOneQuestion by default), then deletes record `number`; the records behind
// it move up one number.
RemovalStatus DeleteRecord(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                           int number, const QString &question = {});

} // namespace kalvo::specdb
