// The operating system's seam: reserved file names, port names, processor time.
#include "platform/FileSystem.h"
#include "platform/ProcessUsage.h"
#include "platform/SerialLine.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::platform;

namespace {

TEST(Platform, DeviceNamesOfWindowsAreNoFileNamesOnAnySystem)
{
    const struct {
        const char *name;
        bool reserved;
    } cases[] = {
        {"NUL", true},        {"nul.cal", true},       {"COM1", true},   {"com9.cal", true},
        {"LPT1.txt", true},   {"CON", true},           {"prn.", true},   {"AUX .cal", true},
        {"Aux.tar.gz", true}, {"COM0", false},         {"COM10", false}, {"CONSOLE.cal", false},
        {"NUL_.cal", false},  {"KALVO-01.cal", false}, {"xNUL", false},  {"", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(IsReservedFileName(QString::fromLatin1(c.name)), c.reserved) << c.name;
}

TEST(Platform, AHardLinkIsTheSameFileUnderASecondName)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("a")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("eins");
    file.close();
    ASSERT_TRUE(HardLink(file.fileName(), dir.filePath(QStringLiteral("b"))));
    QFile second(dir.filePath(QStringLiteral("b")));
    ASSERT_TRUE(second.open(QIODevice::Append));
    second.write("zwei");
    second.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("einszwei"));
    EXPECT_FALSE(HardLink(dir.filePath(QStringLiteral("none")), dir.filePath(QStringLiteral("c"))));
}

TEST(Platform, ProcessorTimeGrowsWithWork)
{
    const double before = CpuSeconds();
    volatile unsigned sink = 0;
    while (CpuSeconds() - before < 0.05)
        for (int i = 0; i < 100000; ++i)
            sink = sink + static_cast<unsigned>(i);
    EXPECT_GE(CpuSeconds() - before, 0.05);
}

TEST(Platform, TheStandardPortsAreTheSystemsFirstFour)
{
#ifdef Q_OS_WIN
    EXPECT_EQ(StandardPortDevice(1), QStringLiteral("COM1"));
    EXPECT_EQ(StandardPortDevice(4), QStringLiteral("COM4"));
    EXPECT_EQ(CanonicalPortName(QStringLiteral("\\\\.\\com12")), QStringLiteral("COM12"));
#else
    EXPECT_EQ(StandardPortDevice(1), QStringLiteral("/dev/ttyS0"));
    EXPECT_EQ(StandardPortDevice(4), QStringLiteral("/dev/ttyS3"));
    EXPECT_EQ(CanonicalPortName(QStringLiteral("/dev/ttyUSB0")), QStringLiteral("/dev/ttyUSB0"));
#endif
}

} // namespace
