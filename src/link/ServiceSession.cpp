// The fixed order every change to the tester is wrapped in.
#include "ServiceSession.h"

#include "Link.h"
#include "Prompter.h"

namespace kalvo::link {

void OpenServiceSession(Link &link)
{
    link.Exchange("idn!99");
    link.Exchange("kal!ein");
}

bool StoreChanges(Link &link, Prompter &prompter, StoreCommand store)
{
    switch (store) {
    case StoreCommand::None: return true;
    case StoreCommand::Calibration: link.Exchange("kal!pgm"); return true;
    case StoreCommand::Configuration:
        if (link.Exchange("cfg!pgm").contains(".Nx")) {
            prompter.message(QStringLiteral("Die Konfiguration konnten nicht gespeichert werden"),
                             Prompter::Icon::Warning);
            return false;
        }
        return true;
    }
    return true;
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
