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

TEST(VariableValues, TheDumpShowsOneDigitValuesWithTheirFullBinaryText)
{
    ScriptedLink s;
    for (int address = 0xD0; address <= 0xFF; ++address) {
        const QByteArray hex = QByteArray::number(address, 16).toUpper();
        // The first one with all bits set, so that a stale high nibble would show in the second.
        const QByteArray value = address == 0xD0 ? "FF" : address == 0xD1 ? " 4" : "00";
        s.transport.Expect("var?" + hex + "\r").Reply("VAR?" + hex + "=" + value + ".Y\x11");
    }
    const config::ConfigurationDump dump = config::DumpConfiguration(s.link, {});
    ASSERT_EQ(dump.lines.size(), 48);
    EXPECT_EQ(dump.lines[0], QStringLiteral("D0: ==FF 1111 1111"));
    EXPECT_EQ(dump.lines[1], QStringLiteral("D1: ==04 0000 0100"));
    EXPECT_TRUE(s.transport.allExpectationsMet());
}
