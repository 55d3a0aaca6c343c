// kalvo-cli specdb: the test specifications in the tester's store: list, add, store set files, delete.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"
#include "archive/RecordKeeping.h"

#include "specdb/DefaultLimits.h"
#include "specdb/SetFile.h"
#include "specdb/SpecChunks.h"
#include "specdb/SpecDecoding.h"
#include "specdb/SpecEditor.h"
#include "specdb/StoreRemoval.h"
#include "specdb/SpecStore.h"
#include "specdb/SpecUpload.h"

#include "link/Errors.h"
#include "link/TextIds.h"
#include "link/TextRules.h"
#include "link/UserFiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

namespace kalvo::cli {

namespace {

const QString kDefaultsSynopsis =
    QStringLiteral("defaults --regulation NAME [--class 05|06|07] [--type 00-03] [--switch CODE] [--json]");
const QString kAddSynopsis =
    QStringLiteral("add NAME --regulation NAME [--class 05|06|07] [--type 00-03] [--parts N] "
                   "[--sfc N,PE,AWT] [--switch CODE] [--limit N=TEXT]...");

// The regulations' default limits and the looser-limit check: the generator of the default limits
// is handed in here.
const specdb::RegulationRules &Rules()
{
    static const specdb::RegulationRules rules{specdb::ApplyDefaults, specdb::LooserLimits};
    return rules;
}

QString Squeezed(const QString &text)
{
    return text.toUpper().remove(QLatin1Char(' '));
}

int RegulationArgument(const QString &word)
{
    const QStringList &list = specdb::RegulationList();
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (Squeezed(list[i]) == Squeezed(word))
            return static_cast<int>(i);
    }
    throw Usage(UsageText::OneOf, {QStringLiteral("--regulation"),
                                   QStringLiteral("\"%1\"").arg(list.join(QStringLiteral("\", \""))),
                                   QStringLiteral("\"%1\"").arg(word)});
}

int EntryArgument(const QString &word, const QString &option, const QStringList &codes,
                  const QList<int> &entries)
{
    const qsizetype at = codes.indexOf(word);
    if (at < 0)
        throw Usage(UsageText::OneOf, {option, codes.join(QLatin1Char('|')), word});
    return entries[at];
}

std::array<bool, 4> SingleFaultArgument(const QString &word)
{
    std::array<bool, 4> boxes{};
    const QStringList names{QStringLiteral("N"), QStringLiteral("PE"), QStringLiteral("AWT")};
    for (const QString &name : word.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const qsizetype at = names.indexOf(name.trimmed().toUpper());
        if (at < 0)
            throw Usage(UsageText::NoneOf, {name, QStringLiteral("N, PE, AWT")});
        boxes[static_cast<size_t>(at + 1)] = true;
    }
    return boxes;
}

void ApplyLimit(specdb::SpecEditor &editor, const QString &word)
{
    const qsizetype equals = word.indexOf(QLatin1Char('='));
    bool ok = false;
    const int box = word.left(equals).toInt(&ok);
    if (equals < 0 || !ok || box < 1 || box > specdb::kLimitBoxes)
        throw Usage(UsageText::Between, {QStringLiteral("--limit N=TEXT: N"), QStringLiteral("1"),
                                         QString::number(specdb::kLimitBoxes), word});
    editor.SetLimit(box, specdb::LimitFromText(word.mid(equals + 1)));
}

// The store as the window lists it; nullopt when the tester refused (it has been said) or did not
// answer as a store does, which the window passes over with an empty list and a script must hear of.
// `keepsRecords`: records may go into the archive (a deletion), so the tester is identified first.
std::optional<specdb::SpecStore> ReadStore(CliContext &context, bool keepsRecords = false)
{
    if (keepsRecords)
        context.OpenPortForRecords();
    else
        context.OpenPort();
    auto store =
        specdb::ReadSpecStore(context.link(), context.prompter(),
                              link::PlaceFileAndSay(context.prompter(), {}, specdb::kStoreTraceFileName));
    if (store && store->unanswered) {
        context.prompter().message(
            QStringLiteral("Die Antwort auf \"prx?n\" nennt keinen Speicher (kein \"PRX\")."),
            link::Prompter::Icon::Warning);
        return std::nullopt;
    }
    return store;
}

int List(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {}, {QStringLiteral("--json")});
    if (!w.positional.isEmpty())
        throw Usage(UsageText::Expected, {QStringLiteral("list [--json]")});
    const auto store = ReadStore(context);
    if (!store)
        return kExitFailed;
    if (w.flags.isEmpty()) {
        for (const QString &entry : store->entries)
            context.out() << entry << '\n';
        return kExitDone;
    }
    QJsonArray list;
    for (qsizetype i = 0; i < store->entries.size(); ++i)
        list.append(QJsonObject{{QStringLiteral("number"), static_cast<int>(i + 1)},
                                {QStringLiteral("entry"), store->entries[i]}});
    context.PrintJson(list);
    return kExitDone;
}

// The regulation, class, type and switch position of "add" and "defaults", chosen in the editor's
// order: the regulation first, since it starts everything afresh.
void ChooseFromWords(specdb::SpecEditor &editor, const Words &w)
{
    editor.ChooseRegulation(RegulationArgument(w.options.value(QStringLiteral("--regulation"))));
    if (w.options.contains(QStringLiteral("--switch"))) {
        QStringList codes;
        for (const QByteArray &code : specdb::SwitchCodes())
            codes << QString::fromLatin1(code);
        const QString code = w.options.value(QStringLiteral("--switch"));
        EntryArgument(code, QStringLiteral("--switch"), codes, {0, 1, 2, 3, 4, 5});
        editor.ChooseSwitch(code.toLatin1());
    }
    if (w.options.contains(QStringLiteral("--class")))
        editor.ChooseClass(
            EntryArgument(w.options.value(QStringLiteral("--class")), QStringLiteral("--class"),
                          {QStringLiteral("05"), QStringLiteral("06"), QStringLiteral("07")}, {0, 2, 3}));
    if (w.options.contains(QStringLiteral("--type")))
        editor.ChooseType(EntryArgument(
            w.options.value(QStringLiteral("--type")), QStringLiteral("--type"),
            {QStringLiteral("00"), QStringLiteral("01"), QStringLiteral("02"), QStringLiteral("03")},
            {0, 1, 2, 3}));
}

// What the generator proposes, no tester needed: the code elements that travel, and each box with
// what it measures, its limit and where the limit comes from.
int Defaults(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words,
                               {QStringLiteral("--regulation"), QStringLiteral("--class"),
                                QStringLiteral("--type"), QStringLiteral("--switch")},
                               {QStringLiteral("--json")});
    if (!w.positional.isEmpty() || !w.options.contains(QStringLiteral("--regulation")))
        throw Usage(UsageText::Expected, {kDefaultsSynopsis});
    specdb::SpecEditor editor(Rules().defaults);
    ChooseFromWords(editor, w);
    const specdb::SpecRecord &record = editor.record();
    QStringList codes;
    for (int k = 0; k < specdb::kSentCodes; ++k)
        codes << QString::fromLatin1(record.codes[static_cast<size_t>(k)]);
    const QList<specdb::BoxDefault> defaults = specdb::DefaultsFor(editor.regulationEntry(), record.codes[14],
                                                                   record.codes[15], editor.switchCode());
    if (!w.flags.isEmpty()) {
        QJsonArray boxes;
        for (const specdb::BoxDefault &box : defaults)
            boxes.append(QJsonObject{{QStringLiteral("box"), box.box},
                                     {QStringLiteral("meaning"), specdb::BoxMeaning(box.box)},
                                     {QStringLiteral("limit"),
                                      link::ConvertDisplayText(record.limits[static_cast<size_t>(box.box)])},
                                     {QStringLiteral("source"), box.source}});
        context.PrintJson(QJsonObject{
            {QStringLiteral("regulation"), specdb::RegulationList().value(editor.regulationEntry())},
            {QStringLiteral("class"), QString::fromLatin1(record.codes[14])},
            {QStringLiteral("type"), QString::fromLatin1(record.codes[15])},
            {QStringLiteral("switch"), QString::fromLatin1(editor.switchCode())},
            {QStringLiteral("switchMeaning"), specdb::SwitchMeaning(editor.switchCode())},
            {QStringLiteral("codes"), QJsonArray::fromStringList(codes)},
            {QStringLiteral("boxes"), boxes}});
        return kExitDone;
    }
    context.out() << "regulation: " << specdb::RegulationList().value(editor.regulationEntry()) << ", class "
                  << record.codes[14] << ", type " << record.codes[15] << '\n'
                  << "switch: " << editor.switchCode() << " (" << specdb::SwitchMeaning(editor.switchCode())
                  << ")\n"
                  << "codes 0-19: " << codes.join(QLatin1Char(' ')) << '\n';
    for (const specdb::BoxDefault &box : defaults) {
        const QString limit = link::ConvertDisplayText(record.limits[static_cast<size_t>(box.box)]);
        const QString line = QStringLiteral("GWert %1  %2  %3  %4")
                                 .arg(box.box, 2)
                                 .arg(specdb::BoxMeaning(box.box), -52)
                                 .arg(limit.isEmpty() ? QStringLiteral("-") : limit, -10)
                                 .arg(box.source);
        context.out() << QStringView(line).trimmed() << '\n';
    }
    return kExitDone;
}

int Add(CliContext &context, const QStringList &words)
{
    // "--limit N=TEXT" may come again and again.
    const Words w =
        SplitWords(words, {QStringLiteral("--regulation"), QStringLiteral("--class"),
                           QStringLiteral("--type"), QStringLiteral("--parts"), QStringLiteral("--sfc"),
                           QStringLiteral("--switch"), QStringLiteral("--limit")});
    const QStringList limits = w.repeated.value(QStringLiteral("--limit"));
    if (w.positional.size() != 1 || !w.options.contains(QStringLiteral("--regulation")))
        throw Usage(UsageText::Expected, {kAddSynopsis});
    specdb::SpecEditor editor(Rules().defaults);
    ChooseFromWords(editor, w);
    if (w.options.contains(QStringLiteral("--parts"))) {
        const int parts =
            NumberArgument(w.options.value(QStringLiteral("--parts")), QStringLiteral("--parts"));
        if (parts < 0 || parts > specdb::kMaxAppliedParts)
            throw Usage(UsageText::Between,
                        {QStringLiteral("--parts"), QStringLiteral("0"),
                         QString::number(specdb::kMaxAppliedParts), QString::number(parts)});
        editor.ChooseAppliedParts(parts);
    }
    if (w.options.contains(QStringLiteral("--sfc")))
        editor.SetSingleFaults(SingleFaultArgument(w.options.value(QStringLiteral("--sfc"))));
    for (const QString &limit : limits)
        ApplyLimit(editor, limit);
    // A limit that does not fit is refused before the tester is asked anything.
    const QList<int> misfits = specdb::MisfitLimits(editor.record());
    if (!misfits.isEmpty()) {
        QStringList boxes;
        for (const int box : misfits)
            boxes << QString::number(box);
        context.prompter().message(
            QStringLiteral("%1 (%2)").arg(specdb::kWrongNumberFormatText, boxes.join(QStringLiteral(", "))),
            link::Prompter::Icon::Warning);
        return kExitFailed;
    }
    const auto store = ReadStore(context);
    if (!store)
        return kExitFailed;
    const QList<int> looser = editor.LooserBoxes(Rules());
    context.prompter().PresetText(w.positional[0]);
    const specdb::UploadResult result = specdb::StoreEditorRecord(
        context.link(), context.prompter(), context.texts(), editor.record(),
        {store->count(), store->holdsTestRecords}, looser, QDateTime::currentDateTime());
    if (!result.replacedCodes.isEmpty())
        context.prompter().message(QStringLiteral("\aCode-Elemente nicht zweistellig, als 00 gesendet: %1")
                                       .arg(result.replacedCodes.size()),
                                   link::Prompter::Icon::Warning);
    switch (result.status) {
    case specdb::UploadStatus::Stored:
        context.out() << "stored: " << QString::fromLatin1(result.label) << '\n';
        return kExitDone;
    case specdb::UploadStatus::HoldsTestRecords:
        // Never deleted from here, --yes or not: the records may not have been read out yet.
        context.prompter().message(
            specdb::kHoldsTestRecordsText +
                QStringLiteral("\nAlle Datensätze löschen: kalvo-cli specdb delete --all"),
            link::Prompter::Icon::Warning);
        return kExitFailed;
    default: return kExitFailed;
    }
}

int StoreSet(CliContext &context, const QStringList &files)
{
    if (files.isEmpty())
        throw Usage(UsageText::Expected, {QStringLiteral("store-set FILE...")});
    // Every file is read and taken apart first: a bad one stops all of them before anything is sent.
    // Lines behind a file's last whole record are left out, as the tester's own upload does.
    QList<specdb::SetGroup> groups;
    for (const QString &file : files) {
        const auto text = specdb::ReadSetFile(file, context.prompter());
        if (!text)
            return kExitFailed;
        int leftOver = 0;
        groups += specdb::WholeSetGroups(*text, QDir::toNativeSeparators(file), leftOver);
        if (leftOver > 0)
            context.prompter().message(
                QStringLiteral("%1: %2 Zeile(n) hinter dem letzten Prüfablauf nicht gesendet")
                    .arg(QDir::toNativeSeparators(file))
                    .arg(leftOver),
                link::Prompter::Icon::Information);
    }
    context.OpenPort();
    const link::RefusalWatch watch(context.link());
    const specdb::SetUploadResult result = specdb::StoreSetGroups(context.link(), groups);
    context.out() << result.stored << " of " << result.records << " stored\n";
    if (result.complete())
        return kExitDone;
    context.prompter().message(specdb::NotTakenText(specdb::kNotLoadedText, watch),
                               link::Prompter::Icon::Warning);
    return kExitFailed;
}

int Delete(CliContext &context, const QStringList &arguments)
{
    const Words w = SplitWords(arguments, {}, {QStringLiteral("--all")});
    const QStringList &words = w.positional;
    const bool all = !w.flags.isEmpty();
    if (all == (words.size() == 1) || words.size() > 1)
        throw Usage(UsageText::Expected, {QStringLiteral("delete N|--all")});
    const int number = all ? 0 : NumberArgument(words[0], QStringLiteral("N"));
    const auto store = ReadStore(context, true);
    if (!store)
        return kExitFailed;
    if (!all && (number < 1 || number > store->count())) {
        context.prompter().message(QStringLiteral("Datensatz %1 gibt es nicht: der Speicher hält %2.")
                                       .arg(number)
                                       .arg(store->count()),
                                   link::Prompter::Icon::Warning);
        return kExitFailed;
    }
    // Test records are kept in the archive before they are deleted, as every read keeps them.
    specdb::Removal removal = specdb::RemovalOf(*store);
    const QString url = context.options().archiveUrl;
    if (archive::KeepingRecords(url, context.options().noArchive))
        removal.keep = [url, source = context.TesterSource()](const QList<QByteArray> &records,
                                                              link::Prompter &) {
            return archive::KeepBeforeDeleting(records, source, url);
        };
    const specdb::RemovalStatus status =
        all ? specdb::DeleteAllRecords(context.link(), context.prompter(), context.texts(), removal)
            : specdb::DeleteRecord(context.link(), context.prompter(), context.texts(), number, removal);
    if (status != specdb::RemovalStatus::Deleted)
        return kExitFailed;
    context.out() << context.texts().text(link::TxtDeleteDone) << '\n';
    return kExitDone;
}

int Specdb(CliContext &context, const QStringList &words)
{
    const QString action = words.value(0);
    const QStringList rest = words.mid(1);
    if (action == QLatin1String("list"))
        return List(context, rest);
    if (action == QLatin1String("defaults"))
        return Defaults(context, rest);
    if (action == QLatin1String("add"))
        return Add(context, rest);
    if (action == QLatin1String("store-set"))
        return StoreSet(context, rest);
    if (action == QLatin1String("delete"))
        return Delete(context, rest);
    throw Usage(UsageText::Expected, {QStringLiteral("list | defaults | add | store-set | delete")});
}

} // namespace

QList<CliCommand> SpecdbCommands()
{
    return {
        {QStringLiteral("specdb"),
         QStringLiteral("list [--json] | %1 | %2 | store-set FILE... | delete N|--all")
             .arg(kDefaultsSynopsis, kAddSynopsis),
         QStringLiteral(
             "the test specifications in the tester's store: list the store, show the regulation's "
             "default limits with their sources (no tester needed), add one (\"Ohm\" in a "
             "limit is the ohm sign), store every record of set files, delete one record or all, "
             "from the highest number down"),
         Specdb},
    };
}

} // namespace kalvo::cli
