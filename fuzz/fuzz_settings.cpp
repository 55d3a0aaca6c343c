// Start-up settings: "Q417.ini" by its text and by path, and the command-line switches with the
// time-out they give the link. Input: the settings file, NUL, the switches one a line.
#include "FuzzFiles.h"

#include "link/Clock.h"
#include "shell/Settings.h"
#include "shell/Switches.h"

using namespace kalvo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const QList<QByteArray> parts = fuzz::SplitParts(bytes, 2);

    fuzz::WriteScratchFile(shell::kSettingsFileName, parts[0]);
    const shell::Settings settings = shell::ReadSettings(fuzz::ScratchFolder());
    fuzz::Expect(settings.fromFile, "a settings file that is there is read");
    shell::SettingsLineValue(parts[0]);

    const QStringList arguments = QString::fromUtf8(parts[1]).split(QLatin1Char('\n'));
    const shell::Switches switches = shell::ParseSwitches(arguments);
    fuzz::Expect(switches.timeoutSeconds > 0, "a time-out is positive");
    // What the main window does with it.
    link::FromSeconds(switches.timeoutSeconds);
    return 0;
}
