// The virtual tester's update loaders: firmware lines, package streams, their reports and their faults.
#include "sim/UpdateLoader.h"
#include "UpdateFiles.h"
#include "link/TextRules.h"
#include "sim/VirtualTester.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace kalvo;
using namespace std::chrono_literals;
using kalvo::testing::FirmwareLines;
using kalvo::testing::Package;
using kalvo::testing::PictureBody;
using sim::UpdateLoader;
using sim::VirtualTester;

namespace {

constexpr char kDC1 = '\x11';
const QByteArray kErasing = "Erasing ...\r\n";
const QByteArray kProgrammed = "... Programming\r\n\x11";
const std::array<QByteArray, 5> kDates = {"17.03.09 10:42", "17.03.09 10:45", "02.02.09 08:15",
                                          "05.02.09 09:30", "20.02.09 14:05"};
const QByteArray kToday = "04.05.26 09:30";

QByteArray Answer(const QByteArray &text)
{
    return text + "\r\n" + kDC1;
}

struct Bench {
    explicit Bench(int baud = 0)
    {
        tester.setBaud(baud);
        tester.model().setVersionDates(kDates);
        tester.model().setDateTime(QDateTime(QDate(2026, 5, 4), QTime(9, 30)));
    }
    // Bytes in, and what has come back by now.
    QByteArray Send(const QByteArray &bytes)
    {
        tester.feed(bytes);
        return tester.takeOutput(clock.now());
    }
    QByteArray Ask(const QByteArray &line) { return Send(line + '\r'); }
    // The line, and everything it brings within `wait`.
    QByteArray Ask(const QByteArray &line, link::Duration wait)
    {
        const QByteArray first = Ask(line);
        return first + After(wait);
    }
    // What comes back within `wait`.
    QByteArray After(link::Duration wait)
    {
        clock.advance(wait);
        return tester.takeOutput(clock.now());
    }
    // "kal!ein" and the announce command of loader `n`, answered in the plain style.
    void Announce(int n)
    {
        Ask("kal!ein");
        After(1s);
        const QByteArray announce = "kal!upd" + QByteArray::number(n);
        const QByteArray answer = Ask(announce, 1s);
        if (tester.style() == sim::AnswerStyle::Plain)
            ASSERT_EQ(answer, Answer(announce + ".Y"));
        ASSERT_EQ(tester.loader(), static_cast<UpdateLoader::Kind>(n));
    }
    const std::array<QByteArray, 5> &Dates() const { return tester.model().versionDates(); }

    link::ManualClock clock;
    VirtualTester tester{clock};
};

std::array<QByteArray, 5> DatesWith(int part)
{
    auto dates = kDates;
    dates[static_cast<size_t>(part)] = kToday;
    return dates;
}

} // namespace

TEST(UpdateLoader, FirmwareIsAcknowledgedLineByLineThenErasedProgrammedAndStarted)
{
    for (const QByteArray end : {"\r", "\n", "\r\n"}) {
        Bench bench;
        bench.Announce(0);
        const QList<QByteArray> lines = FirmwareLines();
        for (const QByteArray &line : lines)
            ASSERT_EQ(bench.Send(line + end), "!")
                << link::EscapeBytes(end).toStdString() << line.constData();
        // The erase report comes apart from the last "!", so that a PC that clears its buffer
        // behind the "!" still sees it.
        EXPECT_EQ(bench.After(UpdateLoader::kReportGap - 1ns), "");
        EXPECT_EQ(bench.After(1ns), kErasing);
        EXPECT_EQ(bench.After(UpdateLoader::kEraseTime), kProgrammed);
        EXPECT_EQ(bench.Dates(), DatesWith(0));
        // The tester starts the new firmware: out of configuration mode, answering commands.
        EXPECT_EQ(bench.tester.restarts(), 1);
        EXPECT_FALSE(bench.tester.model().configurationMode());
        EXPECT_FALSE(bench.tester.loader());
        EXPECT_EQ(bench.Ask("kal!pgm"), Answer("kal!pgm.Nx"));
        const auto &received = bench.tester.receivedLines();
        EXPECT_EQ(received[2].bytes, lines[0] + end.left(1));
        EXPECT_EQ(received[2 + lines.size() - 1].bytes, ":00000001FF" + end.left(1));
    }
}

TEST(UpdateLoader, BadFirmwareLineGetsNoAcknowledgementAndEndsTheLoad)
{
    struct Case {
        QByteArray line;
        QByteArray report;
    };
    const Case cases[] = {
        {":10010000214601360121470136007EFE09D2190141", "Pr\x81"
                                                        "fsumme falsch"},
        {"10010000214601360121470136007EFE09D2190140", "kein Doppelpunkt"},
        {":1001000021460136012147013600XEFE09D2190140", "keine Hexziffer"},
        {":0F010000214601360121470136007EFE09D2190140", "L\x84nge falsch"},
        {":10010000214601360121470136007EFE09D219014", "L\x84nge falsch"},
        {":10010000214601360121470136007EFE09D21901", "L\x84nge falsch"},
        {":00000006FA", "Satzart unbekannt"},
        {":0100000100FE", "L\x84nge falsch"},
        {":", "L\x84nge falsch"},
    };
    for (const Case &c : cases) {
        Bench bench;
        bench.Announce(0);
        ASSERT_EQ(bench.Ask(FirmwareLines()[0]), "!");
        const QByteArray answer = bench.Ask(c.line, 10s);
        EXPECT_EQ(answer, Answer("Fehler Zeile 2: " + c.report)) << c.line.constData();
        // The old firmware stays; the tester is still in its service session and takes commands.
        EXPECT_FALSE(bench.tester.loader()) << c.line.constData();
        EXPECT_EQ(bench.Dates(), kDates) << c.line.constData();
        EXPECT_EQ(bench.tester.restarts(), 0) << c.line.constData();
        EXPECT_EQ(bench.Ask("kal!pgm"), Answer("kal!pgm.Y")) << c.line.constData();
    }
}

TEST(UpdateLoader, PackageEndsWhenTheLineHasBeenIdleAfterItsLastByte)
{
    struct Case {
        int loader;
        int datePart;
    };
    for (const Case c : {Case{1, 4}, Case{2, 3}, Case{3, 2}}) {
        Bench bench(9600);
        bench.Announce(c.loader);
        bench.After(1s);
        const QByteArray package = Package(PictureBody(3000));
        bench.tester.feed(package);
        const link::Duration lastByte = bench.tester.inputDoneAt();
        EXPECT_EQ(bench.tester.nextEventAt(), lastByte + UpdateLoader::kIdleEnd) << c.loader;
        bench.clock.advance(lastByte - bench.clock.now() + UpdateLoader::kIdleEnd - 1ns);
        EXPECT_EQ(bench.tester.takeOutput(bench.clock.now()), "") << c.loader;
        EXPECT_EQ(bench.After(1ns + bench.tester.byteTime() * kErasing.size()), kErasing) << c.loader;
        EXPECT_EQ(bench.After(UpdateLoader::kEraseTime + bench.tester.byteTime() * kProgrammed.size()),
                  kProgrammed)
            << c.loader;
        EXPECT_EQ(bench.Dates(), DatesWith(c.datePart)) << c.loader;
        EXPECT_EQ(bench.tester.receivedLines().constLast().bytes, package) << c.loader;
        // Back to command lines inside the service session: "rst!0" and EOT restart the tester.
        EXPECT_TRUE(bench.tester.model().configurationMode()) << c.loader;
        EXPECT_EQ(bench.Ask("rst!0", 1s), Answer("rst!0.Y")) << c.loader;
        bench.Send("\x04");
        EXPECT_EQ(bench.tester.restarts(), 1) << c.loader;
    }
}

TEST(UpdateLoader, TheOddStyleClosesAPartOfTheReportBeforeItsEnd)
{
    // Firmware: a word of the loader's own closed by DC1, then the erase report; packages: the
    // erase report closed by DC1. Each part arrives on its own, the programming report last.
    {
        Bench bench;
        bench.tester.setStyle(sim::AnswerStyle::Odd);
        bench.Announce(0);
        for (const QByteArray &line : FirmwareLines())
            bench.Send(line + '\r');
        EXPECT_EQ(bench.After(UpdateLoader::kReportGap), QByteArray("Flash ok\r\n") + kDC1);
        EXPECT_EQ(bench.After(UpdateLoader::kReportGap), kErasing);
        EXPECT_EQ(bench.After(UpdateLoader::kEraseTime), kProgrammed);
        EXPECT_EQ(bench.Dates(), DatesWith(0));
    }
    for (int loader : {1, 2, 3}) {
        Bench bench;
        bench.tester.setStyle(sim::AnswerStyle::Odd);
        bench.Announce(loader);
        bench.tester.feed(Package(PictureBody(300)));
        EXPECT_EQ(bench.After(UpdateLoader::kIdleEnd), kErasing + kDC1) << loader;
        EXPECT_EQ(bench.After(UpdateLoader::kEraseTime), kProgrammed) << loader;
    }
}

TEST(UpdateLoader, PauseShorterThanTheIdleTimeKeepsOneStream)
{
    const QByteArray package = Package(PictureBody(500), 0x00);
    for (const link::Duration pause : {link::Duration(10ms), UpdateLoader::kIdleEnd - 1ms}) {
        Bench bench;
        bench.Announce(3);
        bench.Send(package.left(200));
        EXPECT_EQ(bench.After(pause), "");
        bench.Send(package.mid(200));
        EXPECT_EQ(bench.After(5s), kErasing + kProgrammed);
        EXPECT_EQ(bench.tester.receivedLines().constLast().bytes, package);
    }
}

TEST(UpdateLoader, LoaderThatGetsACommandLineFirstStepsAside)
{
    // A file that was missing was not sent: the next command line is the tester's again.
    Bench bench;
    bench.Announce(3);
    EXPECT_EQ(bench.Ask("kal!upd1"), Answer("kal!upd1.Y"));
    bench.Send(Package(PictureBody(300)));
    EXPECT_EQ(bench.After(5s), kErasing + kProgrammed);
    EXPECT_EQ(bench.Dates(), DatesWith(4)) << "the sequences, not the pictures";
    EXPECT_EQ(bench.Ask("kal!upd2"), Answer("kal!upd2.Y"));
    EXPECT_EQ(bench.Ask("rst!0"), Answer("rst!0.Y"));
    bench.Send("\x04");
    EXPECT_EQ(bench.tester.restarts(), 1);

    Bench firmware;
    firmware.Announce(0);
    EXPECT_EQ(firmware.Ask("idn!99"), Answer("idn!99.Y"));
    EXPECT_FALSE(firmware.tester.loader());
}

TEST(UpdateLoader, AnnounceOutsideTheServiceSessionIsRefused)
{
    Bench bench;
    EXPECT_EQ(bench.Ask("kal!upd3"), Answer("kal!upd3.Nx"));
    EXPECT_FALSE(bench.tester.loader());
    bench.Ask("kal!ein");
    for (const char *line : {"kal!upd4", "kal!upd", "kal!upd00"})
        EXPECT_TRUE(bench.Ask(line).contains(" Protokoll .N")) << line;
    EXPECT_EQ(bench.Ask("KAL!UPD2"), Answer("KAL!UPD2.Y"));
}

TEST(UpdateLoader, LoaderFaultsSpoilTheReportsTheProgramWaitsFor)
{
    struct Case {
        const char *fault;
        int loader;
        QByteArray expected; // everything the tester sends after the announce
        bool programmed;
    };
    const int lines = static_cast<int>(FirmwareLines().size());
    const QByteArray acks(lines, '!');
    const Case cases[] = {
        {"noack", 0, kErasing + kProgrammed, true},
        {"noack", 1, kErasing + kProgrammed, true},
        {"noerase", 0, acks + kProgrammed, true},
        {"noerase:kal!upd2", 2, kProgrammed, true},
        {"noerase:kal!upd2", 1, kErasing + kProgrammed, true},
        {"rammingonly", 0, acks + "ramming\r\n\x11", true},
        {"rammingonly", 3, "ramming\r\n\x11", true},
        {"noerase@9", 1, kErasing + kProgrammed, true},
    };
    for (const Case &c : cases) {
        Bench bench;
        ASSERT_TRUE(bench.tester.faults().add(QString::fromLatin1(c.fault)));
        // Loader faults leave ordinary answers alone.
        EXPECT_EQ(bench.Ask("dis?"), Answer("dis? 00.Y")) << c.fault;
        bench.Announce(c.loader);
        QByteArray out;
        if (c.loader == 0) {
            for (const QByteArray &line : FirmwareLines())
                out += bench.Ask(line);
        } else {
            out += bench.Send(Package(PictureBody(400)));
        }
        out += bench.After(5s);
        EXPECT_EQ(out, c.expected) << c.fault << " upd" << c.loader << ": "
                                   << link::EscapeBytes(out).toStdString();
        EXPECT_NE(bench.Dates(), kDates) << c.fault;
    }
}

TEST(UpdateLoader, ResetHalfwayDropsOutOfTheLoaderAndTakesTheRestAsCommandLines)
{
    Bench firmware;
    firmware.tester.faults().add(QStringLiteral("resethalfway"));
    firmware.Announce(0);
    const QList<QByteArray> lines = FirmwareLines();
    QByteArray out;
    for (int i = 0; i < UpdateLoader::kFirmwareHalfwayLines; ++i)
        out += firmware.Ask(lines[i]);
    EXPECT_EQ(out, QByteArray(UpdateLoader::kFirmwareHalfwayLines, '!'));
    EXPECT_EQ(firmware.tester.restarts(), 1);
    const QByteArray next = firmware.Ask(lines[UpdateLoader::kFirmwareHalfwayLines]);
    EXPECT_EQ(next, Answer(lines[UpdateLoader::kFirmwareHalfwayLines] + " Protokoll .N"));
    EXPECT_EQ(firmware.Dates(), kDates);
    EXPECT_FALSE(firmware.tester.model().configurationMode());

    Bench package;
    package.tester.faults().add(QStringLiteral("resethalfway:kal!upd3"));
    package.Announce(3);
    const QByteArray bytes = Package(PictureBody(1000));
    QByteArray rest = package.Send(bytes);
    rest += package.After(5s);
    EXPECT_EQ(package.tester.restarts(), 1);
    EXPECT_FALSE(rest.contains("rasing")) << link::EscapeBytes(rest).toStdString();
    EXPECT_FALSE(rest.contains("ramming"));
    EXPECT_TRUE(rest.contains(" Protokoll .N")) << "the second half came as command lines";
    EXPECT_EQ(package.Dates(), kDates);
    const auto &received = package.tester.receivedLines();
    EXPECT_EQ(received[2].bytes, bytes.left(bytes.size() / 2));
}

TEST(UpdateLoader, AnnounceFaultsActOnTheAnnounceLineOnly)
{
    // A refused announce starts no loader: the firmware lines are command lines.
    Bench refused;
    refused.tester.faults().add(QStringLiteral("refuse:kal!upd0"));
    refused.Ask("kal!ein");
    EXPECT_EQ(refused.Ask("kal!upd0"), Answer("kal!upd0 Protokoll .N"));
    EXPECT_FALSE(refused.tester.loader());
    EXPECT_EQ(refused.Ask(FirmwareLines()[0]), Answer(FirmwareLines()[0] + " Protokoll .N"));

    // A spoiled answer still starts it.
    Bench silent;
    silent.tester.faults().add(QStringLiteral("silence:kal!upd0"));
    silent.Ask("kal!ein");
    EXPECT_EQ(silent.Ask("kal!upd0", 5s), "");
    EXPECT_EQ(silent.Ask(FirmwareLines()[0]), "!");
}
