// kalvo-cli update, pfile and templates against kalvo-sim over a pseudo-terminal: every command
// and every byte that reaches the tester, the tester's loader faults, and the usage errors.
#include "link/TextRules.h"
#include "sim/UpdateFiles.h"
#include "support/SimProcess.h"
#include "support/TestFiles.h"
#include "update/UpdateScript.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::testing;
using kalvo::link::EscapeBytes;

namespace {

// A package folder with all four files of `code`.
struct PackageFolder {
    explicit PackageFolder(const QString &code)
    {
        Put(QStringLiteral("med.hex"), JoinLines(HexLines(14)));
        Put(QStringLiteral("bilder.p"), Package(PackageBytes(900, 1)));
        Put(QStringLiteral("ab%1.p").arg(code), Package(PackageBytes(500, 2)));
        Put(QStringLiteral("hlf%1.p").arg(code), Package(PackageBytes(300, 3)));
    }
    void Put(const QString &name, const QByteArray &bytes) { EXPECT_TRUE(WriteFile(Path(name), bytes)); }
    QString Path(const QString &name) const { return dir.filePath(name); }
    // How the tester's record shows a file: each firmware line, or a package as one.
    QStringList Received(const QString &name) const
    {
        if (!name.endsWith(QLatin1String(".hex")))
            return {EscapeBytes(ReadFile(Path(name)))};
        QStringList lines;
        for (const QByteArray &line : HexLines(14))
            lines << EscapeBytes(line + '\r');
        return lines;
    }
    QTemporaryDir dir;
};

QStringList Lines(std::initializer_list<const char *> commands)
{
    QStringList lines;
    for (const char *command : commands)
        lines << QString::fromLatin1(command);
    return lines;
}

const QStringList kIdentify = Lines({"dis?\\r", "ver?\\r", "idn?\\r"});
// How every command starts: the wake-up, the tester's state, the identification.
const QStringList kConnect =
    Lines({"\\r", "\\r", "\\x04\\r", "\\x07\\r", "mes!0\\r", "kal!aus\\r", "var?E3\\r", "var?D3\\r"}) +
    kIdentify;
const QStringList kSession = Lines({"idn!99\\r", "kal!ein\\r"});
const QStringList kRestart = Lines({"rst!0\\r", "\\x04"});

TEST(UpdateCommands, APackageRunSendsEveryCommandAndEveryByteInOrder)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const PackageFolder package(QStringLiteral("gb"));
    const RunResult run = RunCli(sim, {QStringLiteral("update"), QStringLiteral("package"),
                                       package.dir.path(), QStringLiteral("--lang"), QStringLiteral("gb")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList expected = kConnect + kSession + Lines({"kal!upd0\\r"}) + package.Received("med.hex") +
                                 kSession + Lines({"kal!upd3\\r"}) + package.Received("bilder.p") +
                                 Lines({"kal!upd1\\r"}) + package.Received("abgb.p") +
                                 Lines({"kal!upd2\\r"}) + package.Received("hlfgb.p") + kRestart + kIdentify +
                                 kSession + Lines({"kal?29\\r", "kal?50\\r", "kal!aus\\r"});
    EXPECT_EQ(sim.ReceivedBytes(), expected);
    for (const char *line : {"med.hex: sent", "bilder.p: sent", "abgb.p: sent", "hlfgb.p: sent",
                             "firmware: 1.52", "calibration fix-up: 29 kept, 50 kept, nothing stored"})
        EXPECT_TRUE(run.out.contains(QString::fromLatin1(line))) << line << '\n' << run.out.toStdString();
    // Into a pipe stderr holds only the progress of the four transfers, each up to its 100 %.
    const QStringList errLines = run.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_EQ(errLines.filter(QRegularExpression(QStringLiteral("^\\d{1,3} %$"))), errLines)
        << run.err.toStdString();
    EXPECT_EQ(errLines.count(QStringLiteral("100 %")), 4) << run.err.toStdString();
}

TEST(UpdateCommands, OneFileOfEachKindGoesBehindItsLoader)
{
    const struct {
        const char *file;
        const char *announce;
        bool restart;
    } cases[] = {
        {"med.hex", "kal!upd0\\r", false},
        {"bilder.p", "kal!upd3\\r", true},
        {"abge.p", "kal!upd1\\r", true},
        {"hlfge.p", "kal!upd2\\r", true},
    };
    const PackageFolder package(QStringLiteral("ge"));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        SimProcess sim;
        ASSERT_TRUE(sim.started());
        const QString name = QString::fromLatin1(c.file);
        const RunResult run =
            RunCli(sim, {QStringLiteral("update"), QStringLiteral("file"), package.Path(name)});
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_EQ(sim.ReceivedBytes(), kConnect + kSession + Lines({c.announce}) + package.Received(name) +
                                           (c.restart ? kRestart : QStringList()) + kIdentify);
        EXPECT_TRUE(run.out.contains(name + QStringLiteral(": sent"))) << run.out.toStdString();
    }
}

TEST(UpdateCommands, ABrokenFirmwareFileIsRefusedBeforeAnythingIsSent)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    PackageFolder package(QStringLiteral("ge"));
    QList<QByteArray> lines = HexLines(14);
    lines.insert(6, ":10ZZ");
    package.Put(QStringLiteral("med.hex"), JoinLines(lines));
    for (const QStringList &words : {QStringList{"update", "file", package.Path("med.hex")},
                                     QStringList{"update", "package", package.dir.path(), "--lang", "ge"}}) {
        const RunResult run = RunCli(sim, words);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(QStringLiteral("med.hex, Zeile 7: erwartet nur Hexadezimalziffern")))
            << run.err.toStdString();
    }
    EXPECT_TRUE(sim.ReceivedBytes().isEmpty()) << sim.ReceivedBytes().join(' ').toStdString();
}

TEST(UpdateCommands, ATemplateLoadedIntoASlotReadsBackAsItWasWritten)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    QTemporaryDir dir;
    QByteArray text = "Eigene Vorlage\r\n" + QByteArray(40, '\xC4') + "\r\n";
    for (int i = 1; i <= 8; ++i)
        text += "#" + QByteArray::number(10 + i) + "        Messwert " + QByteArray::number(i) + "\r\n";
    const QString path = dir.filePath(QStringLiteral("eigen.pr"));
    ASSERT_TRUE(WriteFile(path, text));
    const RunResult load = RunCli(sim, {QStringLiteral("pfile"), QStringLiteral("load"), path,
                                        QStringLiteral("--slot"), QStringLiteral("2")});
    ASSERT_EQ(load.exitCode, 0) << load.err.toStdString();
    const QByteArray pfile = ReadFile(dir.filePath(QStringLiteral("EIGEN.P")));
    ASSERT_TRUE(pfile.startsWith("\x89")) << EscapeBytes(pfile.left(20)).toStdString();
    EXPECT_EQ(sim.ReceivedBytes(), kConnect + Lines({"\\x04\\r"}) + kSession + Lines({"kal!upd3\\r"}) +
                                       QStringList{EscapeBytes(pfile)} + kRestart);

    const QString out = dir.filePath(QStringLiteral("2.pr"));
    const RunResult read =
        RunCli(sim, {QStringLiteral("templates"), QStringLiteral("read"), QStringLiteral("2"), out});
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    // All five are read, the one asked for is kept.
    EXPECT_EQ(sim.ReceivedBytes().mid(sim.ReceivedBytes().size() - 5),
              Lines({"prn?0\\r", "prn?1\\r", "prn?2\\r", "prn?3\\r", "prn?4\\r"}));
    EXPECT_EQ(EscapeBytes(ReadFile(out)), EscapeBytes(text));
}

TEST(UpdateCommands, LoaderFaultsEndTheTransferWithTheirErrorAndAskForTheUpdateAgain)
{
    const struct {
        const char *fault;
        const char *file;
        int exitCode;
        const char *says;
    } cases[] = {
        {"noerase:kal!upd3", "bilder.p", 1, "31998:"},
        {"rammingonly:kal!upd1", "abge.p", 1, "31997:"},
        {"noack", "med.hex", 3,
         "3:  Der Kalvomer hat 2 s lang nicht geantwortet (erwartet: \"!\" nach Zeile 1 von 15"},
        {"resethalfway:kal!upd0", "med.hex", 1, "Zeile 6 von 15 aus med.hex nicht angenommen"},
    };
    const PackageFolder package(QStringLiteral("ge"));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.fault);
        SimProcess sim({QStringLiteral("--fault"), QString::fromLatin1(c.fault)});
        ASSERT_TRUE(sim.started());
        const RunResult run =
            RunCli(sim, {QStringLiteral("--timeout"), QStringLiteral("2"), QStringLiteral("update"),
                         QStringLiteral("file"), package.Path(QString::fromLatin1(c.file))});
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.says))) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QStringLiteral("Update wiederholen"))) << run.err.toStdString();
        // The transfer ends there, but the run goes on: a package's tester is restarted (the
        // firmware restarts by itself), then identified.
        const QStringList tail =
            (QString::fromLatin1(c.file).endsWith(QLatin1String(".p")) ? kRestart : QStringList()) +
            kIdentify;
        const QStringList received = sim.ReceivedBytes();
        EXPECT_EQ(received.mid(received.size() - tail.size()), tail) << received.join(' ').toStdString();
    }
}

TEST(UpdateCommands, ARefusedLoaderGetsNoFileButTheTesterIsRestarted)
{
    SimProcess sim({QStringLiteral("--fault"), QStringLiteral("refuse:kal!upd2")});
    ASSERT_TRUE(sim.started());
    const PackageFolder package(QStringLiteral("ge"));
    const RunResult run =
        RunCli(sim, {QStringLiteral("update"), QStringLiteral("file"), package.Path("hlfge.p")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("\"kal!upd2\" abgelehnt"))) << run.err.toStdString();
    EXPECT_EQ(sim.ReceivedBytes(), kConnect + kSession + Lines({"kal!upd2\\r"}) + kRestart + kIdentify);
}

TEST(UpdateCommands, AnUnconfirmedStartSendsNothingToALoader)
{
    // Connecting does not look at "mes!0" and "kal!aus"; an update does, before it opens a loader.
    const PackageFolder package(QStringLiteral("ge"));
    for (const char *fault : {"refusestore:kal!aus", "garbage:mes!0", "refuse:mes!0"}) {
        SCOPED_TRACE(fault);
        SimProcess sim({QStringLiteral("--fault"), QString::fromLatin1(fault) + QStringLiteral("x1")});
        ASSERT_TRUE(sim.started());
        const RunResult run =
            RunCli(sim, {QStringLiteral("update"), QStringLiteral("file"), package.Path("bilder.p")});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(QStringLiteral("es wurde nichts gesendet"))) << run.err.toStdString();
        EXPECT_EQ(sim.ReceivedBytes(), kConnect);
    }
}

TEST(UpdateCommands, TheOddAnswerStyleChangesNothing)
{
    const PackageFolder package(QStringLiteral("nl"));
    QTemporaryDir dir;
    QStringList sent[2];
    QByteArray templates[2];
    const char *const styles[] = {"plain", "odd"};
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(styles[i]);
        SimProcess sim({QStringLiteral("--baud"), QStringLiteral("0"), QStringLiteral("--style"),
                        QString::fromLatin1(styles[i])});
        ASSERT_TRUE(sim.started());
        const RunResult run =
            RunCli(sim, {QStringLiteral("update"), QStringLiteral("package"), package.dir.path(),
                         QStringLiteral("--lang"), QStringLiteral("nl")});
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        const QString out = dir.filePath(QStringLiteral("%1.pr").arg(i));
        const RunResult read =
            RunCli(sim, {QStringLiteral("templates"), QStringLiteral("read"), QStringLiteral("3"), out});
        ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
        sent[i] = sim.ReceivedBytes();
        templates[i] = ReadFile(out);
    }
    EXPECT_EQ(sent[0], sent[1]);
    EXPECT_EQ(EscapeBytes(templates[0]), EscapeBytes(templates[1]));
    EXPECT_GT(templates[0].count("\r\n"), 3) << EscapeBytes(templates[0]).toStdString();
    EXPECT_FALSE(templates[0].contains("Vorlage 3 ")) << "the header before \\v is no part of the text";
}

TEST(UpdateCommands, BadWordsAreUsageErrorsAndReachNoTester)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    QTemporaryDir dir;
    const QString pr = dir.filePath(QStringLiteral("t.pr"));
    ASSERT_TRUE(WriteFile(pr, "Text\r\n"));
    const QStringList cases[] = {
        {"update", "file", dir.filePath("notes.txt")},
        {"update", "package", dir.path(), "--lang", "de"},
        {"update", "package", dir.filePath("none"), "--lang", "ge"},
        {"update", "package", dir.path()},
        {"pfile", "build", pr, "--slot", "0"},
        {"pfile", "load", pr, "--slot", "5"},
        {"pfile", "load", pr},
        {"templates", "read", "5"},
        {"templates", "read", "x"},
    };
    for (const QStringList &words : cases) {
        const RunResult run = RunCli(sim, words);
        EXPECT_EQ(run.exitCode, 2) << words.join(' ').toStdString() << '\n' << run.err.toStdString();
    }
    EXPECT_TRUE(sim.ReceivedBytes().isEmpty());
}

TEST(UpdateCommands, ATemplateTooLongForItsSlotBuildsNoPFile)
{
    QTemporaryDir dir;
    QByteArray text;
    for (int i = 0; i < 60; ++i)
        text += "Zeile " + QByteArray::number(i) + ": " +
                QByteArray("abcdefghijklmnopqrstuvwxyz").repeated(2) + "\r\n";
    const QString path = dir.filePath(QStringLiteral("lang.pr"));
    ASSERT_TRUE(WriteFile(path, text));
    const RunResult one = RunProgram(QStringLiteral("kalvo-cli"), {"pfile", "build", path, "--slot", "1"});
    EXPECT_EQ(one.exitCode, 1);
    EXPECT_TRUE(one.err.contains(QStringLiteral(" Der File ist zu lang. Kein P-File erzeugt")))
        << one.err.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("LANG.P"))));
    const QString out = dir.filePath(QStringLiteral("slot2.P"));
    const RunResult two =
        RunProgram(QStringLiteral("kalvo-cli"), {"pfile", "build", path, "--slot", "2", "--out", out});
    ASSERT_EQ(two.exitCode, 0) << two.err.toStdString();
    const QByteArray pfile = ReadFile(out);
    EXPECT_EQ(static_cast<unsigned char>(pfile[4]), 0xD0);
    EXPECT_TRUE(pfile.endsWith("AS 1.40r4\r\n"));
}

} // namespace
