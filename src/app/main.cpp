// kalvo: the desktop utility, main window IEC601.
#include "MainWindow.h"
#include "platform/Processes.h"
#include "shell/Settings.h"
#include "shell/Switches.h"
#include "sim/PortTransport.h"

#include <QApplication>
#include <cstdio>
#include <cstring>

namespace {

// `--version` and `--help` are answered on stdout before any window system is asked for, so that
// they work without a display; every other word is left to the switches.
bool AnsweredWithoutWindow(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("kalvo %s\n", KALVO_VERSION);
            return true;
        }
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::printf("kalvo [/K] [/Service] [/Entw] [--simulate] [--timeout SECONDS]\n\n"
                        "  /K                 open the configuration at start\n"
                        "  /Service           show the calibration-values entry\n"
                        "  /Entw              development mode: trace received bytes to test.log\n"
                        "  --simulate         offer the virtual tester in the port chooser\n"
                        "  --timeout SECONDS  how long to wait for an answer (default 40)\n"
                        "  --version          the version of kalvo\n"
                        "  -h, --help         this text\n");
            return true;
        }
    }
    return false;
}

int RunWindows(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kalvo"));
    QApplication::setApplicationVersion(QStringLiteral(KALVO_VERSION));
    kalvo::app::Startup startup;
    startup.switches = kalvo::shell::ParseSwitches(app.arguments().mid(1));
    startup.settings = kalvo::shell::ReadSettings();
    startup.programDir = QCoreApplication::applicationDirPath();
    startup.transportFactory = [] { return std::make_unique<kalvo::sim::PortTransport>(); };
    kalvo::app::MainWindow window(startup);
    window.show();
    return app.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    if (AnsweredWithoutWindow(argc, argv))
        return 0;
    return kalvo::platform::EndProcess(RunWindows(argc, argv));
}
