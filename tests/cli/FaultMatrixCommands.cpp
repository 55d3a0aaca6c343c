// The commands of the fault matrix: what each is run with, which files it keeps or reads, what it finds.
#include "cli/FaultMatrix.h"

#include <QRegularExpression>

namespace kalvo::testing::matrix {

namespace {

const QByteArray kOldFile = "alte Datei, vor dem Lauf geschrieben\r\n";

// A backup of 51 entries that differs from what the tester holds, so that a restore changes it.
QByteArray CalibrationBackup()
{
    QByteArray text;
    for (int n = 0; n <= 50; ++n)
        text +=
            QStringLiteral("%1:%2,%3\r\n").arg(n).arg(n % 7 - 3).arg(1.0 + n / 1000.0, 0, 'f', 4).toLatin1();
    return text;
}

QString Unchanged(const QString &out)
{
    return out;
}

// identify shows the tester's texts as they came beside what it read from them; only what it read
// counts (the identity answer with its echo, and a version date as the tester wrote it, do not).
QString IdentifyResults(const QString &out)
{
    static const QRegularExpression version(QStringLiteral(R"(^(\w+): .* (\(\d{4}-\d\d-\d\d\))$)"));
    QStringList results;
    for (const QString &line : out.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("identity:")))
            continue;
        const auto match = version.match(line);
        results << (match.hasMatch() ? match.captured(1) + QLatin1Char(' ') + match.captured(2) : line);
    }
    return results.join(QLatin1Char('\n'));
}

MatrixCommand Command(const QString &id, const QStringList &arguments)
{
    MatrixCommand command;
    command.id = id;
    command.arguments = arguments;
    command.results = Unchanged;
    return command;
}

QList<MatrixCommand> BuildCommands()
{
    QList<MatrixCommand> commands;
    MatrixCommand identify = Command(QStringLiteral("identify"), {QStringLiteral("identify")});
    identify.results = IdentifyResults;
    commands << identify;

    MatrixCommand clock = Command(QStringLiteral("clock"), {QStringLiteral("clock")});
    clock.repeatable = false; // the tester's time and the PC's
    commands << clock;

    MatrixCommand name = Command(QStringLiteral("name"), {QStringLiteral("name"), QStringLiteral("NEU-1")});
    name.changesTester = true;
    commands << name;

    commands << Command(QStringLiteral("records_count"),
                        {QStringLiteral("records"), QStringLiteral("count")});

    MatrixCommand readAll =
        Command(QStringLiteral("records_read_all"),
                {QStringLiteral("records"), QStringLiteral("read-all"), QStringLiteral("alle.txt")});
    readAll.files = {{QStringLiteral("alle.txt"), kOldFile}};
    commands << readAll;

    MatrixCommand current =
        Command(QStringLiteral("records_current"),
                {QStringLiteral("records"), QStringLiteral("current"), QStringLiteral("aktuell.txt")});
    current.files = {{QStringLiteral("aktuell.txt"), kOldFile}};
    commands << current;

    MatrixCommand list =
        Command(QStringLiteral("records_list"), {QStringLiteral("records"), QStringLiteral("list")});
    list.files = {{QStringLiteral("proto.txt"), kOldFile}};
    commands << list;

    MatrixCommand kym = Command(QStringLiteral("kym_read"),
                                {QStringLiteral("kym"), QStringLiteral("read"), QStringLiteral("kym.txt")});
    kym.simArguments = {QStringLiteral("--kym")};
    kym.files = {{QStringLiteral("kym.txt"), kOldFile}, {QStringLiteral("bin/log.tmp"), kOldFile}};
    commands << kym;

    MatrixCommand backup =
        Command(QStringLiteral("cal_backup"),
                {QStringLiteral("cal"), QStringLiteral("backup"), QStringLiteral("sicher.cal")});
    backup.files = {{QStringLiteral("sicher.cal"), kOldFile}};
    commands << backup;

    MatrixCommand restore =
        Command(QStringLiteral("cal_restore"), {QStringLiteral("cal"), QStringLiteral("restore"),
                                                QStringLiteral("werte.cal"), QStringLiteral("--store")});
    restore.files = {{QStringLiteral("werte.cal"), CalibrationBackup()}};
    restore.changesTester = true;
    commands << restore;

    MatrixCommand limits = Command(QStringLiteral("limits_set"),
                                   {QStringLiteral("limits"), QStringLiteral("set"), QStringLiteral("kuschl"),
                                    QStringLiteral("30"), QStringLiteral("--store")});
    limits.changesTester = true;
    commands << limits;

    MatrixCommand modem = Command(QStringLiteral("modem_set"),
                                  {QStringLiteral("modem"), QStringLiteral("set"), QStringLiteral("--tel1"),
                                   QStringLiteral("0711 4711"), QStringLiteral("--store")});
    modem.changesTester = true;
    commands << modem;

    commands << Command(QStringLiteral("vars_read"),
                        {QStringLiteral("vars"), QStringLiteral("read"), QStringLiteral("VMITBEZ")});
    commands << Command(QStringLiteral("vars_dump"), {QStringLiteral("vars"), QStringLiteral("dump")});

    MatrixCommand store =
        Command(QStringLiteral("vars_store"), {QStringLiteral("vars"), QStringLiteral("store")});
    store.changesTester = true;
    commands << store;
    return commands;
}

} // namespace

const QList<MatrixCommand> &MatrixCommands()
{
    static const QList<MatrixCommand> commands = BuildCommands();
    return commands;
}

} // namespace kalvo::testing::matrix
