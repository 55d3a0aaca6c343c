// Storing test specifications in the tester: the editor's record, the records of a set text and
// those of chosen set files, all with "prx!add ".
#include "SpecUpload.h"

#include "SpecChunks.h"

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

bool SendStoreLine(link::Link &link, const QByteArray &command)
{
    const link::RefusalWatch watch(link);
    const QByteArray answer = link.Exchange(command);
    const bool echoed = answer.left(command.size()).compare(command, Qt::CaseInsensitive) == 0;
    const QByteArray reply = echoed ? answer.mid(command.size()) : answer;
    if (reply.contains(".Y") && !reply.contains(".N") && !watch.refused())
        return true;
    if (!watch.refused())
        link.NoteRefusal(command);
    return false;
}

bool SendRecordCommands(link::Link &link, const std::array<QByteArray, 3> &commands)
{
    for (const QByteArray &command : commands) {
        if (!SendStoreLine(link, command))
            return false;
    }
    return true;
}

QString NotTakenText(const QString &text, const link::RefusalWatch &watch)
{
    return QStringLiteral("%1\r\nNicht bestätigt: %2").arg(text, watch.Describe());
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
    const QByteArray name = link::EncodeTesterText(*typed);
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
    if (SendRecordCommands(link, EditorCommands(result.label, chunks))) {
        result.status = UploadStatus::Stored;
    } else {
        prompter.message(NotTakenText(kNotLoadedText, watch), link::Prompter::Icon::Information);
        result.status = UploadStatus::NotStored;
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
