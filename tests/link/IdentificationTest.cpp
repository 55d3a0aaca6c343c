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

// A German tester's "dis?", then "ver?" and "idn?" answered as given.
void ExpectIdentification(ScriptedLink &s, const QByteArray &identity, const QByteArray &version = kVersion)
{
    s.transport.Expect("dis?\r").Reply("dis? 00.Y\x11");
    s.transport.Expect("ver?\r").Reply(version);
    s.transport.Expect("idn?\r").Reply(identity);
}

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
        // A refusal is no answer that another try cures: nothing goes on after the tries.
        {"refused, then answered", {"DIS? Protokoll .N\r\n\x11", "dis? 00.Y\x11"}, -1},
        {"refused without echo, answered at the fifth",
         {"x\x11", " Protokoll .N\x11", "\x11", ".Y\x11", " 2.Y\x11"},
         -1},
        {"refused five times", std::vector<QByteArray>(5, "dis? Protokoll .N\r\n\x11"), -1},
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
        {"dis? 02.Y", "nederlandske", "nederlandske"}, {"DIS? 03.Y", "france", "französisch"},
        {"dis?  4.Y", "italiano", "italienisch"},      {"dis? 5.Y", "spain", "spain"},
        {"dis? 06.Y", "tschech", "tschechisch"},       {"dis? 07.Y", "english", "englisch"},
        {"dis? 12.Y", "english", "englisch"},          {"dis? 99.Y", "english", "englisch"},
    };
    for (const auto &c : cases) {
        const auto code = LanguageCodeFromAnswer(c.answer);
        ASSERT_TRUE(code.has_value()) << c.answer;
        const TesterLanguage language = LanguageForCode(*code);
        EXPECT_EQ(language.menuEntry, QString::fromUtf8(c.menuEntry)) << c.answer;
        EXPECT_EQ(language.name, QString::fromUtf8(c.name)) << c.answer;
    }
}

TEST(Identification, ALanguageCodeThatIsNoNumberOrOutOfRangeIsAFormatErrorNamingDis)
{
    for (const QByteArray answer : {"dis? xx.Y\x11", "dis?-1.Y\x11", "dis? &H.Y\x11", "dis?  .Y\x11"}) {
        ScriptedLink s;
        s.transport.Expect("dis?\r").Reply(answer);
        try {
            IdentifyTester(s.link, {});
            ADD_FAILURE() << "no FormatError for " << answer.constData();
        } catch (const FormatError &e) {
            EXPECT_TRUE(e.text().contains(QStringLiteral("dis?"))) << e.text().toStdString();
        }
        EXPECT_TRUE(s.transport.allExpectationsMet()) << answer.constData();
    }
}

TEST(Identification, FirmwareVersionNameAndAccessoryFromTheIdentity)
{
    const struct {
        QByteArray identity;
        double firmware;
        bool accessoryInFront;
        const char *shortDesignation;
        const char *versionText; // what the Version label shows
    } cases[] = {
        {kIdentity, 1.52, false, "BENCH001", "V 1.52"},
        {"idn? KYM 2;x;7;ACCESSORY9; V 2.10\r\n\x11", 2.1, true, "ACCESSOR", "idn? KYM 2  V 2.10"},
        {"IDN?;KYM QRT4027;0815 0042;KYM-BOX;Firmware V 2.10\x11", 2.1, true, "KYM-BOX",
         "KYM QRT4027  Firmware V 2.10"},
        {"KYM;V 3; V 0.9\x11", 0.9, false, "", "V 0.9"}, // "KYM" at the very start does not count
        {"idn?;Kalvomer;1;N; V 7\x11", 7, false, "N", "V 7"},
        {"idn?;Kalvomer;1;N;Firmware V 12.345678\x11", 12.345678, false, "N", "Firmware V 12.345678"},
        {"idn?;Kalvomer;1;N\x11", 0, false, "N", ""},
        // A " V" in front of the firmware's own: the firmware stands last.
        {"IDN?;Kalvomer VDE 0701;4711;N;Firmware V 1.52\x11", 1.52, false, "N", "Firmware V 1.52"},
        {"idn?;Kalvomer V 701;4711;LAB V 2; V 1.6\r\n\x11", 1.6, false, "LAB V 2", "V 1.6"},
        // A version that cannot be read counts 0, as a number that is none always has.
        {"idn?;K;1;N; V 99999999999999999999\x11", 0, false, "N", "V 99999999999999999999"},
        {"idn?;K;1;N; V 1.1234567\x11", 0, false, "N", "V 1.1234567"},
        {"idn?;K;1;N; V x\x11", 0, false, "N", "V x"},
        {"idn?;K;1;N; V &HFFFF\x11", 0, false, "N", "V &HFFFF"},
        {"idn?;K;1;N; V -1\x11", 0, false, "N", "V -1"},
        {"idn?;Kalvomer VDE 0701;1;N;Firmware\x11", 0, false, "N", "Kalvomer VDE 0701"},
    };
    for (const auto &c : cases) {
        ScriptedLink s;
        ExpectIdentification(s, c.identity);
        const TesterIdentity id = IdentifyTester(s.link, {});
        EXPECT_DOUBLE_EQ(id.firmwareVersion, c.firmware) << c.identity.constData();
        EXPECT_EQ(id.AccessoryInFront(), c.accessoryInFront) << c.identity.constData();
        EXPECT_EQ(id.shortDesignation, QByteArray(c.shortDesignation)) << c.identity.constData();
        EXPECT_EQ(id.VersionText(), QByteArray(c.versionText)) << c.identity.constData();
        EXPECT_EQ(id.versionDates[size_t(VersionPart::Help)], QDateTime(QDate(2020, 6, 15), QTime(0, 0)));
    }
}

TEST(Identification, ANewNameReplacesTheShortDesignationAndItsField)
{
    ScriptedLink s;
    ExpectIdentification(s, kIdentity);
    const TesterIdentity renamed = WithNewName(IdentifyTester(s.link, {}), "PRUEF-3");
    EXPECT_EQ(renamed.shortDesignation, QByteArray("PRUEF-3"));
    EXPECT_EQ(renamed.identityFields.value(kIdentityNameField), QByteArray("PRUEF-3"));
    EXPECT_EQ(renamed.serialNumber, QByteArray("4711"));
    EXPECT_DOUBLE_EQ(renamed.firmwareVersion, 1.52);
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
    const QByteArray same = "15.06.2020 08:00";
    const struct {
        const char *name;
        int field;          // the field of the "ver?" answer that differs; 0: none
        const char *tester; // what that field holds
        bool needed;
    } cases[] = {
        {"all as new as their files", 0, "", false},
        {"system older", 1, "14.06.2020", false},
        {"configuration older", 2, "14.06.2020", false},
        {"pictures older", 3, "14.06.2020 08:00", true},
        {"help older", 4, "14.06.2020 23:59", true},
        {"sequences older", 5, "14.06.2020", true},
        {"same day, a minute earlier", 3, "15.06.2020 07:59", true},
        {"same day without a time", 4, "15.06.2020", true},
        {"same day, later", 5, "15.06.2020 08:01", false},
        {"no date", 5, "15.06.2020 8h", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QList<QByteArray> fields = {"ver?", same, same, same, same, same};
        if (c.field > 0)
            fields[c.field] = c.tester;
        ScriptedLink s;
        ExpectIdentification(s, kIdentity, fields.join(';') + "\r\n\x11");
        const TesterIdentity id = IdentifyTester(s.link, {dir.path()});
        EXPECT_EQ(id.updateNeeded, c.needed);
    }
}

} // namespace
} // namespace kalvo::testing
