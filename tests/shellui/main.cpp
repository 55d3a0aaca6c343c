// Window tests need one QApplication for the whole run.
#include "platform/Processes.h"

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

int RunTests(int argc, char **argv)
{
    // Offscreen unless a run asks for a real display (QT_QPA_PLATFORM=xcb under Xvfb).
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The port the windows remember goes to a settings folder of this run: neither the user's nor
    // one that test processes running side by side would share.
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace

int main(int argc, char **argv)
{
    // Ends like kalvo itself, once the application and the windows are gone.
    return kalvo::platform::EndProcess(RunTests(argc, argv));
}
