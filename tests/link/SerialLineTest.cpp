// The real serial transport over a pseudo-terminal that stops taking bytes: no wait without end.
#include "link/Errors.h"
#include "link/Link.h"
#include "link/SerialTransport.h"
#include "support/ScriptedPrompter.h"
#include "support/SilentPty.h"

#include <QFile>
#include <QFileInfo>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kalvo;
using namespace std::chrono_literals;

namespace {

// More than the terminal's buffers hold: the rest can only leave when somebody reads.
const QByteArray kMoreThanTheLineHolds(1024 * 1024, 'x');

TEST(SerialLine, ADrainOnALineThatStopsTakingBytesGivesUpAtItsDeadline)
{
    kalvo::testing::SilentPty pty;
    ASSERT_FALSE(pty.path().isEmpty());
    link::SerialTransport transport;
    transport.open(pty.path());
    transport.write("dis?\r");
    EXPECT_TRUE(transport.drain(5s)); // a short line leaves even though nobody reads it
    transport.write(kMoreThanTheLineHolds);
    EXPECT_FALSE(transport.drain(300ms));
    EXPECT_TRUE(transport.isOpen());
}

TEST(SerialLine, ACommandTheLineDoesNotTakeEndsInTheTimeoutAndClosesThePort)
{
    kalvo::testing::SilentPty pty;
    ASSERT_FALSE(pty.path().isEmpty());
    link::SerialTransport transport;
    kalvo::testing::ScriptedPrompter prompter;
    link::Link link(transport, prompter);
    link.setTimeout(500ms);
    link.OpenPort(pty.path());
    EXPECT_THROW(link.SendCommand(kMoreThanTheLineHolds + '\r'), link::Timeout);
    EXPECT_FALSE(link.IsOpen());
    // Whatever did leave is what the command began with.
    const QByteArray sent = pty.Drain();
    EXPECT_FALSE(sent.isEmpty());
    EXPECT_TRUE(kMoreThanTheLineHolds.startsWith(sent));
}

} // namespace

// A terminal only its group may use: the message names the group and how to join it. Root may open
// anything, so there the terminal is given to the group dialout and the attempt is made by a child
// that has become nobody.
TEST(SerialLine, APortThatMayNotBeOpenedNamesItsGroupAndTheCommandToJoinIt)
{
    kalvo::testing::SilentPty pty;
    ASSERT_FALSE(pty.path().isEmpty());
    const QByteArray path = QFile::encodeName(pty.path());
    ASSERT_EQ(::chmod(path.constData(), 0060), 0);
    if (::geteuid() == 0) {
        const struct group *dialout = ::getgrnam("dialout");
        ASSERT_NE(dialout, nullptr);
        ASSERT_EQ(::chown(path.constData(), uid_t(-1), dialout->gr_gid), 0);
    }
    const QString group = QFileInfo(pty.path()).group();
    if (group.isEmpty() || group == QLatin1String("root"))
        GTEST_SKIP() << "the terminal belongs to no group a user could join";
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(fds[0]);
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(2);
        QByteArray text = "opened";
        try {
            link::SerialTransport transport;
            transport.open(pty.path());
        } catch (const link::PortError &e) {
            text = e.message().toUtf8();
        }
        const bool written = ::write(fds[1], text.constData(), size_t(text.size())) == text.size();
        ::_exit(written ? 0 : 1);
    }
    ::close(fds[1]);
    QByteArray text;
    char buffer[4096];
    for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, n);
    ::close(fds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    const QString message = QString::fromUtf8(text);
    EXPECT_TRUE(message.contains(pty.path() + QStringLiteral(" kann nicht geöffnet werden: ")))
        << message.toStdString();
    EXPECT_TRUE(message.contains(QStringLiteral("gehört der Gruppe %1").arg(group))) << message.toStdString();
    EXPECT_TRUE(message.contains(QStringLiteral("sudo usermod -aG %1 $USER").arg(group)))
        << message.toStdString();
}
