// kalvo: the desktop utility, main window IEC601.
#include "MainWindow.h"
#include "shell/Settings.h"
#include "shell/Switches.h"
#include "sim/PortTransport.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kalvo"));
    kalvo::app::Startup startup;
    startup.switches = kalvo::shell::ParseSwitches(app.arguments().mid(1));
    startup.settings = kalvo::shell::ReadSettings();
    startup.programDir = QCoreApplication::applicationDirPath();
    startup.transportFactory = [] { return std::make_unique<kalvo::sim::PortTransport>(); };
    kalvo::app::MainWindow window(startup);
    window.show();
    return app.exec();
}
