// Version dates of the tester: always day, month, year; shown in the user's form.
#include "link/VersionDate.h"

#include <gtest/gtest.h>

using namespace kalvo::link;

namespace {

TEST(VersionDate, DayMonthYearWithOrWithoutATime)
{
    const struct {
        const char *text;
        QDateTime expected; // invalid: no date
    } cases[] = {
        {"24.12.2003", QDateTime(QDate(2003, 12, 24), QTime(0, 0))},
        {"24/12/03", QDateTime(QDate(2003, 12, 24), QTime(0, 0))},
        {"24.12.99", QDateTime(QDate(1999, 12, 24), QTime(0, 0))},
        {" 24.12.2003 13:45", QDateTime(QDate(2003, 12, 24), QTime(13, 45))},
        {"24/12/2003 13:45:10", QDateTime(QDate(2003, 12, 24), QTime(13, 45, 10))},
        {"12.24.2003", {}}, // no 24th month
        {"24.12.2003 25:00", {}},
        {"24.12.2003 13:xx", {}},
        {"24.12.2003 13", {}},
        {"24.12.2003 1:2:3:4", {}},
        {"24.12.99999999999", {}},
        {"24.12.-3", {}},
        {"2003.12.24", {}},
        {"31.02.2003", {}},
        {"17.03.444442009", {}}, // a year of more digits than any date holds
        {"24.12", {}},
        {"V 1.52", {}},
        {"", {}},
    };
    for (const auto &c : cases) {
        const auto date = ParseVersionDate(QString::fromLatin1(c.text));
        EXPECT_EQ(date.has_value(), c.expected.isValid()) << c.text;
        if (date && c.expected.isValid()) {
            EXPECT_EQ(*date, c.expected) << c.text;
        }
    }
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
        EXPECT_EQ(VersionDateText(text, ParseVersionDate(text), c.locale), QString::fromLatin1(c.shown))
            << c.text;
    }
}

} // namespace
