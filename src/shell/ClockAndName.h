// Setting the tester's clock from the PC and giving the tester a name.
#pragma once

#include "link/Identification.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <functional>
#include <optional>

namespace kalvo::link {
class Link;
class LanguageTable;
class Prompter;
} // namespace kalvo::link

namespace kalvo::shell {

struct TesterClock {
    QByteArray date; // 8 characters from two behind the first "="
    QByteArray time; // 8 characters from two behind the first ";"
};

// "dat?" and its date and time.
TesterClock ReadTesterClock(link::Link &link);
// The PC's clock as the tester wants it: "dd.mm.yy;hh:mm".
QString ClockProposal(const QDateTime &now);
struct ClockSetting {
    TesterClock before;          // what the tester said before
    std::optional<QString> sent; // the text sent behind "dat!"; none when cancelled or empty
};
// Shows the tester's clock, proposes the PC's, and sends "dat!" with the text exactly as
// confirmed; nothing is sent when the user cancels or confirms an empty text.
ClockSetting SetTesterClock(link::Link &link, link::Prompter &prompter, const QDateTime &now);

enum class NamingResult {
    Sent,      // the tester took the name and stored it
    NotStored, // a refusal on the way: the tester may not hold the name
    Cancelled, // no name given
    TooLong,   // refused before anything was sent
};
constexpr int kMaxNameLength = 8;

// Stores `name` with "kal!aus", "idn!1," + name, "cfg!pgm" (no full service session: the tester
// takes a name without one). A name of more than 8 characters is refused with the language's
// message before anything is sent; after a refused command the store is asked for first.
NamingResult SendTesterName(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                            const QString &name);

struct Naming {
    NamingResult result = NamingResult::Cancelled;
    link::TesterIdentity identity; // as identified; with the new name once the tester stored it
};
// Taufe: identifies the tester first, so that its current identity is known (`identified` gets it
// before the name is asked for), then asks for the name (unless `given`) and sends it. A given
// name that is too long is refused before anything is sent, identification included.
Naming NameTester(link::Link &link, link::Prompter &prompter, const link::LanguageTable &texts,
                  const link::IdentifyOptions &options, const std::optional<QString> &given = std::nullopt,
                  const std::function<void(const link::TesterIdentity &)> &identified = {});

} // namespace kalvo::shell
