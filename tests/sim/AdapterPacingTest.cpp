// The USB adapter model of the in-process transport: bytes leave at the line rate, a drain ends at a poll.
#include "link/PortNames.h"
#include "sim/PortTransport.h"
#include "sim/SimTransport.h"
#include "sim/VirtualTester.h"

#include <gtest/gtest.h>

using namespace kalvo;
using namespace std::chrono_literals;
using link::Duration;

namespace {

struct Line {
    explicit Line(Duration poll)
    {
        tester.setBaud(9600);
        transport.setAdapterPoll(poll);
        transport.open(link::kSimulatorPortName);
    }
    // Writes and drains; when the drain returned.
    Duration WriteAndDrain(const QByteArray &bytes)
    {
        transport.write(bytes);
        EXPECT_TRUE(transport.drain(40s));
        return clock.now();
    }

    link::ManualClock clock;
    sim::VirtualTester tester{clock};
    sim::SimTransport transport{tester, clock};
};

// 9600 baud, 10 bits a byte.
constexpr Duration kByte = std::chrono::duration_cast<Duration>(std::chrono::seconds(1)) / 960;

} // namespace

TEST(AdapterPacing, DrainReturnsAtTheFirstPollAfterTheBytesHaveLeft)
{
    struct Case {
        Duration poll;
        Duration firstDrain;  // five bytes written at 0 have left at 5.2 ms
        Duration secondDrain; // one more byte written then
    };
    const Case cases[] = {
        {0ms, 5 * kByte, 6 * kByte},
        {1ms, 6ms, 8ms},
        {4ms, 8ms, 12ms},
        {16ms, 16ms, 32ms},
    };
    for (const Case &c : cases) {
        Line line(c.poll);
        EXPECT_EQ(line.WriteAndDrain("dis?\r"), c.firstDrain) << c.poll.count();
        EXPECT_EQ(line.WriteAndDrain("\x04"), c.secondDrain) << c.poll.count();
        // The bytes reached the tester when they left, not at the poll.
        EXPECT_EQ(line.tester.receivedLines().first().at, 5 * kByte) << c.poll.count();
    }
}

TEST(AdapterPacing, EachDrainedByteCostsAPollWhileABlockCostsItsLineTime)
{
    const QByteArray bytes(96, 'x'); // 100 ms on the line
    struct Case {
        Duration poll;
        Duration byteByByte;
        Duration block;
    };
    const Case cases[] = {
        {0ms, 96 * kByte, 96 * kByte},
        {1ms, 96 * 2ms, 100ms}, // a byte takes a little over 1 ms: two polls each
        {4ms, 96 * 4ms, 100ms},
        {16ms, 96 * 16ms, 112ms},
    };
    for (const Case &c : cases) {
        Line single(c.poll);
        for (char byte : bytes)
            single.WriteAndDrain(QByteArray(1, byte));
        EXPECT_EQ(single.clock.now(), c.byteByByte) << c.poll.count();
        Line block(c.poll);
        EXPECT_EQ(block.WriteAndDrain(bytes), c.block) << c.poll.count();
    }
}

TEST(AdapterPacing, DrainWithNothingToSendWaitsForThePollAndKeepsItsLimit)
{
    Line idle(4ms);
    idle.clock.advance(3ms);
    EXPECT_EQ(idle.WriteAndDrain({}), 4ms);
    EXPECT_EQ(idle.WriteAndDrain({}), 4ms) << "on a poll already";

    Line stalled(16ms);
    stalled.transport.write("x");
    EXPECT_FALSE(stalled.transport.drain(10ms));
    EXPECT_EQ(stalled.clock.now(), 10ms);
}

TEST(AdapterPacing, DefaultIsABuiltInPortAndThePortTransportPassesTheSettingOn)
{
    link::ManualClock clock;
    sim::PortTransport port(clock);
    EXPECT_EQ(port.simulator().adapterPoll(), Duration::zero());
    port.open(link::kSimulatorPortName);
    port.write("dis?\r");
    EXPECT_TRUE(port.drain(40s));
    EXPECT_EQ(clock.now(), Duration::zero()) << "no pacing unless asked for";

    port.tester().setBaud(9600);
    port.simulator().setAdapterPoll(16ms);
    port.write("dis?\r");
    EXPECT_TRUE(port.drain(40s));
    EXPECT_EQ(clock.now(), 16ms);
}
