// The commands of the fault matrix: what each is run with, which files it keeps or reads, what it finds.
#include "cli/FaultMatrix.h"
#include "sim/UpdateFiles.h"
#include "update/UpdateScript.h"

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

// The files of a German package, read by the update commands and never written.
QList<KeptFile> PackageFiles()
{
    return {{QStringLiteral("med.hex"), JoinLines(HexLines(12))},
            {QStringLiteral("bilder.p"), Package(PackageBytes(400, 1))},
            {QStringLiteral("abge.p"), Package(PackageBytes(300, 2))},
            {QStringLiteral("hlfge.p"), Package(PackageBytes(200, 3))}};
}

// A print template with placeholders, long enough for its P-file to go (over 100 bytes).
QByteArray Template()
{
    QByteArray text;
    for (int i = 1; i <= 8; ++i)
        text += "#" + QByteArray::number(10 + i) + "        Messwert " + QByteArray::number(i) + "\r\n";
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
    static const QRegularExpression version(
        QStringLiteral(R"(^(\w+): .* (\(\d{4}-\d\d-\d\d(T\d\d:\d\d:\d\d)?\))$)"));
    QStringList results;
    for (const QString &line : out.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("identity:")))
            continue;
        const auto match = version.match(line);
        results << (match.hasMatch() ? match.captured(1) + QLatin1Char(' ') + match.captured(2) : line);
    }
    return results.join(QLatin1Char('\n'));
}

// The dump shows each value's two characters as they came (" 4" or "04") and bits by the digit
// table, which keeps a group from the line before for a blank: only the value read counts, as two
// digits, and the block entry behind it. (Before the first digit a group is empty.)
QString DumpResults(const QString &out)
{
    static const QRegularExpression line(QStringLiteral(R"(^(\w\w): ==(..) [01]{0,4} [01]{4}(.*)$)"));
    QStringList results;
    for (const QString &text : out.split(QLatin1Char('\n'))) {
        const auto match = line.match(text);
        results << (match.hasMatch()
                        ? match.captured(1) + QStringLiteral(": ") +
                              match.captured(2).trimmed().toUpper().rightJustified(2, QLatin1Char('0')) +
                              match.captured(3)
                        : text);
    }
    return results.join(QLatin1Char('\n'));
}

QStringList Split(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char('|'), Qt::SkipEmptyParts);
}

QList<MatrixCommand> BuildCommands()
{
    const struct {
        const char *id;
        const char *arguments; // separated by "|"
        const char *writes;    // the files the command writes, separated by "|"
        bool changesTester;
    } table[] = {
        {"identify", "identify", "", false},
        {"clock", "clock", "", false},
        {"name", "name|NEU-1", "", true},
        {"records_count", "records|count", "", false},
        {"records_read_all", "records|read-all|alle.txt", "alle.txt", false},
        {"records_current", "records|current|aktuell.txt", "aktuell.txt", false},
        {"records_list", "records|list", "proto.txt", false},
        {"kym_read", "kym|read|kym.txt", "kym.txt|bin/log.tmp", false},
        {"cal_backup", "cal|backup|sicher.cal", "sicher.cal", false},
        {"cal_restore", "cal|restore|werte.cal|--store", "", true},
        {"limits_set", "limits|set|kuschl|30|--store", "", true},
        {"modem_set", "modem|set|--tel1|0711 4711|--store", "", true},
        {"vars_read", "vars|read|VMITBEZ", "", false},
        {"vars_dump", "vars|dump", "", false},
        {"vars_store", "vars|store", "", true},
        {"update_hex", "update|file|med.hex", "", true},
        {"update_p", "update|file|abge.p", "", true},
        {"update_package", "update|package|.|--lang|ge", "", true},
        {"pfile_load", "pfile|load|vorlage.pr|--slot|1", "", true},
        {"templates_read", "templates|read|1|vorlage1.pr", "vorlage1.pr", false},
        {"specdb_list", "specdb|list", "test.txt", false},
        {"specdb_add", "specdb|add|DR.NEU|--regulation|EN 60601|--limit|1=<0.300Ohm|--limit|22=>1.50kV",
         "test.txt", true},
        {"specdb_delete", "--yes|specdb|delete|--all", "test.txt", true},
    };
    QList<MatrixCommand> commands;
    for (const auto &row : table) {
        MatrixCommand command;
        command.id = QString::fromLatin1(row.id);
        command.arguments = Split(row.arguments);
        for (const QString &file : Split(row.writes))
            command.files.append({file, kOldFile});
        command.changesTester = row.changesTester;
        command.results = Unchanged;
        if (command.id == QLatin1String("identify"))
            command.results = IdentifyResults;
        if (command.id == QLatin1String("vars_dump"))
            command.results = DumpResults;
        if (command.id == QLatin1String("clock"))
            command.repeatable = false; // the tester's time and the PC's
        if (command.id == QLatin1String("kym_read")) {
            command.simArguments = {QStringLiteral("--kym")};
            command.files[1].completeAfter = QStringLiteral("wer?\\r");
        }
        // A store of both kinds for the listing; specifications only where one is added.
        if (command.id.startsWith(QLatin1String("specdb")))
            command.tracesParts = true; // test.txt: a line for each part read
        if (command.id.startsWith(QLatin1String("specdb")))
            command.simArguments = {QStringLiteral("--records"),
                                    command.id == QLatin1String("specdb_add") ? QStringLiteral("0")
                                                                              : QStringLiteral("1"),
                                    QStringLiteral("--specifications")};
        if (command.id == QLatin1String("specdb_add"))
            command.repeatable = false; // the record carries the PC's date and time
        // The trace is complete once the store has been read, before anything is changed.
        if (command.id == QLatin1String("specdb_add"))
            command.files[0].completeAfter = QStringLiteral("prx?2z\\r");
        if (command.id == QLatin1String("specdb_delete"))
            command.files[0].completeAfter = QStringLiteral("prx?3z\\r");
        if (command.id == QLatin1String("cal_restore"))
            command.files = {{QStringLiteral("werte.cal"), CalibrationBackup()}}; // read, never written
        if (command.id.startsWith(QLatin1String("update_")))
            command.files = PackageFiles();
        // The P-file is made before the first command and stays whatever the tester answers.
        if (command.id == QLatin1String("pfile_load"))
            command.files = {{QStringLiteral("vorlage.pr"), Template()}};
        commands << command;
    }
    return commands;
}

} // namespace

const QList<MatrixCommand> &MatrixCommands()
{
    static const QList<MatrixCommand> commands = BuildCommands();
    return commands;
}

} // namespace kalvo::testing::matrix
