// After a package run on newer firmware: raising calibration values 29 and 50 that are too low.
#pragma once

#include <QByteArray>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::update {

// Firmware above this version gets the fix-up (compared in single precision, so 1.4 itself does not).
constexpr float kFixUpAfterVersion = 1.4f;
constexpr double kValue29Limit = 3000;
constexpr float kValue29Factor = 1.69f;
constexpr double kValue50Limit = 500;

bool FixUpNeeded(double firmwareVersion);

// B of a "kal?29" answer: the number in the five characters after its first ",", which must come
// after its first ":". nullopt when they hold no number.
std::optional<double> Value29(const QByteArray &answer);
// C of a "kal?50" answer: the number after its first ","; nullopt when there is none.
std::optional<double> Value50(const QByteArray &answer);
// B × 1.69 in single precision, as the shortest decimal text that reads back as the same single
// ("2085.46", not "2085.4600830078125"), never with an exponent or a leading blank.
QByteArray ScaledValue29(double b);

struct FixUpResult {
    bool changed29 = false;
    bool changed50 = false;
    bool stored = false; // "kal!pgm" answered ".Y" without ".N"
};

// "idn!99", "kal!ein", "kal?29" (B < 3000: "wer!29,0", "wer!29," + B × 1.69), "kal?50" (C < 500:
// "wer!50,1204"), "kal!pgm" only when something changed, "kal!aus" always. Throws
// link::FormatError naming the command when an answer does not hold its value: nothing more is
// written then, but "kal!aus" still goes out. After a refused write nothing is stored: "kal!pgm" is
// not sent and the user is told (the second write of 29 is not sent after a refused first one).
FixUpResult FixUpCalibration(link::Link &link, link::Prompter &prompter);

} // namespace kalvo::update
