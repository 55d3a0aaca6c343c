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
// Sends the five commands in order, each answer received. Returns the lines the tester refused
// (any answer that is not ".Y" without ".N"), which are also counted on the link.
QList<QByteArray> WriteModemSettings(link::Link &link, const ModemSettings &settings);
// "cfg!pgm", then `confirmationText`; a refused store is shown instead and false returned. When the
// writes before it met refusals (`refusedBefore`), the user is asked first, with the refused lines
// named, and nothing is stored on Cancel.
bool StoreModemSettings(link::Link &link, link::Prompter &prompter, const QString &confirmationText,
                        const QList<QByteArray> &refusedBefore = {});

} // namespace kalvo::modem
