// Deleting records from the tester's store with "prx!del": all of them, or one.
#include "SpecRemoval.h"

#include "SpecUpload.h"

#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/TextIds.h"

namespace kalvo::specdb {

namespace {

RemovalStatus Outcome(link::Prompter &prompter, const link::LanguageTable &texts,
                      const link::RefusalWatch &watch, bool allTaken)
{
    if (allTaken)
        return RemovalStatus::Deleted;
    prompter.message(NotTakenText(texts.text(link::TxtDeleteError), watch), link::Prompter::Icon::Critical);
    return RemovalStatus::Failed;
}

} // namespace

QString DeleteOneQuestion(int number)
{
    return QStringLiteral("Datensatz %1 löschen?").arg(number);
}

QByteArray DeleteCommand(int number)
{
    return "prx!del " + QByteArray::number(number);
}

RemovalStatus DeleteAllRecords(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                               int entries)
{
    if (!prompter.confirm(kDeleteAllQuestion))
        return RemovalStatus::Cancelled;
    const link::RefusalWatch watch(link);
    bool allTaken = true;
    for (int number = entries; number >= 1; --number) {
        // Bitwise, not logical: every deletion is sent even after one that was not taken.
        allTaken &= SendStoreLine(link, DeleteCommand(number));
        prompter.progress((entries - number + 1) * 100 / entries);
    }
    return Outcome(prompter, texts, watch, allTaken);
}

RemovalStatus DeleteRecord(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                           int number, const QString &question)
{
    if (!prompter.confirm(question.isEmpty() ? DeleteOneQuestion(number) : question))
        return RemovalStatus::Cancelled;
    const link::RefusalWatch watch(link);
    return Outcome(prompter, texts, watch, SendStoreLine(link, DeleteCommand(number)));
}

} // namespace kalvo::specdb
