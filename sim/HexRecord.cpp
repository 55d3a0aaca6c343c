// One line of an Intel HEX file as the tester's firmware loader checks it.
#include "HexRecord.h"

namespace kalvo::sim {

namespace {

constexpr int kLastKnownType = 5; // start linear address
constexpr int kFramingBytes = 5;  // count, address (2), type, checksum

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

std::optional<int> Fail(QByteArray *reason, const QByteArray &text)
{
    if (reason)
        *reason = text;
    return std::nullopt;
}

} // namespace

std::optional<int> HexRecordType(const QByteArray &line, QByteArray *reason)
{
    if (!line.startsWith(':'))
        return Fail(reason, "kein Doppelpunkt");
    QByteArray bytes;
    for (qsizetype i = 1; i + 1 < line.size(); i += 2) {
        const int high = HexValue(line[i]);
        const int low = HexValue(line[i + 1]);
        if (high < 0 || low < 0)
            return Fail(reason, "keine Hexziffer");
        bytes.append(static_cast<char>(high * 16 + low));
    }
    if (line.size() % 2 == 0) {
        // An odd count of digits: the last one is half a byte, or no digit at all.
        if (HexValue(line.back()) < 0)
            return Fail(reason, "keine Hexziffer");
        return Fail(reason, "L\x84nge falsch");
    }
    if (bytes.size() < kFramingBytes || static_cast<quint8>(bytes[0]) != bytes.size() - kFramingBytes)
        return Fail(reason, "L\x84nge falsch");
    quint8 sum = 0;
    for (char byte : bytes)
        sum = static_cast<quint8>(sum + static_cast<quint8>(byte));
    if (sum != 0)
        return Fail(reason, "Pr\x81"
                            "fsumme falsch");
    const int type = static_cast<quint8>(bytes[3]);
    if (type > kLastKnownType)
        return Fail(reason, "Satzart unbekannt");
    if (type == kHexEndOfFile && bytes[0] != 0)
        return Fail(reason, "L\x84nge falsch");
    return type;
}

} // namespace kalvo::sim
