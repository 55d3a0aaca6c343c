// Identifying the tester: "dis?" tries, language, version dates, firmware, update-needed.
#include "LinkFixture.h"

#include "link/Errors.h"
#include "link/Identification.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace kalvo::link;

namespace kalvo::testing {
namespace {

const QByteArray kVersion = "ver?;15.06.2020;15.06.2020;15.06.2020;15.06.2020;15.06.2020\r\n\x11";
const QByteArray kIdentity = "idn?;Kalvomer 701;4711;BENCH001; V 1.52\r\n\x11";

TEST(Identification, DisplayQueryIsTriedUpToFiveTimesUntilYesStandsPastTwo)
{
    const struct {
        const char *name;
        std::vector<QByteArray> answers;
        int languageCode; // -1: identification fails
    } cases[] = {
        {"good at once", {"dis? 03.Y\x11"}, 3},
        {"four bad, then good", {"x.Y\x11", ".Y\x11", "\x11", "dis? .N\x11", "dis? 04.Y\x11"}, 4},
        {"five bad", {"x.Y\x11", "\x11", ".Y\x11", "dis?\x11", "\x11"}, -1},
        {"yes at position 2 five times", {"5.Y\x11", "5.Y\x11", "5.Y\x11", "5.Y\x11", "5.Y\x11"}, 5},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.link.setProtocolError(30000, QStringLiteral("before"));
        for (const QByteArray &answer : c.answers)
            s.transport.Expect("dis?\r").Reply(answer);
        if (c.languageCode < 0) {
            try {
                IdentifyTester(s.link, {});
                ADD_FAILURE() << "no ProtocolError";
            } catch (const ProtocolError &e) {
                EXPECT_EQ(e.message(), QStringLiteral("31995:  Identstring fehlerhaft"));
            }
        } else {
            s.transport.Expect("ver?\r").Reply(kVersion);
            s.transport.Expect("idn?\r").Reply(kIdentity);
            EXPECT_EQ(IdentifyTester(s.link, {}).languageCode, c.languageCode);
        }
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(s.link.protocolErrorNumber(), 30000);
    }
}

TEST(Identification, LanguageCodesSevenAndAboveAreEnglish)
{
    const struct {
        const char *answer, *menuEntry, *name;
    } cases[] = {
        {"dis? 00.Y", "deutsch", "deutsch"},           {"dis? 01.Y", "english", "englisch"},
        {"dis? 02.Y", "nederlandske", "nederlandske"}, {"dis? 03.Y", "france", "französisch"},
        {"dis? 04.Y", "italiano", "italienisch"},      {"dis? 05.Y", "spain", "spain"},
        {"dis? 06.Y", "tschech", "tschechisch"},       {"dis? 07.Y", "english", "englisch"},
        {"dis? 12.Y", "english", "englisch"},
    };
    for (const auto &c : cases) {
        const TesterLanguage language = LanguageForCode(LanguageCodeFromAnswer(c.answer));
        EXPECT_EQ(language.menuEntry, QString::fromUtf8(c.menuEntry)) << c.answer;
        EXPECT_EQ(language.name, QString::fromUtf8(c.name)) << c.answer;
    }
}

TEST(Identification, VersionDatesInEveryOrder)
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
        {"2003.12.24", O::DayMonthYear, {}},
        {"31.02.2003", O::DayMonthYear, {}},
        {"17.03.444442009", O::DayMonthYear, {}}, // a valid QDate, but beyond any date and time
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

TEST(Identification, FirmwareVersionNameAndAccessoryFromTheIdentity)
{
    const struct {
        QByteArray identity;
        double firmware;
        bool accessoryInFront;
        const char *shortDesignation;
    } cases[] = {
        {kIdentity, 1.52, false, "BENCH001"},
        {"idn? KYM 2;x;7;ACCESSORY9; V 2.10\r\n\x11", 2.1, true, "ACCESSOR"},
        {"KYM;V 3; V 0.9\x11", 0.9, false, ""}, // "KYM" at the very start does not count
    };
    for (const auto &c : cases) {
        ScriptedLink s;
        s.transport.Expect("dis?\r").Reply("dis? 00.Y\x11");
        s.transport.Expect("ver?\r").Reply(kVersion);
        s.transport.Expect("idn?\r").Reply(c.identity);
        const TesterIdentity id = IdentifyTester(s.link, {});
        EXPECT_DOUBLE_EQ(id.firmwareVersion, c.firmware) << c.identity.constData();
        EXPECT_EQ(id.AccessoryInFront(), c.accessoryInFront) << c.identity.constData();
        EXPECT_EQ(id.shortDesignation, QByteArray(c.shortDesignation)) << c.identity.constData();
        EXPECT_EQ(id.versionDates[size_t(VersionPart::Help)], QDateTime(QDate(2020, 6, 15), QTime(0, 0)));
    }
}

TEST(Identification, UpdateIsNeededWhenPicturesHelpOrSequencesAreOlderThanTheirFiles)
{
    QTemporaryDir dir;
    const QDateTime fileDate(QDate(2020, 6, 15), QTime(8, 0));
    for (const char *name : {"med.hex", "bilder.p", "abge.p", "hlfge.p"}) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x");
        file.flush(); // or closing would stamp the file again
        ASSERT_TRUE(file.setFileTime(fileDate, QFileDevice::FileModificationTime));
    }
    const struct {
        const char *older; // the one part the tester has in an older version
        int field;         // its field in the "ver?" answer
        bool needed;
    } cases[] = {
        {"nothing", 0, false}, {"system", 1, false}, {"configuration", 2, false},
        {"pictures", 3, true}, {"help", 4, true},    {"sequences", 5, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.older);
        QList<QByteArray> fields = {"ver?",       "15.06.2020", "15.06.2020",
                                    "15.06.2020", "15.06.2020", "15.06.2020"};
        if (c.field > 0)
            fields[c.field] = "14.06.2020";
        ScriptedLink s;
        s.transport.Expect("dis?\r").Reply("dis? 00.Y\x11");
        s.transport.Expect("ver?\r").Reply(fields.join(';') + "\r\n\x11");
        s.transport.Expect("idn?\r").Reply(kIdentity);
        const TesterIdentity id = IdentifyTester(s.link, {dir.path(), DateOrder::DayMonthYear});
        EXPECT_EQ(id.updateNeeded, c.needed);
    }
}

} // namespace
} // namespace kalvo::testing
