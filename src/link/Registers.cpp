// The tester's configuration bytes and device registers, and their bit views.
#include "Registers.h"

#include "Errors.h"
#include "Link.h"
#include "TextRules.h"

namespace kalvo::link {

QByteArray RegisterTable::Address(int index)
{
    return QByteArray::number(kFirstAddress + index, 16).toUpper();
}

QString HexToBinary(const QByteArray &hex, BinaryGroups &groups)
{
    static const char *const kNibbles[16] = {"0000", "0001", "0010", "0011", "0100", "0101", "0110", "0111",
                                             "1000", "1001", "1010", "1011", "1100", "1101", "1110", "1111"};
    for (qsizetype i = 0; i < hex.size() && i < 2; ++i) {
        const char ch = hex[i];
        int v = -1;
        if (ch >= '0' && ch <= '9')
            v = ch - '0';
        else if (ch >= 'A' && ch <= 'F')
            v = ch - 'A' + 10;
        if (v >= 0)
            groups.group[static_cast<size_t>(i)] = QString::fromLatin1(kNibbles[v]);
    }
    return groups.group[0] + QLatin1Char(' ') + groups.group[1];
}

QString HexToBinary(const QByteArray &hex)
{
    BinaryGroups fresh;
    return HexToBinary(hex, fresh);
}

QByteArray FlagsToHex(const Flags &flags)
{
    int value = 0;
    for (int i = 0; i < 8; ++i)
        if (flags[static_cast<size_t>(i)])
            value |= 1 << i;
    return QByteArray::number(value, 16).toUpper();
}

Flags HexToFlags(const QByteArray &hex)
{
    // A one-digit value is cut from its answer with a blank in front (" 1"); "&H 1" would read as 0.
    // Text that is no hexadecimal number reads as 0, as the numeric value of text does.
    const qint64 value = WholeNumber("&H" + hex.trimmed(), 0, qint64(1) << 53).value_or(0);
    Flags flags{};
    for (int i = 0; i < 8; ++i)
        flags[static_cast<size_t>(i)] = (value >> i) & 1;
    return flags;
}

static QByteArray ReadValue(Link &link, const QByteArray &command)
{
    const QByteArray answer = link.Exchange(command);
    if (!answer.contains(".Y"))
        throw FormatError(QStringLiteral("Antwort auf %1").arg(QString::fromLatin1(command)), 0,
                          QStringLiteral("\".Y\" hinter dem Wert"));
    return ValueBeforeYes(answer);
}

void ReadRegisters(Link &link, RegisterTable &table)
{
    for (int bit = 0; bit < RegisterTable::kBits; ++bit)
        table.bitBytes[static_cast<size_t>(bit)] = ReadValue(link, "bit?" + QByteArray::number(bit));
    for (int i = 0; i < RegisterTable::kRegisters; ++i)
        table.registerBytes[static_cast<size_t>(i)] = ReadValue(link, "var?" + RegisterTable::Address(i));
    for (int bit = 0; bit < RegisterTable::kBits; ++bit)
        table.bitFlags[static_cast<size_t>(bit)] = HexToFlags(table.bitBytes[static_cast<size_t>(bit)]);
    for (int i = 0; i < RegisterTable::kRegisters; ++i)
        table.registerFlags[static_cast<size_t>(i)] = HexToFlags(table.registerBytes[static_cast<size_t>(i)]);
}

void WriteRegisters(Link &link, RegisterTable &table)
{
    for (int i = 0; i < RegisterTable::kRegisters; ++i)
        table.registerBytes[static_cast<size_t>(i)] = FlagsToHex(table.registerFlags[static_cast<size_t>(i)]);
    for (int i : {1, 2, 3, 4, 5, 6, 7, 12, 13, 14}) {
        table.registerBytes[static_cast<size_t>(i)] = "0";
        table.registerFlags[static_cast<size_t>(i)] = Flags{};
    }
    for (int i = 0; i < RegisterTable::kRegisters; ++i)
        link.Exchange("var!" + RegisterTable::Address(i) + ' ' + table.registerBytes[static_cast<size_t>(i)]);
    for (int bit = 0; bit < RegisterTable::kBits; ++bit) {
        table.bitBytes[static_cast<size_t>(bit)] = FlagsToHex(table.bitFlags[static_cast<size_t>(bit)]);
        link.Exchange("bit!" + QByteArray::number(bit) + ' ' + table.bitBytes[static_cast<size_t>(bit)]);
    }
}

} // namespace kalvo::link
