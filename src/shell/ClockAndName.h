// Setting the tester's clock from the PC and giving the tester a name.
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::shell {

class LanguageTable;

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

enum class NamingResult { Sent, Cancelled, TooLong };
constexpr int kMaxNameLength = 8;

// Asks for a name of at most 8 characters and stores it with "kal!aus", "idn!1," + name,
// "cfg!pgm" (no full service session: the tester takes a name without one).
NamingResult NameTester(link::Link &link, link::Prompter &prompter, const LanguageTable &texts);
// The same with the name given (the command line's way); the length rule is the same.
NamingResult SendTesterName(link::Link &link, link::Prompter &prompter, const LanguageTable &texts,
                            const QString &name);

} // namespace kalvo::shell
