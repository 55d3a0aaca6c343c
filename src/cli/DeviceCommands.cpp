// kalvo-cli archive device: show, set, move, retire; every change leaves a change row.
#include "DeviceCommands.h"

#include "CliCommand.h"
#include "CliContext.h"
#include "CliOptions.h"
#include "CliWords.h"

#include "archive/Archive.h"
#include "archive/ArchiveTypes.h"

#include <QTextStream>

namespace kalvo::cli {

QString DeviceSynopsis()
{
    return QStringLiteral(
        "device show|history ID [--customer NAME] | device set ID [--customer NAME] [--type T] "
        "[--manufacturer M] [--location L] [--remarks R] [--out-of-service yes|no] | "
        "device move ID [--customer NAME] --to NAME | device retire ID [--customer NAME]");
}

namespace {

std::optional<bool> YesNo(const Words &w, const QString &option)
{
    if (!w.options.contains(option))
        return std::nullopt;
    const QString value = w.options.value(option);
    if (value == QLatin1String("yes") || value == QLatin1String("ja"))
        return true;
    if (value == QLatin1String("no") || value == QLatin1String("nein"))
        return false;
    throw Usage(UsageText::Expected, {option + QStringLiteral(" yes|no")});
}

std::optional<QString> TextOption(const Words &w, const char *option)
{
    const QString name = QString::fromLatin1(option);
    return w.options.contains(name) ? std::optional<QString>(w.options.value(name)) : std::nullopt;
}

QString Moment(const QDateTime &time)
{
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd HH:mm")) : QStringLiteral("-");
}

void Show(QTextStream &out, const archive::DeviceData &d)
{
    out << "ID-Nr\t" << d.key.deviceId << "\nKunde\t" << d.customerName << "\nTyp\t"
        << (d.type.isEmpty() ? d.recordType : d.type) << "\nHersteller\t" << d.manufacturer << "\nStandort\t"
        << d.location << "\nBemerkung\t" << d.remarks << "\nVorschrift\t" << d.regulation
        << "\nPrüfintervall\t"
        << (d.intervalMonths ? QString::number(*d.intervalMonths) : QStringLiteral("der Vorschrift"))
        << "\nzuletzt\t" << Moment(d.lastTest) << "\nnächste Prüfung\t" << d.nextTest.toString(Qt::ISODate)
        << "\naußer Betrieb\t" << (d.outOfService ? "ja" : "nein") << "\nausgemustert\t"
        << (d.retired ? "ja" : "nein") << '\n';
}

void History(QTextStream &out, archive::Archive &archive, const archive::DeviceKey &key)
{
    for (const archive::DeviceEvent &event : archive::DeviceHistory(archive, key))
        if (const auto &i = event.import)
            out << Moment(i->importedAt) << "\tImport " << i->id << '\t' << i->tester << ' '
                << i->testerSerial << '\t' << i->file << '\t' << i->user << '@' << i->host << '\t'
                << i->version << '\t' << i->added << " neu\n";
        else if (const auto &c = event.change)
            out << Moment(c->changedAt) << '\t' << c->field << '\t' << c->oldValue << " -> " << c->newValue
                << '\t' << c->user << '@' << c->host << '\n';
}

} // namespace

archive::DeviceData OneDevice(archive::Archive &archive, const QString &deviceId, const QString &customer)
{
    const QList<archive::DeviceData> devices = archive::FindDevices(archive, deviceId, customer);
    if (devices.isEmpty())
        throw archive::ArchiveError(
            QStringLiteral("Gerät \"%1\"%2: im Archiv ist kein datierter Test davon")
                .arg(deviceId, customer.isEmpty() ? QString() : QStringLiteral(" bei \"%1\"").arg(customer)));
    if (devices.size() > 1) {
        QStringList names;
        for (const archive::DeviceData &d : devices)
            names.append(d.customerName);
        throw archive::ArchiveError(QStringLiteral("Gerät \"%1\" gibt es bei %2 Kunden (%3): bitte mit "
                                                   "--customer einen nennen")
                                        .arg(deviceId)
                                        .arg(devices.size())
                                        .arg(names.join(QStringLiteral(", "))));
    }
    return devices.first();
}

int ArchiveDevice(CliContext &context, const QStringList &words)
{
    const Words w = SplitWords(words, {QStringLiteral("--customer"), QStringLiteral("--type"),
                                       QStringLiteral("--manufacturer"), QStringLiteral("--location"),
                                       QStringLiteral("--remarks"), QStringLiteral("--out-of-service"),
                                       QStringLiteral("--to")});
    const QString action = w.positional.value(1);
    if (w.positional.size() != 3)
        throw Usage(UsageText::Expected, {DeviceSynopsis()});
    const bool reads = action == QLatin1String("show") || action == QLatin1String("history");
    archive::Archive &archive =
        context.archive(reads ? archive::ArchiveAccess::Read : archive::ArchiveAccess::Write);
    const archive::DeviceData device =
        OneDevice(archive, w.positional[2], w.options.value(QStringLiteral("--customer")));
    if (action == QLatin1String("show")) {
        Show(context.out(), device);
        return kExitDone;
    }
    if (action == QLatin1String("history")) {
        History(context.out(), archive, device.key);
        return kExitDone;
    }
    if (action == QLatin1String("set")) {
        archive::ChangeDeviceData(archive, device.key,
                                  {TextOption(w, "--type"), TextOption(w, "--manufacturer"),
                                   TextOption(w, "--location"), TextOption(w, "--remarks"),
                                   YesNo(w, QStringLiteral("--out-of-service")), std::nullopt});
        return kExitDone;
    }
    if (action == QLatin1String("retire")) {
        archive::ChangeDeviceData(archive, device.key, {.retired = true});
        return kExitDone;
    }
    if (action == QLatin1String("move") && w.options.contains(QStringLiteral("--to"))) {
        archive::MoveDevice(archive, device.key, w.options.value(QStringLiteral("--to")));
        return kExitDone;
    }
    throw Usage(UsageText::Expected, {DeviceSynopsis()});
}

} // namespace kalvo::cli
