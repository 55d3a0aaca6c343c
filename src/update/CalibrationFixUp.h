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
constexpr double kValue29Factor = 1.69;
constexpr double kValue50Limit = 500;

bool FixUpNeeded(double firmwareVersion);

// A calibration answer holds its value only when it is the whole answer to "kal?N": the entry
// number N in front of its first ":", a "," after that, then a plain number that is not negative
// (blanks around it allowed) and the ".Y" that closes the answer. Anything else (a sign, "0x1F",
// "1e3", nothing, no ".Y") holds no value, so that nothing is ever computed from it.
// B of a "kal?29" answer: the number in the first five characters of that value.
std::optional<double> Value29(const QByteArray &answer);
// C of a "kal?50" answer: the whole value.
std::optional<double> Value50(const QByteArray &answer);
// B × 1.69 in double precision, as the number-to-text conversion writes it: at most 15
// significant digits, no trailing zeros, never an exponent nor a leading blank ("1691.69" for
// 1001, "16.9" for 10).
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
