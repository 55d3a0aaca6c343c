// The fixed order every change to the tester is wrapped in.
#pragma once

#include <functional>

namespace kalvo::link {

class Link;
class Prompter;

enum class StoreCommand {
    None,
    Calibration,   // "kal!pgm": calibration and configuration values
    Configuration, // "cfg!pgm": configuration bits, permanently
};

// "idn!99", then "kal!ein".
void OpenServiceSession(Link &link);
// Sends the store command; a ".Nx" answer to "cfg!pgm" is shown to the user and false returned.
bool StoreChanges(Link &link, Prompter &prompter, StoreCommand store);
// "rst!0", then the lone EOT without waiting for an answer.
void RestartTester(Link &link);
// Open, change, store, and restart where the change needs it.
bool RunServiceSession(Link &link, Prompter &prompter, StoreCommand store, bool restart,
                       const std::function<void()> &change);

} // namespace kalvo::link
