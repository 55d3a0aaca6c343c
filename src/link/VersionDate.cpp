// Dates in the tester's version answer, read in the order of the user's date format.
#include "VersionDate.h"

#include <QLocale>
#include <QRegularExpression>

namespace kalvo::link {

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
    return DateOrderFromFormat(QLocale::system().dateFormat(QLocale::ShortFormat));
}

static int FullYear(int year)
{
    if (year >= 100)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<QDateTime> ParseVersionDate(const QString &text, DateOrder order)
{
    const QString trimmed = text.trimmed();
    const qsizetype blank = trimmed.indexOf(QLatin1Char(' '));
    const QString datePart = blank < 0 ? trimmed : trimmed.left(blank);
    const QString timePart = blank < 0 ? QString() : trimmed.mid(blank + 1).trimmed();

    const QStringList parts = datePart.split(QRegularExpression(QStringLiteral("[./]")));
    if (parts.size() != 3)
        return std::nullopt;
    int n[3];
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        n[i] = parts[i].toInt(&ok);
        if (!ok)
            return std::nullopt;
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
    if (!date.isValid())
        return std::nullopt;

    QTime time(0, 0);
    if (!timePart.isEmpty()) {
        const QStringList t = timePart.split(QLatin1Char(':'));
        int hms[3] = {0, 0, 0};
        for (qsizetype i = 0; i < t.size() && i < 3; ++i)
            hms[i] = t[i].toInt();
        const QTime parsed(hms[0], hms[1], hms[2]);
        if (parsed.isValid())
            time = parsed;
    }
    // A year of nine digits is a valid QDate but lies beyond what a QDateTime holds.
    const QDateTime dateTime(date, time);
    if (!dateTime.isValid())
        return std::nullopt;
    return dateTime;
}

} // namespace kalvo::link
