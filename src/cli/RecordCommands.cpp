// kalvo-cli records, report, kym and csv: test records from the tester, the accessory and files.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"

#include "link/UserFiles.h"
#include "records/RecordDecoding.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"
#include "records/ReportBuilder.h"
#include "records/TesterPrintText.h"
#include "records/print/ReportDocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace kalvo::cli {

namespace {

const QString kRecordsSynopsis =
    QStringLiteral("count | list [--json] | read-all FILE | current FILE | show N [--template 0-4]");
const QString kReportSynopsis = QStringLiteral("FILE [--record N] [--pdf OUT]");
const QString kCsvSynopsis = QStringLiteral("FILE OUT [--header ueber.csv]");

int ExitFor(records::RetrievalStatus status)
{
    return status == records::RetrievalStatus::Done ? kExitDone : kExitFailed;
}

// Records read from the tester go into the archive as well as into their file.
int ExitAfterArchiving(CliContext &context, const records::RetrievalResult &result, const QString &file,
                       const QString &accessory = QString())
{
    if (result.status != records::RetrievalStatus::Done)
        return kExitFailed;
    return context.KeepInArchive(result.records,
                                 context.TesterSource(accessory, QFileInfo(file).absoluteFilePath()))
               ? kExitDone
               : kExitFailed;
}

// Records of a record file that was loaded go into the archive too (each is kept once).
bool ArchiveLoadedFile(CliContext &context, const QList<QByteArray> &records, const QString &file)
{
    return context.KeepInArchive(records,
                                 {QString(), QString(), QString(), QFileInfo(file).absoluteFilePath()});
}

int ReadAll(CliContext &context, const QString &file)
{
    context.prompter().PresetFile(file);
    context.OpenPortForRecords();
    QTextStream &out = context.out();
    const auto result =
        records::StoreAllRecords(context.link(), context.prompter(),
                                 [&out](int number, const QByteArray &) { out << number << '\n'; });
    if (result.status == records::RetrievalStatus::Done)
        out << result.records.size() << " records -> " << QDir::toNativeSeparators(file) << '\n';
    return ExitAfterArchiving(context, result, file);
}

int Records(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--template")}, {QStringLiteral("--json")});
    const QString action = w.positional.value(0);
    QTextStream &out = context.out();
    if (!w.flags.isEmpty() && action != QLatin1String("list"))
        throw Usage(UsageText::UnknownArgument, {w.flags.first()});
    if (action == QLatin1String("count") && w.positional.size() == 1 && w.options.isEmpty()) {
        context.OpenPort();
        const std::optional<int> count = records::CountRecords(context.link());
        if (!count)
            return kExitFailed;
        out << *count << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("list") && w.positional.size() == 1 && w.options.isEmpty()) {
        context.OpenPort();
        const auto result =
            records::ListStoreRecords(context.link(), context.prompter(),
                                      link::PlaceFileAndSay(context.prompter(), {}, records::kProtoFileName));
        if (w.flags.isEmpty()) {
            for (const QString &entry : std::as_const(result.listing.records))
                out << entry << '\n';
        } else if (result.status == records::RetrievalStatus::Done ||
                   result.status == records::RetrievalStatus::NoRecords) { // an empty store: []
            QJsonArray list;
            for (qsizetype i = 0; i < result.listing.records.size(); ++i)
                list.append(QJsonObject{{QStringLiteral("number"), result.listing.numbers.value(i)},
                                        {QStringLiteral("entry"), result.listing.records[i]}});
            context.PrintJson(list);
        }
        return ExitFor(result.status);
    }
    if (action == QLatin1String("read-all") && w.positional.size() == 2 && w.options.isEmpty())
        return ReadAll(context, w.positional[1]);
    if (action == QLatin1String("current") && w.positional.size() == 2 && w.options.isEmpty()) {
        context.prompter().PresetFile(w.positional[1]);
        context.OpenPortForRecords();
        return ExitAfterArchiving(context, records::StoreCurrentRecord(context.link(), context.prompter()),
                                  w.positional[1]);
    }
    if (action == QLatin1String("show") && w.positional.size() == 2) {
        const int record = NumberArgument(w.positional[1], QStringLiteral("N"));
        if (record < 1 || record > records::kMaxRecords)
            throw Usage(UsageText::Between, {QStringLiteral("N"), QStringLiteral("1"),
                                             QString::number(records::kMaxRecords), w.positional[1]});
        const int templateNumber =
            NumberArgument(w.options.value(QStringLiteral("--template"), "1"), QStringLiteral("--template"));
        if (templateNumber < records::kLowestTemplate || templateNumber > records::kHighestTemplate)
            throw Usage(UsageText::Between,
                        {QStringLiteral("--template"), QString::number(records::kLowestTemplate),
                         QString::number(records::kHighestTemplate), QString::number(templateNumber)});
        context.OpenPort();
        out << records::RenderStoredRecord(context.link(), templateNumber, record);
        return kExitDone;
    }
    throw Usage(UsageText::Expected, {kRecordsSynopsis});
}

int Report(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--record"), QStringLiteral("--pdf")});
    if (w.positional.size() != 1)
        throw Usage(UsageText::Expected, {kReportSynopsis});
    const QList<QByteArray> all = records::LoadRecordFile(w.positional[0]);
    int exitCode = ArchiveLoadedFile(context, all, w.positional[0]) ? kExitDone : kExitFailed;
    QList<QByteArray> chosen = all;
    if (w.options.contains(QStringLiteral("--record"))) {
        const int number =
            NumberArgument(w.options.value(QStringLiteral("--record")), QStringLiteral("--record"));
        if (number < 1 || number > all.size())
            throw Usage(UsageText::Between, {QStringLiteral("--record"), QStringLiteral("1"),
                                             QString::number(all.size()), QString::number(number)});
        chosen = {all[number - 1]};
    }
    QTextStream &out = context.out();
    QTextStream err(stderr);
    // Each report is made, handed on and dropped: a file of many records never has all its
    // reports in memory at once. A refused record is named and skipped; the others still come.
    const auto eachReport = [&](const std::function<void(const QString &)> &use) {
        for (const QByteArray &record : std::as_const(chosen)) {
            try {
                use(records::BuildReport(records::DecodeRecord(record)));
            } catch (const link::KalvoError &e) {
                err << e.message() << Qt::endl;
                exitCode = kExitFailed;
            }
        }
    };
    if (w.options.contains(QStringLiteral("--pdf"))) {
        // The reports go to the PDF, one a page; the path of what was written goes to stdout.
        const QString pdf = w.options.value(QStringLiteral("--pdf"));
        records::SaveReportPdf(pdf, QFileInfo(w.positional[0]).fileName(), [&](records::ReportPages &pages) {
            eachReport([&](const QString &report) { pages.Add(report); });
        });
        out << pdf << '\n';
        return exitCode;
    }
    bool first = true;
    eachReport([&](const QString &report) {
        if (!std::exchange(first, false))
            out << QStringLiteral("\f\r\n");
        out << report;
    });
    return exitCode;
}

int Kym(CliContext &context, const QStringList &words)
{
    if (words.size() != 2 || words[0] != QLatin1String("read"))
        throw Usage(UsageText::Expected, {QStringLiteral("read FILE")});
    context.prompter().PresetFile(words[1]);
    const QString logTmp = link::PlaceFileAndSay(context.prompter(), QCoreApplication::applicationDirPath(),
                                                 records::kLogTmpFileName);
    context.OpenPortForRecords();
    QTextStream &out = context.out();
    const auto result =
        records::ReadAccessoryRecords(context.link(), context.prompter(), logTmp,
                                      [&out](int number, const QByteArray &) { out << number << '\n'; });
    if (result.status != records::RetrievalStatus::Done)
        return kExitFailed;
    QList<QByteArray> table = result.records.mid(0, records::kAccessoryTableSize);
    const auto stored =
        records::StoreAccessoryRecords(context.link(), context.prompter(), logTmp, table, QString());
    if (stored != records::StoreStatus::Written)
        return kExitFailed;
    return ExitAfterArchiving(context, result, words[1], QStringLiteral("KYM"));
}

int Csv(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--header")});
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {kCsvSynopsis});
    // Every record of the file goes into the export, not only the first twelve the old table held.
    const QList<QByteArray> entries = records::LoadRecordFile(w.positional[0]);
    const bool archived = ArchiveLoadedFile(context, entries, w.positional[0]);
    records::ExportCsvFile(w.positional[1], w.options.value(QStringLiteral("--header")), entries, QString());
    context.out() << entries.size() << " records -> " << QDir::toNativeSeparators(w.positional[1]) << '\n';
    return archived ? kExitDone : kExitFailed;
}

} // namespace

QList<CliCommand> RecordCommands()
{
    return {
        {QStringLiteral("records"), kRecordsSynopsis,
         QStringLiteral(
             "the tester's test records: how many, the store listing, all or the current one into a "
             "record file, one as the tester prints it (template 1 by default)"),
         Records},
        {QStringLiteral("report"), kReportSynopsis,
         QStringLiteral(
             "the test report of each record of a record file (or of record N), form feed between"),
         Report},
        {QStringLiteral("kym"), QStringLiteral("read FILE"),
         QStringLiteral("read every record of the KYM accessory into log.tmp and FILE"), Kym},
        {QStringLiteral("csv"), kCsvSynopsis,
         QStringLiteral("export every record of a record file as semicolon-separated Windows text"), Csv},
    };
}

} // namespace kalvo::cli
