// Window tests need one QApplication for the whole run.
#include <QApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    // Offscreen unless a run asks for a real display (QT_QPA_PLATFORM=xcb under Xvfb).
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The port the windows remember goes to a settings folder of the tests, not the user's.
    QStandardPaths::setTestModeEnabled(true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
