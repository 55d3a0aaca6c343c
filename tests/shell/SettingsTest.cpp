// The line rules of the settings file.
#include "shell/Settings.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::shell;

TEST(Settings, LineValueIsTheTextBeforeTheFirstSemicolonUnlessItLeads)
{
    const struct {
        const char *line;
        const char *value;
    } cases[] = {
        {"COM 2;the bench tester", "COM 2"},
        {";COM 2", ";COM 2"},
        {"COM 3", "COM 3"},
        {"deutsch;a;b", "deutsch"},
        {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(SettingsLineValue(c.line), QByteArray(c.value)) << c.line;
}

TEST(Settings, FileLinesFillPortNumberLanguageAndOption)
{
    const Settings s = ParseSettings("com 2;port\r\n2;number\r\nenglisch;language\r\nunused\r\n1;upoc\r\n");
    EXPECT_EQ(s.portName, QStringLiteral("COM 2"));
    EXPECT_EQ(s.portNumber, 2);
    ASSERT_TRUE(s.language.has_value());
    EXPECT_EQ(*s.language, QStringLiteral("englisch"));
    EXPECT_TRUE(s.updateWithoutVersionCheck);
}

TEST(Settings, ShortFilesKeepDefaultsAndOddValuesFollowTheNumberRule)
{
    const Settings two = ParseSettings("COM 4\nabc\n");
    EXPECT_EQ(two.portName, QStringLiteral("COM 4"));
    EXPECT_EQ(two.portNumber, 0); // a port number that is no number
    // Nor is one beyond an int.
    EXPECT_EQ(ParseSettings("COM 4\n99999999999\n").portNumber, 0);
    EXPECT_FALSE(two.language.has_value());
    EXPECT_FALSE(two.updateWithoutVersionCheck);

    // A device path keeps its case; CR alone ends lines too.
    const Settings path = ParseSettings("/dev/ttyUSB0;usb adapter\r1\rdeutsch\r\r0\r");
    EXPECT_EQ(path.portName, QStringLiteral("/dev/ttyUSB0"));
    EXPECT_FALSE(path.updateWithoutVersionCheck);
}

TEST(Settings, MissingFileGivesTheDefaults)
{
    QTemporaryDir empty;
    const Settings s = ReadSettings(empty.path());
    EXPECT_FALSE(s.fromFile);
    EXPECT_EQ(s.portName, QStringLiteral("COM 1"));
    EXPECT_EQ(s.portNumber, 1);

    QFile file(empty.filePath(QStringLiteral("Q417.ini")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("COM 3;x\r\n3\r\n");
    file.close();
    EXPECT_EQ(ReadSettings(empty.path()).portName, QStringLiteral("COM 3"));
}
