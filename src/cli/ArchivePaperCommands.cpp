// kalvo-cli archive labels / signed / find: test labels, signed reports and a label's device.
#include "ArchivePaperCommands.h"

#include "CliContext.h"
#include "CliOptions.h"

#include "archive/Archive.h"
#include "archive/ArchiveQueries.h"
#include "archive/LabelCode.h"
#include "archive/LabelDevices.h"
#include "archive/ReportSettings.h"
#include "archive/SignedReport.h"
#include "archive/TestLabels.h"

#include <QDir>

namespace kalvo::cli {

namespace {

constexpr auto kRead = archive::ArchiveAccess::Read;
const QString kLabels = QStringLiteral("labels OUT.pdf [FILTER] [--sheet a4-3x8|roll-62] [--first N]");
const QString kSigned = QStringLiteral("signed OUT.pdf [FILTER] [--inspector NAME]");
const QString kFind = QStringLiteral("find QRTEXT");

QList<qint64> FoundIds(archive::Archive &archive, const archive::ArchiveFilter &filter)
{
    QList<qint64> ids;
    archive::ForEachRecord(archive, filter, [&ids](const archive::ArchivedRecord &r) { ids << r.id; });
    return ids;
}

QString GermanDay(const QDate &date)
{
    return date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy")) : QStringLiteral("-");
}

int Labels(CliContext &context, const Words &w, const archive::ArchiveFilter &filter)
{
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {kLabels});
    const QString sheetName = w.options.value(QStringLiteral("--sheet"), QStringLiteral("a4-3x8"));
    const std::optional<archive::LabelSheet> sheet = archive::LabelSheetNamed(sheetName);
    if (!sheet)
        throw Usage(UsageText::OneOf,
                    {QStringLiteral("--sheet"), QStringLiteral("a4-3x8, roll-62"), sheetName});
    int first = 1;
    if (w.options.contains(QStringLiteral("--first"))) {
        const QString word = w.options.value(QStringLiteral("--first"));
        first = NumberArgument(word, QStringLiteral("--first"));
        if (first < 1 || first > sheet->perPage())
            throw Usage(UsageText::Between, {QStringLiteral("--first"), QStringLiteral("1"),
                                             QString::number(sheet->perPage()), word});
    }
    archive::Archive &archive = context.archive(kRead);
    const QList<archive::LabelDevice> devices = archive::LabelDevices(archive, FoundIds(archive, filter));
    const QString out = w.positional[1];
    archive::WriteLabelsPdf(devices, *sheet, first, out);
    context.out() << devices.size() << " labels -> " << QDir::toNativeSeparators(out) << '\n';
    return kExitDone;
}

int Signed(CliContext &context, const Words &w, const archive::ArchiveFilter &filter)
{
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {kSigned});
    archive::ReportSettings settings = archive::ReadReportSettings();
    if (w.options.contains(QStringLiteral("--inspector")))
        settings.inspector = w.options.value(QStringLiteral("--inspector"));
    if (settings.inspector.trimmed().isEmpty())
        throw Usage(UsageText::NeedsValue, {QStringLiteral("--inspector")});
    archive::Archive &archive = context.archive(kRead);
    const QList<qint64> ids = FoundIds(archive, filter);
    const QString out = w.positional[1];
    for (const QString &note : archive::ExportSignedReportPdf(archive, ids, settings, out))
        context.prompter().message(note, link::Prompter::Icon::Warning);
    context.out() << ids.size() << " records -> " << QDir::toNativeSeparators(out) << '\n';
    return kExitDone;
}

int Find(CliContext &context, const Words &w)
{
    if (w.positional.size() != 2)
        throw Usage(UsageText::Expected, {kFind});
    const archive::LabelCode code = archive::ParseLabelCode(w.positional[1]);
    archive::Archive &archive = context.archive(kRead);
    const std::optional<archive::LabelDevice> device = archive::FindLabelDevice(archive, code);
    if (!device)
        throw archive::ArchiveError(QStringLiteral("Archiv %1: kein Gerät \"%2\" beim Kunden \"%3\"")
                                        .arg(archive.target().Describe(), code.deviceId, code.customer));
    QTextStream &out = context.out();
    out << "Kunde:           " << device->customer << '\n'
        << "ID-Nr:           " << device->deviceId << '\n'
        << "Typ:             " << device->deviceType << '\n'
        << "Letzte Prüfung:  " << GermanDay(device->lastTest.date()) << '\n'
        << "Ergebnis:        " << (device->failed ? "nicht bestanden" : "bestanden") << '\n'
        << "Nächste Prüfung: " << GermanDay(device->nextTest) << '\n';
    if (code.nextTest != device->nextTest)
        out << "Auf dem Etikett: " << GermanDay(code.nextTest) << " (geändert)\n";
    out << "Verlauf:\n";
    archive::ArchiveFilter history;
    history.deviceId = device->deviceId;
    history.customerName = device->customer;
    archive::ForEachRecord(archive, history, [&out](const archive::ArchivedRecord &r) {
        out << "  Nr " << r.id << '\t'
            << (r.testedAt.isValid() ? r.testedAt.toString(QStringLiteral("dd.MM.yyyy HH:mm"))
                                     : QStringLiteral("-"))
            << '\t' << r.regulation << '\t' << r.verdict << '\n';
    });
    return kExitDone;
}

} // namespace

QString ArchivePaperSynopsis()
{
    return QStringList{kLabels, kSigned, kFind}.join(QStringLiteral(" | "));
}

bool IsArchivePaperAction(const QString &action)
{
    return action == QLatin1String("labels") || action == QLatin1String("signed") ||
           action == QLatin1String("find");
}

int RunArchivePaperAction(CliContext &context, const QStringList &words, const QStringList &filterOptions,
                          const std::function<archive::ArchiveFilter(const Words &)> &filterFrom)
{
    const QString action = words.value(0);
    const QStringList verdicts{QStringLiteral("--failed"), QStringLiteral("--passed")};
    if (action == QLatin1String("find"))
        return Find(context, SplitWords(words, {}));
    if (action == QLatin1String("labels")) {
        const Words w = SplitWords(
            words, filterOptions + QStringList{QStringLiteral("--sheet"), QStringLiteral("--first")},
            verdicts);
        return Labels(context, w, filterFrom(w));
    }
    const Words w = SplitWords(words, filterOptions + QStringList{QStringLiteral("--inspector")}, verdicts);
    return Signed(context, w, filterFrom(w));
}

} // namespace kalvo::cli
