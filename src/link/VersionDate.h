// Dates in the tester's version answer, read in the order of the user's date format.
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <optional>

namespace kalvo::link {

enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

// "yyyy.mm.dd" (year first) and "mm.dd.yyyy" (month first) by their leading field;
// every other date format is day, month, year.
DateOrder DateOrderFromFormat(const QString &format);
// The order of the user's short date format (the program's locale, which is the system's).
DateOrder SystemDateOrder();

// Three numbers split at "." or "/", optionally a blank and a time split at ":".
// Two-digit years below 30 are 20xx, the others 19xx. nullopt when the text is no date: a part
// that is no number of at most four digits, a day or month that does not exist, or a time that
// is not one.
std::optional<QDateTime> ParseVersionDate(const QString &text, DateOrder order);

// A version field as the user reads it: the parsed date in the locale's short form, with the time
// when the field has one; the field's own text when it is no date.
QString VersionDateText(const QString &text, const std::optional<QDateTime> &date,
                        const QLocale &locale = QLocale());

} // namespace kalvo::link
