// The port the chooser starts with: the settings file's, else the one last confirmed, else the default.
#include "shell/PortMemory.h"
#include "support/TestFiles.h"

#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo::shell;

namespace {

// Qt's test location below a home of this process's own, emptied: neither the user's settings
// nor those of window tests running at the same time are touched.
::testing::AssertionResult FreshUserSettings()
{
    static const QTemporaryDir home;
    // Where the user's settings file lies differs by system (HOME, %APPDATA%): set it outright.
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, home.path());
    QStandardPaths::setTestModeEnabled(true);
    QSettings user(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("kalvo"),
                   QStringLiteral("kalvo"));
    if (!home.isValid() || !user.fileName().startsWith(home.path() + QLatin1Char('/')))
        return ::testing::AssertionFailure()
               << "not a private test location: " << user.fileName().toStdString();
    user.clear();
    return ::testing::AssertionSuccess();
}

} // namespace

TEST(PortMemory, TheSettingsFileWinsThenTheLastRememberedPortThenTheDefault)
{
    const struct {
        const char *name;
        QStringList remembered;  // in order
        QByteArray settingsFile; // empty: no Q417.ini
        const char *start;
    } cases[] = {
        {"nothing at all", {}, {}, "COM 1"},
        {"one port remembered", {QStringLiteral("/dev/ttyUSB0")}, {}, "/dev/ttyUSB0"},
        {"the last of several",
         {QStringLiteral("COM 2"), QStringLiteral("/dev/ttyUSB1")},
         {},
         "/dev/ttyUSB1"},
        {"an empty name is nothing remembered", {QString()}, {}, "COM 1"},
        {"Q417.ini over a remembered port", {QStringLiteral("/dev/ttyUSB0")}, "com 3\r\n3\r\n", "COM 3"},
        {"Q417.ini alone", {}, "COM 4;bench\r\n", "COM 4"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(FreshUserSettings());
        QTemporaryDir dir;
        if (!c.settingsFile.isEmpty()) {
            ASSERT_TRUE(kalvo::testing::WriteFile(dir.filePath(kSettingsFileName), c.settingsFile));
        }
        for (const QString &port : c.remembered)
            RememberPort(port);
        EXPECT_EQ(StartPort(ReadSettings(dir.path())), QLatin1String(c.start));
    }
    EXPECT_TRUE(FreshUserSettings());
}
