// Window tests need one QApplication for the whole run.
#include "platform/Processes.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

int RunTests(int argc, char **argv)
{
    // Offscreen unless a run asks for a real display (QT_QPA_PLATFORM=xcb under Xvfb); the
    // offscreen screen is the 1024x768 one every window must fit, with window frames. The plugin
    // reads its file while the application starts; it is named relative to the current folder,
    // since the plugin's options are separated by ":" and a Windows path holds one.
    const QTemporaryDir screenDir;
    const QString startDir = QDir::currentPath();
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform.isEmpty() || platform == "offscreen") {
        QFile file(screenDir.filePath(QStringLiteral("screen.json")));
        if (file.open(QIODevice::WriteOnly))
            file.write(R"({"windowFrameMargins": true, "screens": [{"name": "screen", "x": 0, "y": 0,
                "width": 1024, "height": 768, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
        file.close();
        QDir::setCurrent(screenDir.path());
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=screen.json");
    }
    QApplication app(argc, argv);
    QDir::setCurrent(startDir);
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
