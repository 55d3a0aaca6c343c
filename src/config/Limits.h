// The three adjustable limits: touch current "kuschl_ea", voltage "601_UBEZ", high-voltage time D2.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::config {

enum class LimitKind { Kuschl, Ubez, Pzhv };

struct LimitInfo {
    LimitKind kind;
    QString menuEntry; // "kuschl", "Ubez", "PZHV"
    QByteArray name;   // "kuschl_ea", "601_UBEZ", "UHVZ"
    int minimum;       // the scroll range
    int maximum;
    QString unit;           // " mA", " V", " s"
    QByteArray readCommand; // "wer?bgwkuschl_ea", "wer?bgw601_UBEZ", "var?D2"
};

const LimitInfo &Limit(LimitKind kind);
// By menu entry or limit name, any case: "kuschl", "kuschl_ea", "ubez", "601_UBEZ", "pzhv", "UHVZ".
std::optional<LimitKind> LimitKindFromName(const QString &name);
bool InRange(LimitKind kind, int value);

// The write command, value as decimal text without a blank: "wer!bgwkuschl_ea<015.0 mA",
// "wer!bgw601_UBEZ+300 V", "var!D25".
QByteArray LimitWriteCommand(LimitKind kind, int value);
// The value in a read answer: for "wer?bgw" the integer read from five places after the "B" of the
// first "BGW", for "var?D2" the integer after the first "=". Throws link::FormatError when the
// mark is missing or no whole number from 0 to 9999 stands there.
int LimitValueFromAnswer(LimitKind kind, const QByteArray &answer);
// What the value label shows: the value with the blank of the number conversion, then the unit.
QString LimitLabel(LimitKind kind, int value);

int ReadLimit(link::Link &link, LimitKind kind);
// Sends the write command; an answer that is not ".Y" (a refusal, ".N", garbage) shows
// "Grenzwerteingabe falsch" and gives false.
// The value is not checked here: the tester judges it.
bool WriteLimit(link::Link &link, link::Prompter &prompter, LimitKind kind, int value);
// "cfg!pgm"; a ".Nx" answer is shown and false returned.
bool StoreLimits(link::Link &link, link::Prompter &prompter);

inline const QString kLimitRefusedText = QStringLiteral("Grenzwerteingabe falsch");

} // namespace kalvo::config
