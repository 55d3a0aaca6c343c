// kalvo-cli archive: the record archive from the command line (import, list, show, export, verify, due).
#include "ArchiveBackupCommands.h"
#include "ArchivePaperCommands.h"
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"
#include "DeviceCommands.h"

#include "archive/Archive.h"
#include "archive/ArchiveExport.h"
#include "archive/ArchiveQueries.h"
#include "archive/Customers.h"
#include "archive/DeviceData.h"
#include "archive/RecordImport.h"
#include "archive/RetestIntervals.h"
#include "records/RecordFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kalvo::cli {

namespace {

const QString kIntervalSynopsis =
    QStringLiteral("interval [--json] | interval --regulation NAME MONTHS | interval --device ID "
                   "[--customer NAME] MONTHS|default");
// Made when asked for: the parts of other files are not there yet while statics are made.
QString ArchiveSynopsis()
{
    return QStringLiteral("import [--customer NAME] FILE... | list [FILTER] [--json] | show N [--pdf OUT] | "
                          "export OUT.csv [FILTER] | verify | due [--before DATE] [--customer NAME] [--json] | "
                          "%1 | %2 | %3 | %4")
        .arg(kIntervalSynopsis, DeviceSynopsis(), kBackupSynopsis, ArchivePaperSynopsis());
}
const QStringList kFilterOptions = {
    QStringLiteral("--device"), QStringLiteral("--type"),       QStringLiteral("--customer"),
    QStringLiteral("--text"),   QStringLiteral("--regulation"), QStringLiteral("--since"),
    QStringLiteral("--until"),  QStringLiteral("--due-before"), QStringLiteral("--customer-name")};

// "2024-03-01" or "01.03.2024".
QDate DateArgument(const QString &word, const QString &what)
{
    QDate date = QDate::fromString(word, Qt::ISODate);
    if (!date.isValid())
        date = QDate::fromString(word, QStringLiteral("dd.MM.yyyy"));
    if (!date.isValid())
        throw Usage(UsageText::NeedsDate, {what, word});
    return date;
}

archive::ArchiveFilter FilterFrom(const Words &w)
{
    archive::ArchiveFilter filter;
    const auto text = [&w](const char *name) { return w.options.value(QString::fromLatin1(name)); };
    const auto date = [&w](const char *name) {
        const QString option = QString::fromLatin1(name);
        return w.options.contains(option) ? DateArgument(w.options.value(option), option) : QDate();
    };
    filter.deviceId = text("--device");
    filter.type = text("--type");
    filter.customer = text("--customer");
    filter.customerName = text("--customer-name");
    filter.text = text("--text");
    filter.regulation = text("--regulation");
    filter.from = date("--since");
    filter.to = date("--until");
    filter.dueBefore = date("--due-before");
    if (w.flags.contains(QStringLiteral("--failed")))
        filter.failed = true;
    if (w.flags.contains(QStringLiteral("--passed")))
        filter.failed = false;
    return filter;
}

QString Moment(const QDateTime &time)
{
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd HH:mm")) : QStringLiteral("-");
}

QString Day(const QDate &date)
{
    return date.isValid() ? date.toString(Qt::ISODate) : QStringLiteral("-");
}

QJsonObject Json(const archive::ArchivedRecord &record)
{
    const QStringList columns = archive::CsvColumns();
    const QStringList cells = archive::CsvCells(record);
    QJsonObject object;
    for (qsizetype i = 0; i < columns.size(); ++i)
        object.insert(columns[i], cells[i]);
    object.insert(QStringLiteral("Nr"), record.id);
    return object;
}

// Lists, reports and checks only read: they create no archive and need no write lock.
constexpr auto kRead = archive::ArchiveAccess::Read;

int Import(CliContext &context, const Words &w)
{
    const QStringList files = w.positional.mid(1);
    if (files.isEmpty())
        throw Usage(UsageText::Expected, {QStringLiteral("import [--customer NAME] FILE...")});
    QTextStream &out = context.out();
    int exitCode = kExitDone;
    for (const QString &file : files) {
        try {
            const QString path = QFileInfo(file).absoluteFilePath();
            const archive::ImportResult result =
                archive::ImportRecords(context.archive(), records::LoadRecordFile(file),
                                       {{}, {}, {}, path, w.options.value(QStringLiteral("--customer"))});
            out << QDir::toNativeSeparators(file) << ": " << result.added << " neu, " << result.known
                << " schon im Archiv, " << result.refused.size() << " abgelehnt\n";
            for (const QString &refused : result.refused)
                context.prompter().message(QDir::toNativeSeparators(file) + QStringLiteral(": ") + refused,
                                           link::Prompter::Icon::Warning);
            if (!result.refused.isEmpty())
                exitCode = kExitFailed;
        } catch (const link::FormatError &e) {
            // A file that cannot be read stops only itself; the others are still imported.
            context.prompter().message(e.message(), link::Prompter::Icon::Critical);
            exitCode = kExitFailed;
        }
    }
    return exitCode;
}

int List(CliContext &context, const Words &w)
{
    if (w.positional.size() != 1)
        throw Usage(UsageText::Expected, {QStringLiteral("list [FILTER] [--json]")});
    QTextStream &out = context.out();
    const bool json = w.flags.contains(QStringLiteral("--json"));
    bool first = true;
    if (json)
        out << '[';
    // Written as they come: the list of a large archive is never held whole.
    archive::ForEachRecord(context.archive(kRead), FilterFrom(w), [&](const archive::ArchivedRecord &r) {
        if (json) {
            out << (std::exchange(first, false) ? "\n" : ",\n")
                << QJsonDocument(Json(r)).toJson(QJsonDocument::Compact);
            return;
        }
        out << r.id << '\t' << Moment(r.testedAt) << '\t' << r.deviceId << '\t' << r.deviceType << '\t'
            << r.regulation << '\t' << r.verdict << '\t' << QStringLiteral("nächste Prüfung ")
            << Day(r.nextTest) << '\n';
    });
    if (json)
        out << (first ? "]\n" : "\n]\n");
    return kExitDone;
}

int Show(CliContext &context, const Words &w)
{
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {QStringLiteral("show N [--pdf OUT]")});
    const int id = NumberArgument(w.positional[1], QStringLiteral("N"));
    if (w.options.contains(QStringLiteral("--pdf"))) {
        const QString pdf = w.options.value(QStringLiteral("--pdf"));
        archive::ExportArchivePdf(context.archive(kRead), {id}, pdf);
        context.out() << pdf << '\n';
        return kExitDone;
    }
    const std::optional<archive::StoredRecord> stored = archive::FetchRecord(context.archive(kRead), id);
    if (!stored)
        throw archive::ArchiveError(QStringLiteral("Archiv %1: kein Protokoll Nr. %2")
                                        .arg(context.archive(kRead).target().Describe())
                                        .arg(id));
    context.out() << archive::ReportWithHash(stored->raw, stored->record.sha256);
    return kExitDone;
}

int Export(CliContext &context, const Words &w)
{
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {QStringLiteral("export OUT.csv [FILTER]")});
    const qint64 count = archive::ExportArchiveCsv(context.archive(kRead), FilterFrom(w), w.positional[1]);
    context.out() << count << " records -> " << QDir::toNativeSeparators(w.positional[1]) << '\n';
    return kExitDone;
}

int Verify(CliContext &context, const Words &w)
{
    if (w.positional.size() != 1)
        throw Usage(UsageText::Expected, {QStringLiteral("verify")});
    const archive::VerifyResult result = archive::VerifyArchive(context.archive(kRead));
    QTextStream &out = context.out();
    for (const archive::ChangedRecord &changed : result.changed)
        out << "Nr " << changed.id << " verändert: gespeichert " << changed.storedSha256 << ", jetzt "
            << changed.actualSha256 << '\n';
    out << result.checked << " geprüft, " << result.changed.size() << " verändert\n";
    return result.changed.isEmpty() ? kExitDone : kExitFailed;
}

int Due(CliContext &context, const Words &w)
{
    if (w.positional.size() != 1)
        throw Usage(UsageText::Expected, {QStringLiteral("due [--before DATE] [--customer NAME] [--json]")});
    // Without a date: what is due today or overdue.
    const QDate before =
        w.options.contains(QStringLiteral("--before"))
            ? DateArgument(w.options.value(QStringLiteral("--before")), QStringLiteral("--before"))
            : QDate::currentDate().addDays(1);
    QTextStream &out = context.out();
    const QList<archive::DueDevice> due =
        archive::DueDevices(context.archive(kRead), before, 0, w.options.value(QStringLiteral("--customer")));
    if (w.flags.contains(QStringLiteral("--json"))) {
        QJsonArray list;
        for (const archive::DueDevice &d : due)
            list.append(QJsonObject{{QStringLiteral("nextTest"), Day(d.nextTest)},
                                    {QStringLiteral("customer"), d.customerName},
                                    {QStringLiteral("deviceId"), d.deviceId},
                                    {QStringLiteral("deviceType"), d.deviceType},
                                    {QStringLiteral("regulation"), d.regulation},
                                    {QStringLiteral("lastTest"), Moment(d.lastTest)},
                                    {QStringLiteral("intervalMonths"), d.intervalMonths},
                                    {QStringLiteral("lastRecordId"), d.lastRecordId}});
        context.PrintJson(list);
        return kExitDone;
    }
    for (const archive::DueDevice &d : due)
        out << Day(d.nextTest) << '\t' << d.customerName << '\t' << d.deviceId << '\t' << d.deviceType << '\t'
            << d.regulation << '\t' << QStringLiteral("zuletzt ") << Moment(d.lastTest) << '\t'
            << d.intervalMonths << " Monate\t Nr " << d.lastRecordId << '\n';
    return kExitDone;
}

int Interval(CliContext &context, const Words &w)
{
    archive::Archive &archive = context.archive();
    const QString regulation = w.options.value(QStringLiteral("--regulation"));
    const QString device = w.options.value(QStringLiteral("--device"));
    if (w.positional.size() == 1 && w.options.isEmpty()) {
        const archive::RetestIntervals intervals = archive::LoadIntervals(archive);
        QHash<qint64, QString> customers;
        for (const archive::Customer &customer : archive::ListCustomers(archive))
            customers.insert(customer.id, customer.name);
        if (w.flags.contains(QStringLiteral("--json"))) {
            QJsonArray list;
            for (const auto &[name, months] : archive::DefaultRegulationIntervals())
                list.append(
                    QJsonObject{{QStringLiteral("months"), intervals.byRegulation.value(name, months)},
                                {QStringLiteral("regulation"), name}});
            for (auto it = intervals.byDevice.cbegin(); it != intervals.byDevice.cend(); ++it)
                list.append(QJsonObject{{QStringLiteral("months"), it.value()},
                                        {QStringLiteral("customer"), customers.value(it.key().customerId)},
                                        {QStringLiteral("device"), it.key().deviceId}});
            context.PrintJson(list);
            return kExitDone;
        }
        for (const auto &[name, months] : archive::DefaultRegulationIntervals())
            context.out() << intervals.byRegulation.value(name, months) << " Monate\t" << name << '\n';
        for (auto it = intervals.byDevice.cbegin(); it != intervals.byDevice.cend(); ++it)
            context.out() << it.value() << " Monate\tGerät " << it.key().deviceId << '\t'
                          << customers.value(it.key().customerId) << '\n';
        return kExitDone;
    }
    if (w.positional.size() != 2 || regulation.isEmpty() == device.isEmpty() || !w.flags.isEmpty())
        throw Usage(UsageText::Expected, {kIntervalSynopsis});
    const QString value = w.positional[1];
    if (!device.isEmpty()) {
        const std::optional<int> months =
            value == QLatin1String("default")
                ? std::nullopt
                : std::optional<int>(NumberArgument(value, QStringLiteral("MONTHS")));
        archive::SetDeviceInterval(
            archive, OneDevice(archive, device, w.options.value(QStringLiteral("--customer"))).key, months);
        return kExitDone;
    }
    archive::SetRegulationInterval(archive, regulation, NumberArgument(value, QStringLiteral("MONTHS")));
    return kExitDone;
}

int Archive(CliContext &context, const QStringList &words)
{
    const QString action = words.value(0);
    if (action == QLatin1String("import"))
        return Import(context, SplitWords(words, {QStringLiteral("--customer")}));
    if (action == QLatin1String("list"))
        return List(context, SplitWords(words, kFilterOptions,
                                        {QStringLiteral("--failed"), QStringLiteral("--passed"),
                                         QStringLiteral("--json")}));
    if (action == QLatin1String("show"))
        return Show(context, SplitWords(words, {QStringLiteral("--pdf")}));
    if (action == QLatin1String("export"))
        return Export(context, SplitWords(words, kFilterOptions,
                                          {QStringLiteral("--failed"), QStringLiteral("--passed")}));
    if (action == QLatin1String("verify"))
        return Verify(context, SplitWords(words, {}));
    if (action == QLatin1String("due"))
        return Due(context, SplitWords(words, {QStringLiteral("--before"), QStringLiteral("--customer")},
                                       {QStringLiteral("--json")}));
    if (action == QLatin1String("interval"))
        return Interval(context, SplitWords(words,
                                            {QStringLiteral("--regulation"), QStringLiteral("--device"),
                                             QStringLiteral("--customer")},
                                            {QStringLiteral("--json")}));
    // archive device ...
    if (action == QLatin1String("device"))
        return ArchiveDevice(context, words);
    if (action == QLatin1String("backup"))
        return ArchiveBackup(context, words);
    if (action == QLatin1String("restore"))
        return ArchiveRestore(context, words);
    if (IsArchivePaperAction(action))
        return RunArchivePaperAction(context, words, kFilterOptions, FilterFrom);
    throw Usage(UsageText::Expected, {ArchiveSynopsis()});
}

} // namespace

QList<CliCommand> ArchiveCommands()
{
    return {
        {QStringLiteral("archive"), ArchiveSynopsis(),
         QStringLiteral(
             "the record archive: import record files, list and search (FILTER: --device ID --type T "
             "--customer C (part of the record's customer) --customer-name NAME (exactly this customer "
             "of the archive) --text T --regulation NAME --since DATE --until DATE --due-before DATE "
             "--failed --passed), a record's report with its SHA-256 (or as PDF), CSV export, "
             "check every record's bytes against its hash, the devices due for a test, re-test "
             "intervals, a device's own data (records without a customer go to \"ohne Kunde\" or to "
             "the customer given), a backup of the archive while it is in use and its restoring into "
             "an empty archive, test labels with QR codes and signed reports (PDF/A) of what FILTER finds, "
             "a label's device found by its QR text"),
         Archive},
    };
}

} // namespace kalvo::cli
