// One line of an Intel HEX file as the tester's firmware loader checks it.
#pragma once

#include <QByteArray>
#include <optional>

namespace kalvo::sim {

constexpr int kHexData = 0;
constexpr int kHexEndOfFile = 1;

// The record type of `line` (without its line end): ":", the byte count, address, type, data and
// checksum in hexadecimal digits of either case. nullopt, with the reason in the tester's words
// (its code page), when the line is no good record.
std::optional<int> HexRecordType(const QByteArray &line, QByteArray *reason);

} // namespace kalvo::sim
