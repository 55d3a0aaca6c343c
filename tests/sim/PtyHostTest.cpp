// kalvo-sim as a program: its pseudo-terminal, its log, its faults and how it ends.
#include "UpdateFiles.h"
#include "link/TextRules.h"
#include "support/SimProcess.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

// kalvo-sim started with a log; the client end of its terminal opened raw.
class RunningSim {
public:
    explicit RunningSim(const QStringList &arguments) : m_sim(arguments)
    {
        if (!m_sim.started())
            return;
        m_fd = ::open(m_sim.pty().toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (m_fd < 0)
            return;
        termios raw{};
        tcgetattr(m_fd, &raw);
        cfmakeraw(&raw);
        tcsetattr(m_fd, TCSANOW, &raw);
    }
    ~RunningSim()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    bool ready() const { return m_fd >= 0; }
    void Write(const QByteArray &bytes)
    {
        ASSERT_EQ(::write(m_fd, bytes.constData(), bytes.size()), bytes.size());
    }
    // Reads until DC1, the line fails, or 5 seconds pass; a failed line adds "<lost>".
    QByteArray ReadAnswer() { return ReadUntil("\x11"); }
    QByteArray ReadUntil(const QByteArray &last)
    {
        QByteArray answer;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (!answer.endsWith(last) && std::chrono::steady_clock::now() < end) {
            pollfd fd{m_fd, POLLIN, 0};
            poll(&fd, 1, 100);
            char buffer[256];
            const ssize_t n = ::read(m_fd, buffer, sizeof buffer);
            if (n > 0)
                answer.append(buffer, n);
            else if ((n < 0 && errno != EAGAIN) || (fd.revents & POLLHUP))
                return answer + "<lost>";
        }
        return answer;
    }
    QStringList LoggedLines() const
    {
        QStringList lines;
        for (const kalvo::testing::ReceivedLine &line : m_sim.ReceivedLines())
            lines << line.bytes;
        return lines;
    }
    QProcess &process() { return m_sim.process(); }

private:
    kalvo::testing::SimProcess m_sim;
    int m_fd = -1;
};

} // namespace

TEST(KalvoSim, AnswersOnItsTerminalLogsEveryLineAndEndsCleanlyOnSigterm)
{
    RunningSim sim(
        {QStringLiteral("--baud"), QStringLiteral("0"), QStringLiteral("--name"), QStringLiteral("PTY-1")});
    ASSERT_TRUE(sim.ready());
    sim.Write("rst!0\r");
    EXPECT_EQ(sim.ReadAnswer(), QByteArray("rst!0.Y\r\n\x11"));
    sim.Write("\x04");
    sim.Write("idn?\r");
    EXPECT_EQ(sim.ReadAnswer(),
              QByteArray("idn?;Kalvomer 9000;0471 1203 5567;PTY-1;Firmware V 1.52\r\n\x11"));
    sim.process().terminate();
    ASSERT_TRUE(sim.process().waitForFinished(5000));
    EXPECT_EQ(sim.process().exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(sim.process().exitCode(), 0);
    EXPECT_EQ(sim.LoggedLines(), (QStringList{"rst!0\\r", "\\x04", "idn?\\r"}));
}

TEST(KalvoSim, VanishingLineHangsUpTheTerminal)
{
    RunningSim sim({QStringLiteral("--fault"), QStringLiteral("vanish:dis?")});
    ASSERT_TRUE(sim.ready());
    sim.Write("dis?\r");
    EXPECT_TRUE(sim.ReadAnswer().endsWith("<lost>"));
    EXPECT_TRUE(sim.process().waitForFinished(5000));
}

TEST(KalvoSim, RejectsBadOptionsWithAReason)
{
    struct Case {
        QStringList args;
        int exitCode;
        const char *mentions;
    };
    const Case cases[] = {
        {{QStringLiteral("--fault"), QStringLiteral("explode:dis?")}, 2, "trailingjunk"},
        {{QStringLiteral("--name"), QStringLiteral("NINE-CHAR")}, 2, "NINE-CHAR"},
        {{QStringLiteral("--baud")}, 2, "--baud"},
        {{QStringLiteral("--frobnicate")}, 2, "--frobnicate"},
        {{QStringLiteral("--records"), QStringLiteral("-1")}, 2, "--records"},
        {{QStringLiteral("--kym-records"), QStringLiteral("many")}, 2, "many"},
        {{QStringLiteral("--style"), QStringLiteral("weird")}, 2, "plain or odd"},
        {{QStringLiteral("--help")}, 0, "--fault FAULT"},
        // A value behind "=" is checked as one in the next word; a switch takes none.
        {{QStringLiteral("--baud=fast")}, 2, "--baud wants a whole number of 0 or more, not \"fast\""},
        {{QStringLiteral("--kym=1")}, 2, "--kym"},
    };
    for (const Case &c : cases) {
        QProcess process;
        process.start(kalvo::testing::BuiltProgram(QStringLiteral("kalvo-sim")), c.args);
        ASSERT_TRUE(process.waitForFinished(5000)) << c.args.join(' ').toStdString();
        EXPECT_EQ(process.exitCode(), c.exitCode) << c.args.join(' ').toStdString();
        const QString said =
            QString::fromLocal8Bit(process.readAllStandardError() + process.readAllStandardOutput());
        EXPECT_TRUE(said.contains(QString::fromLatin1(c.mentions))) << said.toStdString();
    }
}

TEST(KalvoSim, RecordOptionsShapeTheStoreAndTheAccessory)
{
    struct Case {
        QStringList args;
        QByteArray line;
        QByteArray answer;
    };
    const Case cases[] = {
        {{}, "prx?n", "prx?n= 14\r\n\x11"},
        {{QStringLiteral("--records"), QStringLiteral("2")}, "prx?n", "prx?n= 2\r\n\x11"},
        {{QStringLiteral("--records=3")}, "prx?n", "prx?n= 3\r\n\x11"},
        {{QStringLiteral("--records"), QStringLiteral("0")}, "prx?3x", "prx?3x Protokoll .N\r\n\x11"},
        {{}, "prx?", "prx?.Y\r\n\x11"},
        {{QStringLiteral("--no-current")}, "prx?", "prx?.N\r\n\x11"},
        {{QStringLiteral("--kym")}, "esr?", "esr?;5\r\n\x11"},
        {{QStringLiteral("--kym"), QStringLiteral("--kym-records"), QStringLiteral("0")},
         "esr?",
         "esr?;0\r\n\x11"},
        {{}, "esr?", "esr? Protokoll .N\r\n\x11"},
        {{QStringLiteral("--style"), QStringLiteral("odd")}, "prx?n", "PRX?N=   14\r\n\x11"},
    };
    for (const Case &c : cases) {
        RunningSim sim(QStringList{QStringLiteral("--baud"), QStringLiteral("0")} + c.args);
        ASSERT_TRUE(sim.ready());
        sim.Write(c.line + '\r');
        EXPECT_EQ(sim.ReadAnswer(), c.answer)
            << c.args.join(' ').toStdString() << " " << c.line.toStdString();
    }
}

TEST(KalvoSim, TakesFirmwareAndATemplateOnItsTerminalAndLogsTheirLines)
{
    RunningSim sim({QStringLiteral("--baud"), QStringLiteral("0")});
    ASSERT_TRUE(sim.ready());
    sim.Write("kal!ein\r");
    EXPECT_EQ(sim.ReadAnswer(), QByteArray("kal!ein.Y\r\n\x11"));
    sim.Write("kal!upd0\r");
    EXPECT_EQ(sim.ReadAnswer(), QByteArray("kal!upd0.Y\r\n\x11"));
    const QList<QByteArray> lines = kalvo::testing::FirmwareLines();
    for (const QByteArray &line : lines) {
        sim.Write(line + '\r');
        ASSERT_EQ(sim.ReadUntil("!"), "!") << line.constData();
    }
    EXPECT_EQ(sim.ReadAnswer(), QByteArray("Erasing ...\r\n... Programming\r\n\x11"));

    const QByteArray text = "Eigene Vorlage #03\r\n" + QByteArray(20, '\xC4') + "\r\n";
    const QByteArray pfile = kalvo::testing::TemplatePFile(text, 0xC8);
    sim.Write("kal!ein\r");
    sim.ReadAnswer();
    sim.Write("kal!upd3\r");
    sim.ReadAnswer();
    sim.Write(pfile);
    // The stream ends when the line has been idle: the report follows without another byte.
    EXPECT_EQ(sim.ReadAnswer(), QByteArray("Erasing ...\r\n... Programming\r\n\x11"));
    sim.Write("prn?1\r");
    EXPECT_EQ(sim.ReadAnswer(), "prn?1 Vorlage 1 \\v" + text + "\x11");

    sim.process().terminate();
    ASSERT_TRUE(sim.process().waitForFinished(5000));
    const QStringList logged = sim.LoggedLines();
    ASSERT_EQ(logged.size(), 2 + lines.size() + 3 + 1);
    EXPECT_EQ(logged[2], kalvo::link::EscapeBytes(lines.first() + '\r'));
    EXPECT_EQ(logged[2 + lines.size() + 2], kalvo::link::EscapeBytes(pfile));
}
