// Reading one variable or bit, and the dump, from answers a tester may give in its own way.
#include "config/Variables.h"
#include "link/Errors.h"
#include "link/LinkFixture.h"

#include <gtest/gtest.h>

using namespace kalvo;
using kalvo::testing::ScriptedLink;

TEST(VariableValues, OneDigitValuesWithABlankInFrontAndOtherFormsAreRead)
{
    const struct {
        const char *entry;
        QByteArray command, answer;
        int number;
        const char *binary;
    } cases[] = {
        {"BDIREKTDR#4", "bit?4\r", "bit?4= 4.Y\x11", 4, "0000 0100"},
        {"BDIREKTDR#04", "bit?04\r", "BIT?04=04.Y\r\n\x11", 4, "0000 0100"},
        {"VMITBEZ#D3", "var?D3\r", "VAR?D3=1 .Y\x11", 1, "0000 0001"},
        {"VQUILL#E3", "var?E3\r", "var?E3=a5.Y\x11", 0xA5, "1010 0101"},
        {"PVKONTRAST#CF", "var?CF\r", "var?CF=FF.Y\x11", 255, "1111 1111"},
        {"PBSERVICE#03", "bit?03\r", "bit?03=0.Y\x11", 0, "0000 0000"},
    };
    for (const auto &c : cases) {
        ScriptedLink s;
        s.transport.Expect(c.command).Reply(c.answer);
        const config::VariableReading reading = config::ReadVariable(s.link, QString::fromLatin1(c.entry));
        EXPECT_EQ(reading.number, c.number) << c.answer.constData();
        EXPECT_EQ(reading.binary, QString::fromLatin1(c.binary)) << c.answer.constData();
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

TEST(VariableValues, AnAnswerWithoutAHexadecimalValueIsAFormatErrorNamingTheCommand)
{
    for (const QByteArray answer :
         {"var?D3=.Y\x11", "var?D3=  1.Y\x11", "var?D3=xy.Y\x11", "Protokoll .N1\x11"}) {
        ScriptedLink s;
        s.transport.Expect("var?D3\r").Reply(answer);
        try {
            config::ReadVariable(s.link, QStringLiteral("VMITBEZ#D3"));
            ADD_FAILURE() << "read from " << answer.constData();
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.text().contains(QStringLiteral("var?D3"))) << e.text().toStdString();
        }
    }
}

// The dump shows the two characters as the tester sent them; a character that is no upper-case
// digit keeps the bits that the line before left in its group.
TEST(VariableValues, TheDumpShowsTheAnswersCharactersAndTheirBitsByTheDigitTable)
{
    const struct {
        QByteArray value;
        const char *line;
        QByteArray digits; // the value as a number's two digits
    } dumped[] = {
        {"FF", "D0: ==FF 1111 1111", "FF"}, {" 4", "D1: == 4 1111 0100", "04"},
        {"a5", "D2: ==a5 1111 0101", "A5"}, {"3c", "D3: ==3c 0011 0101", "3C"},
        {"00", "D4: ==00 0000 0000", "00"},
    };
    ScriptedLink s;
    for (int address = 0xD0; address <= 0xFF; ++address) {
        const QByteArray hex = QByteArray::number(address, 16).toUpper();
        const qsizetype i = address - 0xD0;
        const QByteArray value = i < std::ssize(dumped) ? dumped[i].value : QByteArray("00");
        s.transport.Expect("var?" + hex + "\r").ReplyByteByByte("VAR?" + hex + "=" + value + ".Y\n\x11");
    }
    const config::ConfigurationDump dump = config::DumpConfiguration(s.link, {});
    ASSERT_EQ(dump.lines.size(), 48);
    for (qsizetype i = 0; i < std::ssize(dumped); ++i) {
        EXPECT_EQ(dump.lines[i], QString::fromLatin1(dumped[i].line));
        EXPECT_EQ(dump.values[i], dumped[i].digits);
    }
    EXPECT_TRUE(s.transport.allExpectationsMet());
}
