// Storing test specifications in the tester: the editor's record, the records of a set text and
// those of chosen set files, all with "prx!add ".
#include "SpecUpload.h"

#include "SpecChunks.h"
#include "StoreRemoval.h"

#include "link/Errors.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/TextIds.h"
#include "link/TextRules.h"
#include "records/RecordFiles.h"

#include <QDir>

namespace kalvo::specdb {

namespace {

QString BoxList(const QList<int> &boxes)
{
    QStringList numbers;
    for (const int box : boxes)
        numbers << QString::number(box);
    return numbers.join(QStringLiteral(", "));
}

} // namespace

bool TakenByOwnMark(const QByteArray &command, const QByteArray &answer)
{
    // The echo is as much of the command as the answer repeats, in either case, whole or cut short.
    qsizetype echo = 0;
    while (echo < answer.size() && echo < command.size() &&
           QChar::toUpper(uchar(answer[echo])) == QChar::toUpper(uchar(command[echo])))
        ++echo;
    // The tester's mark may begin with a "." that the command also has at that place.
    const QByteArray own = answer.mid(std::max<qsizetype>(echo - 1, 0));
    return own.contains(".Y") && !own.contains(".N");
}

bool SendStoreLine(link::Link &link, const QByteArray &command)
{
    const link::RefusalWatch watch(link);
    const QByteArray answer = link.Exchange(command);
    if (TakenByOwnMark(command, answer) && !watch.refused())
        return true;
    if (!watch.refused())
        link.NoteRefusal(command);
    return false;
}

namespace {

// The chunks of one record that were taken, from the first on: 3 when all were.
int SendChunks(link::Link &link, const std::array<QByteArray, 3> &commands)
{
    int taken = 0;
    while (taken < static_cast<int>(commands.size()) &&
           SendStoreLine(link, commands[static_cast<size_t>(taken)]))
        ++taken;
    return taken;
}

} // namespace

bool SendRecordCommands(link::Link &link, const std::array<QByteArray, 3> &commands)
{
    return SendChunks(link, commands) == static_cast<int>(commands.size());
}

QString NotTakenText(const QString &text, const link::RefusalWatch &watch)
{
    return QStringLiteral("%1\nNicht bestätigt: %2").arg(text, watch.Describe());
}

QString PartialRecordQuestion(int number, const QByteArray &label)
{
    return QStringLiteral("Das Kalvomer hat den Anfang des Prüfablaufs \"%1\" angenommen, den Rest nicht: es "
                          "hält jetzt vielleicht einen unvollständigen Datensatz %2.\nDatensatz %2 löschen?")
        .arg(link::ConvertDisplayText(label))
        .arg(number);
}

QString LooserLimitsQuestion(const QList<int> &boxes)
{
    return QStringLiteral("Die Grenzwerte in den Feldern %1 sind schwächer, als die Vorschrift verlangt.\r\n"
                          "Den Prüfablauf trotzdem speichern?")
        .arg(BoxList(boxes));
}

UploadResult StoreEditorRecord(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                               SpecRecord &record, const StoreState &store, const QList<int> &looserBoxes,
                               const QDateTime &now)
{
    UploadResult result;
    if (store.holdsTestRecords) {
        result.status = UploadStatus::HoldsTestRecords;
        return result;
    }
    const QList<int> misfits = MisfitLimits(record);
    if (!misfits.isEmpty()) {
        prompter.message(QStringLiteral("%1 (%2)").arg(kWrongNumberFormatText, BoxList(misfits)),
                         link::Prompter::Icon::Warning);
        result.status = UploadStatus::Invalid;
        return result;
    }
    if (!looserBoxes.isEmpty() && !prompter.confirm(LooserLimitsQuestion(looserBoxes)))
        return result;
    const std::optional<QString> typed =
        prompter.askText(QStringLiteral("Kalvomer"), texts.text(link::TxtRecordNamePrompt), QString());
    if (!typed || typed->isEmpty())
        return result;
    const QByteArray name = TesterText(*typed);
    if (!UsableName(name)) {
        prompter.message(QStringLiteral("Der Name \"%1\" kann nicht gespeichert werden: kein \";\" und keine "
                                        "Steuerzeichen.")
                             .arg(*typed),
                         link::Prompter::Icon::Warning);
        result.status = UploadStatus::Invalid;
        return result;
    }
    const RecordChunks chunks = BuildRecord(record, now);
    result.replacedCodes = chunks.replacedCodes;
    result.label = RunningLabel(store.entries, name);
    const link::RefusalWatch watch(link);
    const int taken = SendChunks(link, EditorCommands(result.label, chunks));
    if (taken == 3) {
        result.status = UploadStatus::Stored;
        return result;
    }
    prompter.message(NotTakenText(kNotLoadedText, watch), link::Prompter::Icon::Information);
    result.status = UploadStatus::NotStored;
    // No continuation follows a chunk that was not taken: nothing the tester did not take the
    // beginning of reaches it, and a record missing items 9..16 cannot become whole. What the first
    // chunk began may still be in the store, under the running number.
    if (taken > 0) {
        result.storeChanged = true;
        const int number = store.entries + 1;
        DeleteRecord(link, prompter, texts, number, Removal{number, {}, {}},
                     PartialRecordQuestion(number, result.label));
    }
    return result;
}

SetUploadResult StoreSetGroups(link::Link &link, const QList<SetGroup> &groups)
{
    SetUploadResult result;
    for (const SetGroup &group : groups) {
        ++result.records;
        if (SendRecordCommands(link, SetCommands(group)))
            ++result.stored;
    }
    return result;
}

std::optional<SetUploadResult> SaveAndStoreSetText(link::Link &link, link::Prompter &prompter,
                                                   const QString &path, const QByteArray &text)
{
    if (text.size() > kMaxSetText) {
        prompter.message(kSetTextTooLongText, link::Prompter::Icon::Warning);
        return std::nullopt;
    }
    records::WriteBytesFile(path, text);
    return StoreSetGroups(link, ParseSetText(text, QDir::toNativeSeparators(path)));
}

std::optional<SetUploadResult> StoreSetFiles(link::Link &link, link::Prompter &prompter,
                                             const QStringList &paths)
{
    QList<SetGroup> groups;
    for (const QString &path : paths) {
        const std::optional<QByteArray> text = ReadSetFile(path, prompter);
        if (!text)
            return std::nullopt;
        try {
            groups << FirstSetGroup(*text, QDir::toNativeSeparators(path));
        } catch (const link::FormatError &error) {
            prompter.message(error.message(), link::Prompter::Icon::Warning);
            return std::nullopt;
        }
    }
    return StoreSetGroups(link, groups);
}

} // namespace kalvo::specdb
