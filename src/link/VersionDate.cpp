// Dates in the tester's version answer, read in the order of the user's date format.
#include "VersionDate.h"

#include <QRegularExpression>

namespace kalvo::link {

namespace {

// A date or time part: one to four digits and nothing else, so that no part can overflow.
std::optional<int> Part(const QString &text)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,4}$"));
    if (!digits.match(text).hasMatch())
        return std::nullopt;
    return text.toInt();
}

int FullYear(int year)
{
    if (year >= 100)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

// The text behind the date: empty or a time split at ":" (hours, minutes, optional seconds).
std::optional<QTime> TimeOf(const QString &text)
{
    if (text.isEmpty())
        return QTime(0, 0);
    const QStringList t = text.split(QLatin1Char(':'));
    if (t.size() < 2 || t.size() > 3)
        return std::nullopt;
    int hms[3] = {0, 0, 0};
    for (qsizetype i = 0; i < t.size(); ++i) {
        const auto value = Part(t[i]);
        if (!value)
            return std::nullopt;
        hms[i] = *value;
    }
    const QTime time(hms[0], hms[1], hms[2]);
    if (!time.isValid())
        return std::nullopt;
    return time;
}

} // namespace

DateOrder DateOrderFromFormat(const QString &format)
{
    const QString f = format.trimmed().toLower();
    if (f.startsWith(QLatin1Char('y')))
        return DateOrder::YearMonthDay;
    if (f.startsWith(QLatin1Char('m')))
        return DateOrder::MonthDayYear;
    return DateOrder::DayMonthYear;
}

DateOrder SystemDateOrder()
{
    return DateOrderFromFormat(QLocale().dateFormat(QLocale::ShortFormat));
}

std::optional<QDateTime> ParseVersionDate(const QString &text, DateOrder order)
{
    const QString trimmed = text.trimmed();
    const qsizetype blank = trimmed.indexOf(QLatin1Char(' '));
    const QString datePart = blank < 0 ? trimmed : trimmed.left(blank);
    const QString timePart = blank < 0 ? QString() : trimmed.mid(blank + 1).trimmed();

    static const QRegularExpression separators(QStringLiteral("[./]"));
    const QStringList parts = datePart.split(separators);
    if (parts.size() != 3)
        return std::nullopt;
    int n[3];
    for (int i = 0; i < 3; ++i) {
        const auto value = Part(parts[i]);
        if (!value)
            return std::nullopt;
        n[i] = *value;
    }
    int year = n[2], month = n[1], day = n[0];
    if (order == DateOrder::YearMonthDay) {
        year = n[0];
        month = n[1];
        day = n[2];
    } else if (order == DateOrder::MonthDayYear) {
        month = n[0];
        day = n[1];
    }
    const QDate date(FullYear(year), month, day);
    const auto time = TimeOf(timePart);
    if (!date.isValid() || !time)
        return std::nullopt;
    return QDateTime(date, *time);
}

QString VersionDateText(const QString &text, const std::optional<QDateTime> &date, const QLocale &locale)
{
    if (!date)
        return text;
    // A field with a time has a blank between date and time.
    if (text.trimmed().contains(QLatin1Char(' ')))
        return locale.toString(*date, QLocale::ShortFormat);
    return locale.toString(date->date(), QLocale::ShortFormat);
}

} // namespace kalvo::link
