// Deleting records from the tester's store with "prx!del": all of them, or one; test records among
// them are read and kept (in the archive) before they go.
#include "StoreRemoval.h"

#include "RemovalTexts.h"
#include "SpecStore.h"
#include "SpecUpload.h"

#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/TextIds.h"
#include "records/RecordRetrieval.h"

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

// The question and, below it, what goes: how many of each kind, and what becomes of the test records.
QString AskingWhatIsLost(const QString &question, int testRecords, int specifications, bool kept,
                         const QString &language)
{
    if (testRecords + specifications == 0)
        return question; // nothing listed: nothing to name
    QString text = question + QStringLiteral("\n\n") + LossInTester(testRecords, specifications, language);
    if (testRecords > 0)
        text +=
            QLatin1Char('\n') + RemovalTextIn(kept ? RemovalText::KeptFirst : RemovalText::NotKept, language);
    return text;
}

// Reads the test records `numbers` and keeps them; false, with the user told and nothing deleted,
// when the store is no longer the one that was read or a record cannot be read or kept.
bool KeepTestRecords(link::Link &link, link::Prompter &prompter, const QString &language,
                     const Removal &removal, const QList<int> &numbers)
{
    if (numbers.isEmpty() || !removal.keep)
        return true;
    const auto tell = [&](const QString &text) {
        prompter.message(text, link::Prompter::Icon::Critical);
        return false;
    };
    // Deleting by number is only safe on the store that was listed.
    const std::optional<int> count = records::CountRecords(link);
    if (!count)
        return tell(RemovalTextIn(RemovalText::ReadFailed, language));
    if (*count != removal.entries)
        return tell(RemovalTextIn(RemovalText::StoreChanged, language).arg(*count).arg(removal.entries));
    QList<QByteArray> read;
    for (const int number : numbers) {
        const std::optional<QByteArray> record =
            records::ReadRecord(link, number, records::FillerRule::Position);
        if (!record)
            return tell(RemovalTextIn(RemovalText::ReadFailed, language));
        read << *record;
    }
    const QString why = removal.keep(read, prompter);
    if (!why.isEmpty())
        return tell(RemovalTextIn(RemovalText::KeepFailed, language).arg(why));
    return true;
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

Removal RemovalOf(const SpecStore &store)
{
    Removal removal{store.count(), {}, {}};
    for (int number = 1; number <= store.count(); ++number) {
        if (!store.IsSpecification(number))
            removal.testRecords << number;
    }
    return removal;
}

RemovalStatus DeleteAllRecords(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                               const Removal &removal)
{
    const int entries = removal.entries;
    const auto testRecords = static_cast<int>(removal.testRecords.size());
    if (!prompter.confirmLoss(AskingWhatIsLost(kDeleteAllQuestion, testRecords, entries - testRecords,
                                               bool(removal.keep), texts.language())))
        return RemovalStatus::Cancelled;
    if (!KeepTestRecords(link, prompter, texts.language(), removal, removal.testRecords))
        return RemovalStatus::NotKept;
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
                           int number, const Removal &removal, const QString &question)
{
    const bool testRecord = removal.testRecords.contains(number);
    const QString asked = question.isEmpty()
                              ? AskingWhatIsLost(DeleteOneQuestion(number), testRecord ? 1 : 0,
                                                 testRecord ? 0 : 1, bool(removal.keep), texts.language())
                              : question;
    if (!prompter.confirmLoss(asked))
        return RemovalStatus::Cancelled;
    if (testRecord && !KeepTestRecords(link, prompter, texts.language(), removal, {number}))
        return RemovalStatus::NotKept;
    const link::RefusalWatch watch(link);
    return Outcome(prompter, texts, watch, SendStoreLine(link, DeleteCommand(number)));
}

} // namespace kalvo::specdb
