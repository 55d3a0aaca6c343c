// Dates in the tester's version answer: day, month, year, whatever the PC's regional settings.
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <optional>

namespace kalvo::link {

// Day, month and year split at "." or "/" ("17.03.09"), optionally a blank and a time split at
// ":". The tester writes its dates so on every PC: a US PC's month-first settings do not apply.
// Two-digit years below 30 are 20xx, the others 19xx. nullopt when the text is no date: a part
// that is no number of at most four digits, a day or month that does not exist, or a time that
// is not one.
std::optional<QDateTime> ParseVersionDate(const QString &text);

// A version field as the user reads it: the parsed date in the locale's short form, with the time
// when the field has one; the field's own text when it is no date.
QString VersionDateText(const QString &text, const std::optional<QDateTime> &date,
                        const QLocale &locale = QLocale());

} // namespace kalvo::link
