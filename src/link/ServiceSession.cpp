// The fixed order every change to the tester is wrapped in.
#include "ServiceSession.h"

#include "Link.h"
#include "Prompter.h"

namespace kalvo::link {

bool SendSetting(Link &link, const QByteArray &command)
{
    const RefusalWatch watch(link);
    const QByteArray answer = link.Exchange(command);
    if (answer.contains(".Y") && !answer.contains(".N"))
        return true;
    // A "Protokoll" refusal has been counted by the link already.
    if (!watch.refused())
        link.NoteRefusal(command);
    return false;
}

void OpenServiceSession(Link &link)
{
    SendSetting(link, "idn!99");
    SendSetting(link, "kal!ein");
}

bool StoreChanges(Link &link, Prompter &prompter, StoreCommand store)
{
    if (store == StoreCommand::None)
        return true;
    if (SendSetting(link, store == StoreCommand::Calibration ? "kal!pgm" : "cfg!pgm"))
        return true;
    prompter.message(store == StoreCommand::Configuration ? kConfigurationNotStoredText
                                                          : kCalibrationNotStoredText,
                     Prompter::Icon::Warning);
    return false;
}

void RestartTester(Link &link)
{
    link.Exchange("rst!0");
    link.SendCommand(QByteArray(1, kEOT));
}

bool RunServiceSession(Link &link, Prompter &prompter, StoreCommand store, bool restart,
                       const std::function<void()> &change)
{
    OpenServiceSession(link);
    change();
    const bool stored = StoreChanges(link, prompter, store);
    if (restart)
        RestartTester(link);
    return stored;
}

} // namespace kalvo::link
