// The tester's calibration table and its three adjustable limits: their defaults and their commands.
#pragma once

#include "TesterState.h"

#include <QByteArray>
#include <optional>

namespace kalvo::sim {

// "kal?" + n (0..50, a blank before the number allowed): ";n:a,b" + ".Y".
std::optional<QByteArray> CalibrationQuery(const TesterState &state, const QByteArray &argument);

// "wer!" + n + "," + value writes entry n; the first write sets its first value, a second write to
// the same entry right after it sets the second. `pendingEntry` carries that over between lines.
// Only inside configuration mode; anything else is ".N".
QByteArray CalibrationWrite(TesterState &state, const QByteArray &argument, bool configurationMode,
                            int &pendingEntry);

// "wer?bgw" + limit name: " BGW <030.0 mA.Y" / " BGW +250 V.Y" (the digits five places after the
// "B"); nullopt for a name the tester does not know.
std::optional<QByteArray> LimitQuery(const TesterState &state, const QByteArray &nameAndRest);
// "wer!bgw" + name + value in the tester's form ("kuschl_ea<015.0 mA", "601_UBEZ+300 V"):
// ".Y", or ".N" for a malformed or out-of-range value.
QByteArray LimitWrite(TesterState &state, const QByteArray &nameAndValue);

// "var!D2" + decimal seconds without a separator ("var!D25"): the high-voltage time, 1..60 s.
QByteArray HighVoltageTimeWrite(TesterState &state, const QByteArray &seconds);

} // namespace kalvo::sim
