// Dates in the tester's version answer: day, month, year, whatever the PC's regional settings.
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

std::optional<QDateTime> ParseVersionDate(const QString &text)
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
    const QDate date(FullYear(n[2]), n[1], n[0]);
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
