// The line rules of the settings file.
#include "shell/Settings.h"
#include "shell/Switches.h"

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

TEST(Settings, NumbersOutOfRangeKeepTheDefaultsAndSaySo)
{
    const struct {
        const char *name;
        QByteArray text;
        int portNumber;
        bool option;
        const char *warned; // a part of the one warning; empty: none
    } cases[] = {
        {"in range", "COM 2\r\n255\r\ndeutsch\r\n\r\n-7\r\n", 255, true, ""},
        {"huge hexadecimal port number", "COM 2\r\n&HFFFFFFFFFFFFFFFFFFFFFFFF;x\r\n", 1, false, "Zeile 2"},
        {"port number beyond the ports", "COM 2\r\n256\r\n", 1, false, "256"},
        {"negative port number", "COM 2\r\n-1\r\n", 1, false, "-1"},
        {"huge option", "COM 2\r\n2\r\ndeutsch\r\n\r\n99999999999999999999\r\n", 2, false, "Zeile 5"},
        {"option that is no number", "COM 2\r\n2\r\ndeutsch\r\n\r\nja\r\n", 2, false, ""},
    };
    for (const auto &c : cases) {
        const Settings s = ParseSettings(c.text);
        EXPECT_EQ(s.portNumber, c.portNumber) << c.name;
        EXPECT_EQ(s.updateWithoutVersionCheck, c.option) << c.name;
        if (QByteArray(c.warned).isEmpty()) {
            EXPECT_TRUE(s.warnings.isEmpty()) << c.name << ": " << s.warnings.join('|').toStdString();
        } else {
            ASSERT_EQ(s.warnings.size(), 1) << c.name;
            EXPECT_TRUE(s.warnings[0].contains(QLatin1String(c.warned))) << s.warnings[0].toStdString();
            EXPECT_TRUE(s.warnings[0].contains(QStringLiteral("Q417.ini"))) << s.warnings[0].toStdString();
        }
    }
}

TEST(Settings, OfAnOversizedFileOnlyTheStartIsRead)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("Q417.ini")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("COM 3;x\r\n3\r\nenglisch\r\n");
    file.write(QByteArray(kMaxSettingsFileSize, ';'));
    file.close();
    const Settings s = ReadSettings(dir.path());
    EXPECT_EQ(s.portName, QStringLiteral("COM 3"));
    EXPECT_EQ(s.language.value_or(QString()), QStringLiteral("englisch"));
    ASSERT_EQ(s.warnings.size(), 1);
    EXPECT_TRUE(s.warnings[0].contains(QString::number(file.size()))) << s.warnings[0].toStdString();
}

TEST(Switches, ATimeoutTheClockCannotCountInKeepsTheDefault)
{
    const struct {
        const char *value;
        double seconds;
        bool warned;
    } cases[] = {
        {"0.3", 0.3, false}, {"86400", 86400, false}, {"1e300", 40, true}, {"inf", 40, true},
        {"nan", 40, true},   {"0", 40, true},         {"x", 40, true},
    };
    for (const auto &c : cases) {
        const Switches s = ParseSwitches({QStringLiteral("--timeout"), QString::fromLatin1(c.value)});
        EXPECT_DOUBLE_EQ(s.timeoutSeconds, c.seconds) << c.value;
        EXPECT_EQ(!s.warnings.isEmpty(), c.warned) << c.value;
    }
}
