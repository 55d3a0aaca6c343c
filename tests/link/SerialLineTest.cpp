// The real serial transport over a pseudo-terminal that stops taking bytes: no wait without end.
#include "link/Errors.h"
#include "link/Link.h"
#include "link/SerialTransport.h"
#include "support/ScriptedPrompter.h"
#include "support/SilentPty.h"

#include <gtest/gtest.h>

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
