// The order every change to the tester is wrapped in, and the names of the serial port.
#include "LinkFixture.h"

#include "link/PortNames.h"
#include "link/ServiceSession.h"

using namespace kalvo::link;

namespace kalvo::testing {
namespace {

TEST(ServiceSession, CommandsComeInTheFixedOrderAndTheRestartEndsWithALoneEot)
{
    const struct {
        const char *name;
        StoreCommand store;
        bool restart;
        QByteArray storeAnswer;
        bool stored;
    } cases[] = {
        {"configuration with restart", StoreCommand::Configuration, true, "cfg!pgm .Y\x11", true},
        {"upper-case echo", StoreCommand::Configuration, false, "CFG!PGM.Y\r\n\x11", true},
        {"refused configuration", StoreCommand::Configuration, true, "cfg!pgm .Nx\x11", false},
        {"configuration refused with .N", StoreCommand::Configuration, false, "cfg!pgm .N\x11", false},
        {"configuration refused as a protocol error", StoreCommand::Configuration, false,
         "cfg!pgm Protokoll .N\x11", false},
        {"configuration answered with neither", StoreCommand::Configuration, false, "cfg!pgm ?\x11", false},
        {"calibration", StoreCommand::Calibration, false, "kal!pgm .Y\x11", true},
        {"refused calibration", StoreCommand::Calibration, false, "kal!pgm .Nx\x11", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.transport.Expect("idn!99\r").Reply("idn!99 .Y\x11");
        s.transport.Expect("kal!ein\r").Reply("kal!ein .Y\x11");
        s.transport.Expect("var!D3 1\r").Reply("var!D3 1 .Y\x11");
        s.transport.Expect(c.store == StoreCommand::Configuration ? "cfg!pgm\r" : "kal!pgm\r")
            .Reply(c.storeAnswer);
        if (c.restart) {
            s.transport.Expect("rst!0\r").Reply("rst!0 .Y\x11");
            s.transport.Expect("\x04"); // the tester restarts and says nothing
        }
        const bool stored =
            RunServiceSession(s.link, s.prompter, c.store, c.restart, [&] { s.link.Exchange("var!D3 1"); });
        EXPECT_EQ(stored, c.stored);
        // Not stored is a refusal, counted once however the tester said it.
        EXPECT_EQ(s.link.refusals(), c.stored ? 0 : 1);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        if (c.restart) // the lone EOT is not waited behind
            EXPECT_EQ(s.clock.now(), s.transport.writes().back().at);
        if (c.stored) {
            EXPECT_TRUE(s.prompter.messages.empty());
        } else {
            ASSERT_FALSE(s.prompter.messages.empty());
            EXPECT_EQ(s.prompter.messages.back().text, c.store == StoreCommand::Configuration
                                                           ? kConfigurationNotStoredText
                                                           : kCalibrationNotStoredText);
        }
    }
}

TEST(PortNames, TheFourStandardNamesMapToTheSystemsFirstPortsOthersStandAsTheyAre)
{
    const struct {
        const char *name, *system;
    } cases[] = {
#ifdef Q_OS_WIN
        {"COM 1", "COM1"},
        {"COM 4", "COM4"},
        {"com 2", "COM2"},
#else
        {"COM 1", "/dev/ttyS0"},
        {"COM 2", "/dev/ttyS1"},
        {"COM 3", "/dev/ttyS2"},
        {"COM 4", "/dev/ttyS3"},
        {"com 2", "/dev/ttyS1"},
#endif
        {"COM 5", "COM 5"},
        {"COM12", "COM12"},
        {"/dev/ttyUSB0", "/dev/ttyUSB0"},
        {"/dev/serial/by-id/usb-x", "/dev/serial/by-id/usb-x"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(SystemPortName(QString::fromLatin1(c.name)), QString::fromLatin1(c.system)) << c.name;
}

TEST(PortNames, TheChooserListsTheFourStandardNamesThenEachOtherSystemPortOnce)
{
    const QStringList standard = StandardPortNames();
    const struct {
        const char *name;
        QStringList systemPorts;
        QStringList extra; // behind "COM 1".."COM 4"
    } cases[] = {
        {"no ports", {}, {}},
#ifdef Q_OS_WIN
        {"the four are covered, any case, COM10 and above however written",
         {"COM1", "com3", "COM5", "COM4", "COM5", "COM12", "\\\\.\\COM12", "\\\\.\\com3", "com12"},
         {"COM5", "COM12"}},
#else
        {"the four are covered, duplicates once",
         {"/dev/ttyS0", "/dev/ttyUSB0", "/dev/ttyS3", "/dev/ttyUSB0", "/dev/ttyS7"},
         {"/dev/ttyUSB0", "/dev/ttyS7"}},
        {"the system's order is kept",
         {"/dev/ttyUSB1", "/dev/ttyACM0", "/dev/ttyUSB0"},
         {"/dev/ttyUSB1", "/dev/ttyACM0", "/dev/ttyUSB0"}},
#endif
        {"a standard name itself is not repeated",
         {"COM 2", "/dev/serial/by-id/usb-x"},
         {"/dev/serial/by-id/usb-x"}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(PortChoices(c.systemPorts), standard + c.extra) << c.name;
}

} // namespace
} // namespace kalvo::testing
