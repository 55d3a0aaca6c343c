// kalvo-cli specdb against kalvo-sim over a pseudo-terminal: the bytes that reach the tester, the
// store listed back, set files, the guard and the deletions.
#include "support/SimProcess.h"
#include "support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo::testing;

namespace {

QStringList Args(std::initializer_list<const char *> words)
{
    QStringList list;
    for (const char *word : words)
        list << QString::fromUtf8(word);
    return list;
}

// What reading a store of `count` entries sends.
// A deletion keeps the records in the archive first, with the tester's name and serial number:
// the tester is identified before its store is read.
const QStringList kIdentification = {QStringLiteral("dis?\\r"), QStringLiteral("ver?\\r"),
                                     QStringLiteral("idn?\\r")};

QStringList StoreRead(int count)
{
    QStringList lines{QStringLiteral("prx?n\\r")};
    for (int i = 1; i <= count; ++i)
        for (const char *part : {"x", "y", "z"})
            lines << QStringLiteral("prx?%1%2\\r").arg(i).arg(QLatin1String(part));
    return lines;
}

QStringList Received(const SimProcess &sim, const QString &prefix)
{
    return sim.ReceivedBytes().filter(
        QRegularExpression(QStringLiteral("^") + QRegularExpression::escape(prefix)));
}

} // namespace

TEST(CliSpecdbCommands, AddSendsTheRecordInThreeChunksBehindTheRunningNumber)
{
    QTemporaryDir dir;
    SimProcess sim(Args({"--records", "0", "--specifications"}));
    ASSERT_TRUE(sim.started());
    QStringList add = Args({"specdb", "add", "Bohrmaschine", "--regulation", "vde 0702", "--class", "06",
                            "--type", "03", "--parts", "2", "--sfc", "PE,AWT"});
    for (int box = 1; box <= 22; ++box) {
        const QString text = box == 1    ? QStringLiteral("<0.300Ω")
                             : box == 3  ? QStringLiteral(">2.000MOhm")
                             : box == 4  ? QStringLiteral(">0500V")
                             : box == 6  ? QStringLiteral("0120V")
                             : box == 22 ? QStringLiteral(">1.50kV")
                             : box == 9  ? QString()
                                         : QStringLiteral("<0.%1mA").arg(box, 3, 10, QChar('0'));
        add << QStringLiteral("--limit") << QStringLiteral("%1=%2").arg(box).arg(text);
    }
    const RunResult run = RunCli(sim, add, dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QStringLiteral("stored: 03 Bohrmaschine\n"));

    const QStringList lines = sim.ReceivedBytes();
    ASSERT_EQ(lines.size(), StoreRead(2).size() + 3);
    EXPECT_EQ(lines.mid(0, StoreRead(2).size()), StoreRead(2));
    const QStringList chunks = lines.mid(StoreRead(2).size());
    // The editor's choices in the code string: element 8 single faults, 14 class, 15 type, 16 parts.
    const QRegularExpression first(QStringLiteral(
        "^prx!add 03 Bohrmaschine; ;([0-9A-F]{40});(\\d\\d\\.\\d\\d\\.\\d\\d);(\\d{1,2}:\\d{1,2}:\\d{1,2})"
        ";;<0\\.300\\\\xea;;<0\\.002mA;;>2\\.000M\\\\xea;;>0500V;;<0\\.005mA;;0120V;;<0\\.007mA;;<0\\."
        "008mA\\\\r$"));
    const auto match = first.match(chunks[0]);
    ASSERT_TRUE(match.hasMatch()) << chunks[0].toStdString();
    const QString codes = match.captured(1);
    EXPECT_EQ(codes.mid(16, 2), QStringLiteral("C0"));
    EXPECT_EQ(codes.mid(28, 6), QStringLiteral("060302"));
    EXPECT_EQ(chunks[1],
              QStringLiteral("prx!add &9;;;;<0.010mA;;<0.011mA;;<0.012mA;;<0.013mA;;<0.014mA;;<0.015mA;;"
                             "<0.016mA\\r"));
    EXPECT_EQ(chunks[2], QStringLiteral("prx!add &17;;<0.017mA;;<0.018mA;;<0.019mA;;<0.020mA;;<0.021mA;;"
                                        ">1.50kV\\r"));

    const RunResult list = RunCli(sim, Args({"specdb", "list"}), dir.path());
    EXPECT_EQ(list.exitCode, 0) << list.err.toStdString();
    EXPECT_EQ(list.out, QStringLiteral(
                            "1: 01 Elektrowerkzeuge SK II\n2: 02 Medizin SK I Typ CF\n3: 03 Bohrmaschine\n"));
    // The trace of the read holds the record as the tester gives it back.
    const QByteArray trace = ReadFile(dir.filePath(QStringLiteral("test.txt")));
    EXPECT_TRUE(trace.contains("3 X DATABASE  Nr=3;" + codes.toLatin1() + ";03 Bohrmaschine;"))
        << trace.constData();
    EXPECT_TRUE(trace.contains("3 Z ;;<0.017mA;;<0.018mA;;<0.019mA;;<0.020mA;;<0.021mA;;>1.50kV\r\n"));
}

TEST(CliSpecdbCommands, DefaultsShowTheCodesAndEachBoxWithItsSourceWithoutATester)
{
    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"),
                   Args({"specdb", "defaults", "--regulation", "vde 0701 t.1", "--class", "05"}));
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 25) << run.out.toStdString();
    EXPECT_EQ(lines[0], QStringLiteral("regulation: VDE 0701 T.1, class 05, type 02"));
    EXPECT_EQ(lines[1], QStringLiteral("switch: 00 (allgemein)"));
    EXPECT_EQ(lines[2],
              QStringLiteral("codes 0-19: 00 01 00 00 00 00 10 00 20 00 00 00 00 00 05 02 00 1F 02 00"));
    EXPECT_TRUE(lines[3].startsWith(QStringLiteral("GWert  1  Schutzleiterwiderstand")))
        << lines[3].toStdString();
    EXPECT_TRUE(lines[3].contains(QStringLiteral("<0.300Ohm   VDE 0701-1"))) << lines[3].toStdString();
    EXPECT_TRUE(lines[4].endsWith(QStringLiteral("  -")))
        << "box 2 is left empty: " << lines[4].toStdString();
    EXPECT_TRUE(lines[24].startsWith(QStringLiteral("GWert 22"))) << lines[24].toStdString();

    // The switch position of a permanently connected medical device, and a value that is ours.
    const RunResult fixed = RunProgram(
        QStringLiteral("kalvo-cli"),
        Args({"specdb", "defaults", "--regulation", "EN 60601", "--class", "05", "--switch", "02"}));
    ASSERT_EQ(fixed.exitCode, 0) << fixed.err.toStdString();
    const QStringList fixedLines = fixed.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(fixedLines.size(), 25) << fixed.out.toStdString();
    EXPECT_EQ(fixedLines[1], QStringLiteral("switch: 02 (fest angeschlossen mit Schutzleiter)"));
    EXPECT_TRUE(fixedLines[2].endsWith(QStringLiteral(" 24 03 02"))) << fixedLines[2].toStdString();
    EXPECT_TRUE(fixedLines[13].contains(QStringLiteral("<10.00mA    EN 60601-1, 19.3 Tab. IV Anm. 3")))
        << fixedLines[13].toStdString();
    EXPECT_TRUE(fixedLines[4].contains(QStringLiteral(">0.200Ohm   unsere Wahl: ")))
        << fixedLines[4].toStdString();
    const RunResult wrong =
        RunProgram(QStringLiteral("kalvo-cli"), Args({"specdb", "defaults", "--regulation", "VDE 9999"}));
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_TRUE(wrong.err.contains(QStringLiteral("VDE 0701 T.1"))) << wrong.err.toStdString();
}

TEST(CliSpecdbCommands, NothingIsStoredOrDeletedWhenTheRecordMayNotGo)
{
    const struct {
        const char *name;
        QStringList simArgs;
        QStringList args;
        QString said;
        QStringList received; // everything that reaches the tester
    } cases[] = {
        {"store with test records, even with --yes", Args({"--baud", "0", "--records", "2"}),
         Args({"--yes", "specdb", "add", "A", "--regulation", "custom"}),
         QStringLiteral("Vor dem speichern von Prüfabläufen müssen die Protokolle gelöscht werden."),
         StoreRead(2)},
        {"limit of the wrong length",
         Args({"--baud", "0", "--records", "0"}),
         Args({"specdb", "add", "A", "--regulation", "EN 60601", "--limit", "4=>500V"}),
         QStringLiteral("falsches Zahlenformat (4)"),
         {}},
        {"a set file with a control character in a line",
         Args({"--baud", "0", "--records", "0"}),
         Args({"specdb", "store-set", "vier.set", "steuer.set"}),
         QStringLiteral("steuer.set"),
         {}},
        {"deleting a record the store does not hold",
         Args({"--baud", "0", "--records", "0", "--specifications"}),
         Args({"--yes", "specdb", "delete", "3"}), QStringLiteral("Datensatz 3 gibt es nicht"),
         kIdentification + StoreRead(2)},
        {"a limit looser than the regulation's, not confirmed", Args({"--baud", "0", "--records", "0"}),
         Args({"specdb", "add", "A", "--regulation", "VDE 0702", "--limit", "1=<1.000Ohm", "--limit",
               "3=>0.300MOhm"}),
         QStringLiteral("Die Grenzwerte in den Feldern 1, 3 sind schwächer"), StoreRead(0)},
        {"deleting without --yes", Args({"--baud", "0", "--records", "0", "--specifications"}),
         Args({"specdb", "delete", "--all"}),
         QStringLiteral(
             "Alle Protokolle und Abläufe löschen?\n\nIm Kalvomer werden gelöscht: 2 Prüfabläufe. -> "
             "Abbrechen"),
         kIdentification + StoreRead(2)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        WriteFile(dir.filePath(QStringLiteral("vier.set")), "01 A; ;x;y;z\r\n;;\r\n;;\r\n02 B\r\n");
        WriteFile(dir.filePath(QStringLiteral("steuer.set")), "01 A; ;x;y;z\r\n;\x11;\r\n;;\r\n");
        SimProcess sim(c.simArgs);
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, c.args, dir.path());
        EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(c.said)) << run.err.toStdString();
        EXPECT_EQ(sim.ReceivedBytes(), c.received);
    }
}

TEST(CliSpecdbCommands, SetFilesStoreEveryRecordAndDeletionsRenumber)
{
    QTemporaryDir dir;
    const QByteArray head = "; ;00000000000010002000000000000502000000"
                            "00;01.01.09;8:0:0\r\n";
    const QByteArray items = QByteArray(24, ';') + "\r\n" + QByteArray(18, ';') + ";;>1.00kV\r\n";
    WriteFile(dir.filePath(QStringLiteral("eins.set")), "01 Eins" + head + items);
    WriteFile(dir.filePath(QStringLiteral("zwei.set")), "02 Zwei" + head + items + "03 Drei" + head + items);
    SimProcess sim(Args({"--baud", "0", "--records", "0"}));
    ASSERT_TRUE(sim.started());
    // A line behind the last whole record is left out, as the tester's own upload does, and said.
    WriteFile(dir.filePath(QStringLiteral("zwei.set")),
              "02 Zwei" + head + items + "03 Drei" + head + items + "04 Rest\r\n");
    const RunResult stored = RunCli(sim, Args({"specdb", "store-set", "eins.set", "zwei.set"}), dir.path());
    ASSERT_EQ(stored.exitCode, 0) << stored.err.toStdString();
    EXPECT_EQ(stored.out, QStringLiteral("3 of 3 stored\n"));
    EXPECT_TRUE(stored.err.contains(QStringLiteral("zwei.set: 1 Zeile(n) hinter dem letzten Prüfablauf")))
        << stored.err.toStdString();
    const QStringList adds = Received(sim, QStringLiteral("prx!add"));
    ASSERT_EQ(adds.size(), 9);
    EXPECT_EQ(adds[3], QStringLiteral("prx!add 02 Zwei; ;00000000000010002000000000000502000000"
                                      "00;01.01.09;8:0:0\\r"));
    EXPECT_EQ(adds[4], QStringLiteral("prx!add &1") + QString(24, u';') + QStringLiteral("\\r"));
    EXPECT_EQ(adds[5], QStringLiteral("prx!add &13") + QString(18, u';') + QStringLiteral(";;>1.00kV\\r"));

    const RunResult one = RunCli(sim, Args({"--yes", "specdb", "delete", "1"}), dir.path());
    EXPECT_EQ(one.exitCode, 0) << one.err.toStdString();
    EXPECT_EQ(one.out, QStringLiteral("Die Prüfvorschriften im Kalvomer wurden gelöscht.\n"));
    EXPECT_EQ(RunCli(sim, Args({"specdb", "list"}), dir.path()).out,
              QStringLiteral("1: 02 Zwei\n2: 03 Drei\n"));

    const RunResult all = RunCli(sim, Args({"--yes", "specdb", "delete", "--all"}), dir.path());
    EXPECT_EQ(all.exitCode, 0) << all.err.toStdString();
    EXPECT_EQ(Received(sim, QStringLiteral("prx!del")),
              (QStringList{QStringLiteral("prx!del 1\\r"), QStringLiteral("prx!del 2\\r"),
                           QStringLiteral("prx!del 1\\r")}));
    EXPECT_EQ(RunCli(sim, Args({"specdb", "list"}), dir.path()).out, QString());
}

TEST(CliSpecdbCommands, TheOddAnswerStyleStoresAndListsTheSame)
{
    QTemporaryDir dir;
    SimProcess sim(Args({"--baud", "0", "--records", "0", "--specifications", "--style", "odd"}));
    ASSERT_TRUE(sim.started());
    const RunResult run =
        RunCli(sim, Args({"specdb", "add", "Odd.Y", "--regulation", "british standard"}), dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QStringLiteral("stored: 03 Odd.Y\n"));
    const RunResult list = RunCli(sim, Args({"specdb", "list"}), dir.path());
    EXPECT_EQ(list.out,
              QStringLiteral("1: 01 Elektrowerkzeuge SK II\n2: 02 Medizin SK I Typ CF\n3: 03 Odd.Y\n"));
}

TEST(CliSpecdbCommands, DeletingAllKeepsTheTestRecordsInTheArchiveFirst)
{
    QTemporaryDir dir;
    SimProcess sim(Args({"--baud", "0", "--records", "3", "--specifications"}));
    ASSERT_TRUE(sim.started());
    const QString archive = dir.filePath(QStringLiteral("archiv.sqlite"));
    const RunResult all =
        RunCli(sim,
               QStringList{QStringLiteral("--archive"), archive} +
                   Args({"--customer", "Praxis Dr. Weber", "--yes", "specdb", "delete", "--all"}),
               dir.path());
    EXPECT_EQ(all.exitCode, 0) << all.err.toStdString();
    EXPECT_TRUE(
        all.err.contains(QStringLiteral("Im Kalvomer werden gelöscht: 3 Prüfprotokolle und 2 Prüfabläufe.\n"
                                        "Die Prüfprotokolle werden vorher aus dem Kalvomer gelesen und "
                                        "ins Archiv übernommen. -> OK")))
        << all.err.toStdString();
    EXPECT_EQ(RunCli(sim, Args({"specdb", "list"}), dir.path()).out, QString());
    // Kept under the customer given for records that name none, as a read keeps them.
    const RunResult listed =
        RunCli(sim,
               QStringList{QStringLiteral("--archive"), archive} +
                   Args({"archive", "list", "--customer-name", "Praxis Dr. Weber", "--json"}),
               dir.path());
    EXPECT_EQ(QJsonDocument::fromJson(listed.out.toUtf8()).array().size(), 3) << listed.out.toStdString();
}
