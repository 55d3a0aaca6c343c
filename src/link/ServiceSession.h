// The fixed order every change to the tester is wrapped in.
#pragma once

#include <QString>
#include <functional>

namespace kalvo::link {

class Link;
class Prompter;

enum class StoreCommand {
    None,
    Calibration,   // "kal!pgm": calibration and configuration values
    Configuration, // "cfg!pgm": configuration bits, permanently
};

// One line of a write session: success is ".Y" without ".N". Anything else (".N", ".Nx", a
// "Protokoll" refusal, an answer without ".Y") is counted as a refusal and false returned, so that
// nothing is stored after it without asking.
bool SendSetting(Link &link, const QByteArray &command);
// "idn!99", then "kal!ein", each judged by SendSetting.
void OpenServiceSession(Link &link);
// Sends the store command. Stored only when the tester says ".Y" and refuses nothing: any ".N"
// (".Nx" included) or an answer without ".Y" is "not stored", counted as a refusal, shown to the
// user and false returned.
bool StoreChanges(Link &link, Prompter &prompter, StoreCommand store);
inline const QString kConfigurationNotStoredText =
    QStringLiteral("Die Konfiguration konnten nicht gespeichert werden");
inline const QString kCalibrationNotStoredText =
    QStringLiteral("Die Kalibrierwerte wurden nicht gespeichert");
// "rst!0", then the lone EOT without waiting for an answer.
void RestartTester(Link &link);
// Open, change, store, and restart where the change needs it.
bool RunServiceSession(Link &link, Prompter &prompter, StoreCommand store, bool restart,
                       const std::function<void()> &change);

} // namespace kalvo::link
