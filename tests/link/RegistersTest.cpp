// Reading and writing the configuration bytes and device registers CF..FF.
#include "LinkFixture.h"

#include "link/Errors.h"
#include "link/Registers.h"

using namespace kalvo::link;

namespace kalvo::testing {
namespace {

using Registers = LinkFixture;

QByteArray Address(int index)
{
    return QByteArray::number(0xCF + index, 16).toUpper();
}

TEST_F(Registers, ReadSendsBitsThenRegistersInOrderAndFillsBytesAndFlags)
{
    for (int bit = 0; bit < 8; ++bit) {
        const QByteArray command = "bit?" + QByteArray::number(bit);
        transport.Expect(command + '\r').Reply(command + " 0" + QByteArray::number(bit) + ".Y\r\n\x11");
    }
    for (int i = 0; i < 49; ++i) {
        const QByteArray command = "var?" + Address(i);
        const QByteArray value =
            i == 4 ? QByteArray(" 1") : QByteArray::number(0x100 - i, 16).toUpper().right(2);
        transport.Expect(command + '\r').Reply(command + value + ".Y\r\n\x11");
    }
    ASSERT_EQ(Address(48), QByteArray("FF"));

    RegisterTable table;
    ReadRegisters(link, table);
    EXPECT_TRUE(transport.allExpectationsMet());
    EXPECT_EQ(table.bitBytes[5], QByteArray("05"));
    EXPECT_EQ(table.bitFlags[5], (Flags{true, false, true}));
    EXPECT_EQ(table.registerBytes[0], QByteArray("00"));
    EXPECT_EQ(table.registerFlags[0], Flags{});
    EXPECT_EQ(table.registerBytes[1], QByteArray("FF"));
    EXPECT_EQ(table.registerFlags[1], (Flags{true, true, true, true, true, true, true, true}));
    EXPECT_EQ(table.registerBytes[4], QByteArray(" 1"));
    EXPECT_EQ(table.registerFlags[4], (Flags{true}));
    EXPECT_EQ(table.registerBytes[48], QByteArray("D0"));
    EXPECT_EQ(table.registerFlags[48], (Flags{false, false, false, false, true, false, true, true}));
}

TEST_F(Registers, AnswerWithoutYesIsAFormatErrorNamingTheCommand)
{
    transport.Expect("bit?0\r").Reply("bit?0 Protokoll\x11");
    RegisterTable table;
    try {
        ReadRegisters(link, table);
        ADD_FAILURE() << "no FormatError";
    } catch (const FormatError &e) {
        EXPECT_TRUE(e.text().contains(QStringLiteral("bit?0"))) << e.text().toStdString();
    }
}

TEST_F(Registers, WriteSendsRegistersWithTheReservedOnesAsZeroThenBits)
{
    RegisterTable table;
    for (int i = 0; i < 49; ++i)
        table.registerFlags[size_t(i)] = HexToFlags(QByteArray::number(0x80 + i, 16));
    for (int bit = 0; bit < 8; ++bit)
        table.bitFlags[size_t(bit)] = HexToFlags(QByteArray::number(1 << bit, 16));

    const QList<int> reserved = {1, 2, 3, 4, 5, 6, 7, 12, 13, 14};
    for (int i = 0; i < 49; ++i) {
        const QByteArray value = reserved.contains(i) ? "0" : QByteArray::number(0x80 + i, 16).toUpper();
        transport.Expect("var!" + Address(i) + ' ' + value + '\r').Reply(".Y\x11");
    }
    for (int bit = 0; bit < 8; ++bit)
        transport
            .Expect("bit!" + QByteArray::number(bit) + ' ' + QByteArray::number(1 << bit, 16).toUpper() +
                    '\r')
            .Reply(".Y\x11");

    WriteRegisters(link, table);
    EXPECT_TRUE(transport.allExpectationsMet());
    EXPECT_EQ(transport.writes().front().bytes, QByteArray("var!CF 80\r"));
    EXPECT_EQ(transport.writes()[13].bytes, QByteArray("var!DC 0\r"));
    EXPECT_EQ(transport.writes().back().bytes, QByteArray("bit!7 80\r"));
}

} // namespace
} // namespace kalvo::testing
