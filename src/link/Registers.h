// The tester's configuration bytes and device registers, and their bit views.
#pragma once

#include <QByteArray>
#include <QString>
#include <array>

namespace kalvo::link {

class Link;

using Flags = std::array<bool, 8>;

// Configuration bytes "bit?0".."bit?7" and device registers CF..FF ("var?CF" is entry 0).
struct RegisterTable {
    static constexpr int kBits = 8;
    static constexpr int kRegisters = 49;
    static constexpr int kFirstAddress = 207; // 0xCF

    std::array<QByteArray, kBits> bitBytes;
    std::array<QByteArray, kRegisters> registerBytes;
    std::array<Flags, kBits> bitFlags{};
    std::array<Flags, kRegisters> registerFlags{};

    static QByteArray Address(int index); // "CF" for 0 ... "FF" for 48
};

// The digit table that HexToBinary fills; a character that is not an upper-case hexadecimal
// digit leaves the group it stands for as the previous call left it.
struct BinaryGroups {
    std::array<QString, 2> group;
};

// "D3" gives "1101 0011".
QString HexToBinary(const QByteArray &hex, BinaryGroups &groups);
QString HexToBinary(const QByteArray &hex);
// The byte that eight flags form (flag i weighs 2^i), as upper-case hexadecimal without padding.
QByteArray FlagsToHex(const Flags &flags);
// The eight flags of a byte text, bit 0 first; blanks around it are ignored, text that is not
// hexadecimal gives all off.
Flags HexToFlags(const QByteArray &hex);

// "bit?0".."bit?7" and "var?CF".."var?FF"; fills bytes and flags.
void ReadRegisters(Link &link, RegisterTable &table);
// Sends the flags of every entry back with "var!" and "bit!" (entries 1 to 7 and 12 to 14 as 0).
void WriteRegisters(Link &link, RegisterTable &table);

} // namespace kalvo::link
