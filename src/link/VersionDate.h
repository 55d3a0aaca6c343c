// Dates in the tester's version answer, read in the order of the user's date format.
#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace kalvo::link {

enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

// "yyyy.mm.dd" (year first) and "mm.dd.yyyy" (month first) by their leading field;
// every other date format is day, month, year.
DateOrder DateOrderFromFormat(const QString &format);
// The order of the user's short date format on this machine.
DateOrder SystemDateOrder();

// Three numbers split at "." or "/", optionally a blank and a time split at ":".
// Two-digit years below 30 are 20xx, the others 19xx. nullopt when the text is no date.
std::optional<QDateTime> ParseVersionDate(const QString &text, DateOrder order);

} // namespace kalvo::link
