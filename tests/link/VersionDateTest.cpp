// Version dates of the tester: read in the user's date order, shown in the user's form.
#include "link/VersionDate.h"

#include <gtest/gtest.h>

using namespace kalvo::link;

namespace {

TEST(VersionDate, ReadInEveryOrderWithOrWithoutATime)
{
    using O = DateOrder;
    const struct {
        const char *text;
        DateOrder order;
        QDateTime expected; // invalid: no date
    } cases[] = {
        {"24.12.2003", O::DayMonthYear, QDateTime(QDate(2003, 12, 24), QTime(0, 0))},
        {"12.24.2003", O::MonthDayYear, QDateTime(QDate(2003, 12, 24), QTime(0, 0))},
        {"2003.12.24", O::YearMonthDay, QDateTime(QDate(2003, 12, 24), QTime(0, 0))},
        {"24/12/03", O::DayMonthYear, QDateTime(QDate(2003, 12, 24), QTime(0, 0))},
        {"24.12.99", O::DayMonthYear, QDateTime(QDate(1999, 12, 24), QTime(0, 0))},
        {" 24.12.2003 13:45", O::DayMonthYear, QDateTime(QDate(2003, 12, 24), QTime(13, 45))},
        {"12/24/2003 13:45:10", O::MonthDayYear, QDateTime(QDate(2003, 12, 24), QTime(13, 45, 10))},
        {"24.12.2003 25:00", O::DayMonthYear, {}},
        {"24.12.2003 13:xx", O::DayMonthYear, {}},
        {"24.12.2003 13", O::DayMonthYear, {}},
        {"24.12.2003 1:2:3:4", O::DayMonthYear, {}},
        {"24.12.99999999999", O::DayMonthYear, {}},
        {"24.12.-3", O::DayMonthYear, {}},
        {"2003.12.24", O::DayMonthYear, {}},
        {"31.02.2003", O::DayMonthYear, {}},
        {"17.03.444442009", O::DayMonthYear, {}}, // a year of more digits than any date holds
        {"24.12", O::DayMonthYear, {}},
        {"V 1.52", O::DayMonthYear, {}},
        {"", O::DayMonthYear, {}},
    };
    for (const auto &c : cases) {
        const auto date = ParseVersionDate(QString::fromLatin1(c.text), c.order);
        EXPECT_EQ(date.has_value(), c.expected.isValid()) << c.text;
        if (date && c.expected.isValid()) {
            EXPECT_EQ(*date, c.expected) << c.text;
        }
    }
    EXPECT_EQ(DateOrderFromFormat("yyyy.MM.dd"), O::YearMonthDay);
    EXPECT_EQ(DateOrderFromFormat("MM.dd.yyyy"), O::MonthDayYear);
    EXPECT_EQ(DateOrderFromFormat("M/d/yy"), O::MonthDayYear);
    EXPECT_EQ(DateOrderFromFormat("dd.MM.yyyy"), O::DayMonthYear);
    EXPECT_EQ(DateOrderFromFormat("d MMM yyyy"), O::DayMonthYear);
}

TEST(VersionDate, ShownInTheLocalesFormOrAsTheFieldCame)
{
    const QLocale german(QLocale::German, QLocale::Germany);
    const QLocale british(QLocale::English, QLocale::UnitedKingdom);
    const struct {
        const char *text;
        const QLocale &locale;
        const char *shown;
    } cases[] = {
        {"17.03.09 10:42", german, "17.03.09 10:42"},
        {"17.03.09 10:42", british, "17/03/2009 10:42"},
        {"17.03.09", german, "17.03.09"},
        {"17.03.09", british, "17/03/2009"},
        {"17.13.09 10:42", german, "17.13.09 10:42"}, // no date: the text as it came
        {"V 1.52", british, "V 1.52"},
    };
    for (const auto &c : cases) {
        const QString text = QString::fromLatin1(c.text);
        EXPECT_EQ(VersionDateText(text, ParseVersionDate(text, DateOrder::DayMonthYear), c.locale),
                  QString::fromLatin1(c.shown))
            << c.text;
    }
}

} // namespace
