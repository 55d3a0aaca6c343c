// The tester's modem settings: two telephone numbers and the initialisation string.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::modem {

struct ModemSettings {
    QString tel1; // string register 122
    QString tel2; // string register 123
    QString init; // string register 125
};

constexpr int kFirstStringRegister = 121;
constexpr int kStringRegisters = 5;

// "str!121," ... "str!125,", entry i behind register 120 + i; entries 1 and 4 stay empty.
QList<QByteArray> ModemCommands(const ModemSettings &settings);
// Sends the five commands in order, each answer received and not judged.
void WriteModemSettings(link::Link &link, const ModemSettings &settings);
// "str?122", "str?123", "str?125": the values the tester holds (the text between the first ","
// and the last ".Y"). Throws link::FormatError for an answer without them.
ModemSettings ReadModemSettings(link::Link &link);
// "cfg!pgm", then `confirmationText`; a ".Nx" answer is shown instead and false returned.
bool StoreModemSettings(link::Link &link, link::Prompter &prompter, const QString &confirmationText);

} // namespace kalvo::modem
